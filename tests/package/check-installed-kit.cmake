# SPDX-License-Identifier: Apache-2.0
set(work ${BUILD_DIR}/tests/package/work)
set(prefix ${work}/prefix)
file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work}/home)
foreach(variable HOME TMPDIR XDG_DATA_HOME XDG_CONFIG_HOME XDG_CACHE_HOME XDG_RUNTIME_DIR)
  set(ENV{${variable}} ${work}/home)
endforeach()

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  set(output "${output}" PARENT_SCOPE)
endfunction()
function(expect text)
  if(NOT output MATCHES "${text}")
    message(FATAL_ERROR "expected \"${text}\" in:\n${output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(file
    bin/vorlane-run lib/vorlane/HalvexPDFLibraryCPDylib1311.dylib lib/vorlane/Tools/SetBaseURL.so
    lib/libVorlaneActionKit.a include/vorlane/pdflib/HalvexPDFLibraryCPDylibCPP1311.h
    include/vorlane/plugin/CActionInterface.h include/vorlane/dialogs/CVorlaneDialog.h include/vorlane/utils/CUtils.h)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()

set(flags "")
if(SANITIZE)
  set(flags "-DCMAKE_CXX_FLAGS=-fsanitize=address,undefined")
endif()
run(${CMAKE_COMMAND} -S ${prefix}/share/vorlane/example-action -B ${work}/build -G Ninja
  -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_INSTALL_PREFIX=${prefix} ${flags})
run(${CMAKE_COMMAND} --build ${work}/build)
run(${CMAKE_COMMAND} --install ${work}/build)

# Relocated, and from another working directory: nothing may depend on where it was installed.
file(RENAME ${prefix} ${work}/moved)
run(${work}/moved/bin/vorlane-run actions)
expect("Set Base URL")
expect("Set Title")
