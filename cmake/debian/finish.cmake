# SPDX-License-Identifier: MIT
# Run by cpack when the files of all components lie in their folders: gives each what makes it a
# package of Debian, and takes away what Debian provides or does not want.

# Licence and changelogs, compressed without a time stamp so that two builds give the same bytes.
function(add_documents tree package)
  set(doc ${tree}/usr/share/doc/${package})
  file(MAKE_DIRECTORY ${tree}/usr/share/doc)  # the library's tree has no documents of its own
  if(IS_DIRECTORY ${tree}/usr/share/doc/vlm_internal)
    file(RENAME ${tree}/usr/share/doc/vlm_internal ${doc})
    file(REMOVE ${doc}/LICENSE ${doc}/CHANGELOG.md)  # the same as copyright and changelog.gz
  endif()
  file(MAKE_DIRECTORY ${doc})
  file(COPY_FILE ${CPACK_VLM_SOURCE}/cmake/debian/copyright ${doc}/copyright)
  file(COPY_FILE ${CPACK_VLM_DEBIAN}/changelog ${doc}/changelog.Debian)
  file(COPY_FILE ${CPACK_VLM_SOURCE}/CHANGELOG.md ${doc}/changelog)
  file(GLOB pages ${tree}/usr/share/man/man*/*.?)
  execute_process(COMMAND gzip -9n ${doc}/changelog.Debian ${doc}/changelog ${pages}
    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Tags of lintian that are meant to be, each with its reason.
function(add_overrides tree package component)
  set(overrides ${CPACK_VLM_SOURCE}/cmake/debian/${component}.lintian-overrides)
  if(EXISTS ${overrides})
    file(MAKE_DIRECTORY ${tree}/usr/share/lintian/overrides)
    file(COPY_FILE ${overrides} ${tree}/usr/share/lintian/overrides/${package})
  endif()
endfunction()

# Sections that say which compiler was at work; an archive keeps the names that linkers need.
function(strip_what_cpack_leaves tree)
  set(strip ${CPACK_VLM_STRIP} --remove-section=.comment --remove-section=.note)
  file(GLOB libraries ${tree}/usr/${CPACK_VLM_LIBDIR}/*.so.*.*)
  file(GLOB programs ${tree}/usr/bin/*)
  file(GLOB archives ${tree}/usr/${CPACK_VLM_LIBDIR}/*.a)
  foreach(program IN LISTS programs)
    file(RPATH_REMOVE FILE ${program})  # the library is in the system's folder
  endforeach()
  if(libraries OR programs)
    execute_process(COMMAND ${strip} --strip-unneeded ${libraries} ${programs}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
  if(archives)
    execute_process(COMMAND ${strip} --strip-debug --enable-deterministic-archives ${archives}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
endfunction()

if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component})
  string(TOUPPER CPACK_DEBIAN_${component}_PACKAGE_NAME package)
  add_documents(${tree} ${${package}})
  add_overrides(${tree} ${${package}} ${component})
  strip_what_cpack_leaves(${tree})
  file(GLOB packages ${tree}/usr/lib/python3.*/dist-packages)
  if(packages)  # the administrator's; Debian's own belong to every Python 3
    file(MAKE_DIRECTORY ${tree}/usr/lib/python3)
    file(RENAME ${packages} ${tree}/usr/lib/python3/dist-packages)
    cmake_path(GET packages PARENT_PATH emptied)
    file(REMOVE_RECURSE ${emptied})
  endif()
  if(IS_DIRECTORY ${tree}/usr/share/zsh/site-functions)  # the administrator's, in Debian
    file(RENAME ${tree}/usr/share/zsh/site-functions ${tree}/usr/share/zsh/vendor-completions)
  endif()
endforeach()
