# SPDX-License-Identifier: Apache-2.0
# vorlane_compile_options(<target>): the warnings and sanitizers that every target of this project is built with.
function(vorlane_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(VORLANE_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(VORLANE_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    # PUBLIC: a target that links an instrumented static library needs the run time too.
    # The sanitizer's dlopen() replaces the caller's: then only the program's older kind of run path is searched.
    target_link_options(${target} PUBLIC -fsanitize=address,undefined -Wl,--disable-new-dtags)
  endif()
  if(VORLANE_SANITIZE_THREADS)
    target_compile_options(${target} PRIVATE -fsanitize=thread -O1 -g)
    target_link_options(${target} PUBLIC -fsanitize=thread)
  endif()
  # The counters are not atomic, so the test of threads is left out; atomic ones would take nine times as long in tight
  # loops. The tests are counted too, for inline functions that only they call.
  if(VORLANE_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage)
    target_link_options(${target} PUBLIC --coverage)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_TO_ASCII QT_NO_FOREACH POINTERHOLDER_TRANSITION=4)
endfunction()
