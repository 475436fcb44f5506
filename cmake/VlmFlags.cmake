# SPDX-License-Identifier: MIT
# What every target of this project is compiled with.
add_library(vlm_flags INTERFACE)

# Contraction would fuse multiplications and additions where the processor can, and change the last
# bits of frame times from machine to machine.
target_compile_options(vlm_flags INTERFACE
  -ffp-contract=off
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  $<$<BOOL:${VLM_WERROR}>:-Werror>)
# Optimising, GCC 12 takes the buffer inside a std::string for an overrun (GCC bug 105651).
set(optimised_by_gcc $<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>)
target_compile_options(vlm_flags INTERFACE
  $<${optimised_by_gcc}:-Wno-array-bounds -Wno-restrict -Wno-stringop-overflow>)
target_include_directories(vlm_flags INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)

if(VLM_SANITIZE)
  target_compile_options(vlm_flags INTERFACE
    -fsanitize=${VLM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vlm_flags INTERFACE -fsanitize=${VLM_SANITIZE})
endif()
