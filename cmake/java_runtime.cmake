# What a JVM that loads libtov_jni.so needs in its environment, for the tests
# that start one (tests/java, tests/doors).
#
# tov_java_environment(result): a list of NAME=VALUE entries. The locale is
# UTF-8, so that Java turns file names beyond ASCII into the bytes of UTF-8 as
# the library's tests expect. A sanitized library needs the AddressSanitizer
# runtime loaded before the JVM, which itself is not sanitized; the JVM catches
# SIGSEGV on purpose (null checks, safepoints), so the runtime must leave that
# signal to it, and the JVM's own allocations are no leaks of ours.
function(tov_java_environment result)
  set(environment LC_ALL=C.UTF-8)
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address")
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=libclang_rt.asan-x86_64.so
      OUTPUT_VARIABLE asan_runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${asan_runtime}")
      message(FATAL_ERROR "no shared AddressSanitizer runtime for the Java tests: ${asan_runtime}")
    endif()
    list(APPEND environment "LD_PRELOAD=${asan_runtime}"
      "ASAN_OPTIONS=handle_segv=0:allow_user_segv_handler=1:detect_leaks=0:abort_on_error=1")
  endif()
  set(${result} "${environment}" PARENT_SCOPE)
endfunction()
