# SPDX-License-Identifier: Apache-2.0
# CPack runs this once for each kind of package, between installing into the staging folder and packing it.
set(source ${CPACK_VORLANE_SOURCE_DIR})
if(CPACK_GENERATOR STREQUAL "DEB")
  set(runtime ${CPACK_TEMPORARY_DIRECTORY}/runtime/usr)
  set(dev ${CPACK_TEMPORARY_DIRECTORY}/dev/usr)
else()
  set(runtime ${CPACK_TEMPORARY_DIRECTORY})
  set(dev ${runtime})
endif()

set(changelog ${CPACK_TOPLEVEL_DIRECTORY}/changelog)
execute_process(COMMAND ${CPACK_VORLANE_PYTHON} ${source}/packaging/deb/make-changelog ${source}/CHANGELOG.md
  ${CPACK_PACKAGE_NAME} ${CPACK_PACKAGE_VERSION} ${CPACK_PACKAGE_CONTACT} ${changelog} COMMAND_ERROR_IS_FATAL ANY)
# The release's date is that of every packed file, so that the same sources give the same packages.
execute_process(COMMAND dpkg-parsechangelog --file ${changelog} --show-field Timestamp
  OUTPUT_VARIABLE timestamp OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ENV{SOURCE_DATE_EPOCH} ${timestamp})

# Stripping at install leaves static libraries and the compiler's comments.
file(GLOB binaries ${runtime}/bin/* ${runtime}/lib/vorlane/*.* ${runtime}/lib/vorlane/Tools/*)
file(GLOB archives ${dev}/lib/*.a)
execute_process(COMMAND strip --strip-unneeded --remove-section=.comment ${binaries} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND strip --strip-debug --remove-section=.comment --enable-deterministic-archives ${archives}
  COMMAND_ERROR_IS_FATAL ANY)

# Not by CPack, whose call of dpkg-shlibdeps also makes maintainer scripts that run ldconfig; it has nothing to do for
# libraries below /usr/lib/vorlane.
set(control ${CPACK_TOPLEVEL_DIRECTORY}/debian/control)
file(WRITE ${control} "Source: any\n\nPackage: any\nArchitecture: any\n")
execute_process(COMMAND dpkg-shlibdeps -O ${binaries} WORKING_DIRECTORY ${CPACK_TOPLEVEL_DIRECTORY}
  OUTPUT_VARIABLE depends OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_VARIABLE messages)
if(NOT depends MATCHES "^shlibs:Depends=(.+)$")
  message(FATAL_ERROR "dpkg-shlibdeps found no dependencies:\n${depends}\n${messages}")
endif()
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS ${CMAKE_MATCH_1})

if(CPACK_GENERATOR STREQUAL "TGZ")
  # Names only: neither versions nor alternatives.
  string(REGEX REPLACE " [(|][^,]*" "" needed ${CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS})
  string(REPLACE "," "" needed ${needed})
  configure_file(${source}/packaging/archive/README.in ${CPACK_TEMPORARY_DIRECTORY}/README @ONLY)
  file(COPY ${source}/LICENSE DESTINATION ${CPACK_TEMPORARY_DIRECTORY})
  return()
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${${component}}/share)
  file(COPY ${changelog} DESTINATION ${share}/doc/${package})
  file(GLOB compressed ${share}/man/man?/*.? ${share}/doc/${package}/changelog)
  execute_process(COMMAND gzip -9n ${compressed} COMMAND_ERROR_IS_FATAL ANY)
  configure_file(${source}/packaging/deb/${component}.lintian-overrides ${share}/lintian/overrides/${package} COPYONLY)
endforeach()
