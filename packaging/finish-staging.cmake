# SPDX-License-Identifier: Apache-2.0
# CPack runs this once for each kind of package, between installing into the staging folder and packing it.
set(source ${CPACK_VORLANE_SOURCE_DIR})
set(changelog ${CPACK_TOPLEVEL_DIRECTORY}/changelog)
execute_process(COMMAND ${CPACK_VORLANE_PYTHON} ${source}/packaging/deb/make-changelog ${source}/CHANGELOG.md
  ${CPACK_PACKAGE_NAME} ${CPACK_PACKAGE_VERSION} ${CPACK_PACKAGE_CONTACT} ${changelog} COMMAND_ERROR_IS_FATAL ANY)
# The release's date is that of every packed file, so that the same sources give the same packages.
execute_process(COMMAND dpkg-parsechangelog --file ${changelog} --show-field Timestamp
  OUTPUT_VARIABLE timestamp OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ENV{SOURCE_DATE_EPOCH} ${timestamp})

if(CPACK_GENERATOR STREQUAL "TGZ")
  file(COPY ${source}/packaging/archive/README ${source}/LICENSE DESTINATION ${CPACK_TEMPORARY_DIRECTORY})
  return()
endif()

function(run)
  execute_process(COMMAND ${ARGV} WORKING_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Stripping at install leaves static libraries and the compiler's comments.
file(GLOB binaries
  ${CPACK_TEMPORARY_DIRECTORY}/runtime/usr/bin/*
  ${CPACK_TEMPORARY_DIRECTORY}/runtime/usr/lib/vorlane/*.*
  ${CPACK_TEMPORARY_DIRECTORY}/runtime/usr/lib/vorlane/Tools/*)
file(GLOB archives ${CPACK_TEMPORARY_DIRECTORY}/dev/usr/lib/*.a)
run(strip --strip-unneeded --remove-section=.comment ${binaries})
run(strip --strip-debug --remove-section=.comment --enable-deterministic-archives ${archives})

# Not CPack's own call of dpkg-shlibdeps, with which come maintainer scripts that run ldconfig for the sake of libraries
# below /usr/lib/vorlane, where ldconfig does not look.
file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/debian/control "Source: any\n\nPackage: any\nArchitecture: any\n")
execute_process(COMMAND dpkg-shlibdeps -O ${binaries} WORKING_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY}
  OUTPUT_VARIABLE depends OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_VARIABLE messages)
file(REMOVE_RECURSE ${CPACK_TEMPORARY_DIRECTORY}/debian)
if(NOT depends MATCHES "^shlibs:Depends=(.+)$")
  message(FATAL_ERROR "dpkg-shlibdeps found no dependencies:\n${depends}\n${messages}")
endif()
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS ${CMAKE_MATCH_1})

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  file(COPY ${changelog} DESTINATION ${share}/doc/${package})
  file(GLOB compressed ${share}/man/man?/*.? ${share}/doc/${package}/changelog)
  run(gzip -9n ${compressed})
endforeach()
