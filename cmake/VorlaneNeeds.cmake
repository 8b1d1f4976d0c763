# SPDX-License-Identifier: Apache-2.0
# vorlane_needs(<target> <needed>...): <target> loads or runs the needed targets; each file reaches it as the macro
# <NEEDED>_FILE.
function(vorlane_needs target)
  foreach(need ${ARGN})
    add_dependencies(${target} ${need})
    string(TOUPPER ${need} macro)
    string(MAKE_C_IDENTIFIER ${macro} macro)
    target_compile_definitions(${target} PRIVATE "${macro}_FILE=\"$<TARGET_FILE:${need}>\"")
  endforeach()
endfunction()
