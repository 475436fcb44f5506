# SPDX-License-Identifier: MIT
# kpf.dll: needs no other file, and callers of any compiler can link with it.

# Once more without the marks that would export the functions of the other library.
get_target_property(rooms vlm_objects SOURCES)
list(FILTER rooms EXCLUDE REGEX "/interface/")
add_library(kpf_rooms OBJECT ${rooms})
target_compile_definitions(kpf_rooms PRIVATE
  VLM_INTERNAL_STATIC $<$<BOOL:${VLM_X86_KERNELS}>:VLM_X86_KERNELS>)
target_compile_options(kpf_rooms PRIVATE ${OpenMP_CXX_FLAGS})
target_link_libraries(kpf_rooms PRIVATE vlm_flags kpf_format)
target_sources(libkpf PRIVATE $<TARGET_OBJECTS:kpf_rooms> capi/pin_windows.cpp)

# All runtimes inside. By the compiler's own option, as FindOpenMP's target names an import library.
target_link_options(libkpf PRIVATE -static ${OpenMP_CXX_FLAGS} -s)

# The .def lists the exports, for the linker here and for import libraries of other tools; it names
# the file, which so must not begin with "lib".
list(JOIN kpf_exports "\n  " exported)
set(kpf_def ${PROJECT_BINARY_DIR}/kpf.def)
file(CONFIGURE OUTPUT ${kpf_def} CONTENT "LIBRARY kpf.dll\nEXPORTS\n  @exported@\n" @ONLY)
target_sources(libkpf PRIVATE ${kpf_def})
set_target_properties(libkpf PROPERTIES PREFIX "" IMPORT_PREFIX lib LINK_DEPENDS ${kpf_def})

# The import library of Microsoft's linker. Without LLVM's tool callers make it from the .def.
find_program(LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
if(NOT LLVM_DLLTOOL)
  message(STATUS "llvm-dlltool is missing: kpf.lib is left out")
  return()
endif()
set(kpf_lib ${PROJECT_BINARY_DIR}/kpf.lib)
add_custom_command(OUTPUT ${kpf_lib} DEPENDS ${kpf_def}
  COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -d ${kpf_def} -l ${kpf_lib})
add_custom_target(kpf_lib ALL DEPENDS ${kpf_lib})
