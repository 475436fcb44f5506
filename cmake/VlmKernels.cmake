# SPDX-License-Identifier: MIT
# vlm_add_kernels(TARGET STEM [AVX2] [AVX512])
#
# Adds STEM_avx2.cpp and STEM_avx512.cpp of the calling folder to TARGET, or the one that is named,
# each with its instruction set switched on in that file alone. Other processors than x86-64 get
# neither; the sources see whether they are there by VLM_X86_KERNELS.
set(VLM_X86_KERNELS OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(VLM_X86_KERNELS ON)
endif()
set(VLM_AVX2_OPTIONS -mavx2 -mfma)
# GCC 12 takes the undefined registers in its own AVX-512 header for a mistake of its user.
# clang-tidy reads this compiler's options and does not know that one.
set(VLM_AVX512_OPTIONS -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512vbmi
  $<$<CXX_COMPILER_ID:GNU>:-Wno-uninitialized>
  "$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized;-Wno-unknown-warning-option>")

function(vlm_add_kernels target stem)
  if(NOT VLM_X86_KERNELS)
    return()
  endif()
  target_compile_definitions(${target} PRIVATE VLM_X86_KERNELS)
  # Windows aligns the stack to 16 bytes, GCC spills wider registers as if it were aligned to them.
  set(unaligned $<$<BOOL:${MINGW}>:-Wa,-muse-unaligned-vector-move>)
  set(isas ${ARGN})
  if(NOT isas)
    set(isas AVX2 AVX512)
  endif()
  foreach(isa IN LISTS isas)
    string(TOLOWER ${stem}_${isa}.cpp source)
    target_sources(${target} PRIVATE ${source})
    set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES
      COMPILE_OPTIONS "${VLM_${isa}_OPTIONS};${unaligned}")
  endforeach()
endfunction()
