# SPDX-License-Identifier: Apache-2.0
# vorlane_add_action(<name> <sources>...): an action plug-in that links the kit.
#
# Makes the MODULE target <name> without a "lib" prefix, with the two Qt plug-in entry points as its only exports and a
# run path that finds the PDF library in the folder above the Tools folder; puts it into the Tools folder of the build's
# staging tree and of the installation.
set(_VORLANE_ADD_ACTION_DIR ${CMAKE_CURRENT_LIST_DIR})
function(vorlane_add_action name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES
    PREFIX "" AUTOMOC ON AUTOUIC ON AUTORCC ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(${name} PRIVATE Vorlane::ActionKit)
  if(APPLE)
    set_target_properties(${name} PROPERTIES BUILD_RPATH "@loader_path/.." INSTALL_RPATH "@loader_path/..")
    target_link_options(${name} PRIVATE "LINKER:-exported_symbols_list,${_VORLANE_ADD_ACTION_DIR}/action-exports.list")
    set_target_properties(${name} PROPERTIES LINK_DEPENDS ${_VORLANE_ADD_ACTION_DIR}/action-exports.list)
  else()
    set_target_properties(${name} PROPERTIES BUILD_RPATH "$ORIGIN/.." INSTALL_RPATH "$ORIGIN/..")
    # Hidden visibility does not reach the standard library's templates; the version script does.
    target_link_options(${name} PRIVATE "LINKER:--version-script=${_VORLANE_ADD_ACTION_DIR}/action-exports.map")
    set_target_properties(${name} PROPERTIES LINK_DEPENDS ${_VORLANE_ADD_ACTION_DIR}/action-exports.map)
  endif()
  if(VORLANE_STAGE_TOOLS)
    set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${VORLANE_STAGE_TOOLS})
  endif()
  if(NOT VORLANE_TOOLS_DIR)
    set(VORLANE_TOOLS_DIR lib/vorlane/Tools)
  endif()
  install(TARGETS ${name} LIBRARY DESTINATION ${VORLANE_TOOLS_DIR} COMPONENT runtime)
endfunction()
