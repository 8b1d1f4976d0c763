# SPDX-License-Identifier: Apache-2.0
# vorlane_add_action(NAME <target> SOURCES <files> [FORMS <files>] [RESOURCES <files>] [SETTINGS <file>])
#
# The action plug-in <target>: a MODULE without a "lib" prefix that links Vorlane::ActionKit, runs moc, uic (over FORMS,
# .ui files) and rcc (over RESOURCES, .qrc files) by itself, exports the two Qt plug-in entry points only, and finds the
# PDF library in the folder above the Tools folder, where it is installed (lib/vorlane/Tools, component "runtime").
# SETTINGS names the JSON file that describes the action's settings; it is checked and becomes the resource
# ":/Vorlane/Settings/<target>.json".
include(${CMAKE_CURRENT_LIST_DIR}/VorlaneCheckSettings.cmake)
set(_VORLANE_ADD_ACTION_DIR ${CMAKE_CURRENT_LIST_DIR})
function(vorlane_add_action)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;SETTINGS" "SOURCES;FORMS;RESOURCES")
  _vorlane_check_action_arguments()
  if(arg_SETTINGS)
    _vorlane_add_settings()
  endif()

  add_library(${arg_NAME} MODULE ${arg_SOURCES} ${arg_FORMS} ${arg_RESOURCES})
  target_link_libraries(${arg_NAME} PRIVATE Vorlane::ActionKit)
  set_target_properties(${arg_NAME} PROPERTIES
    PREFIX "" AUTOMOC ON AUTOUIC ON AUTORCC ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
  # uic finds the form of an included "ui_<form>.h" wherever the form is.
  set(form_folders "")
  foreach(form ${arg_FORMS})
    get_filename_component(folder ${form} ABSOLUTE)
    get_filename_component(folder ${folder} DIRECTORY)
    list(APPEND form_folders ${folder})
  endforeach()
  set_target_properties(${arg_NAME} PROPERTIES AUTOUIC_SEARCH_PATHS "${form_folders}")

  # Hidden visibility does not reach the standard library's templates; the linker's list of exports does.
  if(APPLE)
    set(origin "@loader_path")
    set(exports ${_VORLANE_ADD_ACTION_DIR}/action-exports.list)
    set(exports_option "LINKER:-exported_symbols_list,${exports}")
  else()
    set(origin "$ORIGIN")
    set(exports ${_VORLANE_ADD_ACTION_DIR}/action-exports.map)
    set(exports_option "LINKER:--version-script=${exports}")
  endif()
  target_link_options(${arg_NAME} PRIVATE "${exports_option}")
  # The linker reports what is missing, before a host loads the plug-in. Clang's sanitizers would be reported too.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT APPLE)
    target_link_options(${arg_NAME} PRIVATE "LINKER:-z,defs")
  endif()
  # With a run path of its own for the build, CMake would add a ":" to it: an empty entry, which means the current folder.
  set_target_properties(${arg_NAME} PROPERTIES
    LINK_DEPENDS "${exports}" INSTALL_RPATH "${origin}/.." BUILD_WITH_INSTALL_RPATH ON)

  if(VORLANE_STAGE_TOOLS)
    set_target_properties(${arg_NAME} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${VORLANE_STAGE_TOOLS})
  endif()
  install(TARGETS ${arg_NAME} LIBRARY DESTINATION lib/vorlane/Tools COMPONENT runtime)
endfunction()

# Makes the settings file a resource under the target's name, so that two plug-ins in one process have different ones.
macro(_vorlane_add_settings)
  get_filename_component(settings ${arg_SETTINGS} ABSOLUTE)
  _vorlane_check_settings(${settings})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${settings})
  set(settings_qrc ${CMAKE_CURRENT_BINARY_DIR}/${arg_NAME}-settings.qrc)
  file(CONFIGURE OUTPUT ${settings_qrc} CONTENT
    "<RCC><qresource prefix=\"/Vorlane/Settings\"><file alias=\"@arg_NAME@.json\">@settings@</file></qresource></RCC>\n"
    @ONLY)
  list(APPEND arg_RESOURCES ${settings_qrc})
endmacro()

# Mistakes are reported here, in the caller's words, before they break something else.
macro(_vorlane_check_action_arguments)
  set(usage "vorlane_add_action(NAME <target> SOURCES <files> [FORMS <files>] [RESOURCES <files>] [SETTINGS <file>])")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "vorlane_add_action: unknown argument: ${arg_UNPARSED_ARGUMENTS}\n  ${usage}")
  endif()
  if(arg_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "vorlane_add_action: no value for: ${arg_KEYWORDS_MISSING_VALUES}\n  ${usage}")
  endif()
  foreach(needed NAME SOURCES)
    if(NOT arg_${needed})
      message(FATAL_ERROR "vorlane_add_action: ${needed} is missing\n  ${usage}")
    endif()
  endforeach()
  foreach(kind "SOURCES:cpp|cc|cxx|c|h|hpp|mm" "FORMS:ui" "RESOURCES:qrc" "SETTINGS:json")
    string(REGEX MATCH "^[A-Z]+" keyword ${kind})
    string(REGEX REPLACE "^[A-Z]+:" "" endings ${kind})
    foreach(file ${arg_${keyword}})
      if(NOT file MATCHES "\\.(${endings})$" AND NOT file MATCHES "\\$<")
        message(FATAL_ERROR "vorlane_add_action: ${file} does not belong to ${keyword}\n  ${usage}")
      endif()
    endforeach()
  endforeach()
endmacro()
