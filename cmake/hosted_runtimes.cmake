# What a Python interpreter or a JVM that loads libtov needs in its
# environment, for the tests that start one (tests/python, tests/java,
# tests/doors). Each function sets `result` to a list of NAME=VALUE entries.
#
# A sanitized library needs the AddressSanitizer runtime loaded before the
# interpreter or the JVM, which themselves are not sanitized; their own
# allocations are no leaks of ours.

# The shared AddressSanitizer runtime when the build is sanitized, else "".
function(tov_asan_runtime result)
  set(runtime "")
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address")
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=libclang_rt.asan-x86_64.so
      OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${runtime}")
      message(FATAL_ERROR "no shared AddressSanitizer runtime for the hosted tests: ${runtime}")
    endif()
  endif()
  set(${result} "${runtime}" PARENT_SCOPE)
endfunction()

function(tov_python_environment result)
  set(environment)
  tov_asan_runtime(runtime)
  if(runtime)
    list(APPEND environment "LD_PRELOAD=${runtime}" "ASAN_OPTIONS=detect_leaks=0")
  endif()
  set(${result} "${environment}" PARENT_SCOPE)
endfunction()

# The locale is UTF-8, so that Java turns file names beyond ASCII into the
# bytes of UTF-8 as the tests expect. The JVM catches SIGSEGV on purpose (null
# checks, safepoints), so a sanitizer runtime must leave that signal to it.
function(tov_java_environment result)
  set(environment LC_ALL=C.UTF-8)
  tov_asan_runtime(runtime)
  if(runtime)
    list(APPEND environment "LD_PRELOAD=${runtime}"
      "ASAN_OPTIONS=handle_segv=0:allow_user_segv_handler=1:detect_leaks=0:abort_on_error=1")
  endif()
  set(${result} "${environment}" PARENT_SCOPE)
endfunction()
