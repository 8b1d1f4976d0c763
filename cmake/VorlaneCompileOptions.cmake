# SPDX-License-Identifier: Apache-2.0
# vorlane_compile_options(<target>): the warnings and sanitizers that every target of this project is built with.
function(vorlane_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(VORLANE_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(VORLANE_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    # PUBLIC: whoever links an instrumented static library needs the run time too.
    # The sanitizer opens libraries in the caller's place: only the program's older kind of run path then still counts.
    target_link_options(${target} PUBLIC -fsanitize=address,undefined -Wl,--disable-new-dtags)
  endif()
  if(VORLANE_SANITIZE_THREADS)
    target_compile_options(${target} PRIVATE -fsanitize=thread -O1 -g)
    target_link_options(${target} PUBLIC -fsanitize=thread)
  endif()
  # The counters are not atomic, which would take nine times as long in tight loops: the test of threads does not run with
  # them. The tests are counted too, for the headers' inline functions that they alone call.
  if(VORLANE_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage)
    target_link_options(${target} PUBLIC --coverage)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_TO_ASCII QT_NO_FOREACH POINTERHOLDER_TRANSITION=4)
endfunction()
