# Chooses the interpreter of the Python tests before anything else looks for
# one. The first python3 on PATH may be a private one (a pyenv shim, say)
# without pytest, jsonschema, prometheus_client and yaml while the system's
# own has them from its packages; the tests need an interpreter that can run
# them, so the first of these that can is taken. An interpreter named with -DPython3_EXECUTABLE is
# taken as it is.
set(tov_test_modules "import pytest, jsonschema, prometheus_client, yaml")
if(NOT DEFINED CACHE{Python3_EXECUTABLE})
  find_program(tov_path_python NAMES python3 NO_CACHE)
  set(tov_test_python "")
  foreach(candidate IN ITEMS "${tov_path_python}" /usr/bin/python3)
    if(candidate AND EXISTS "${candidate}")
      execute_process(COMMAND "${candidate}" -c ${tov_test_modules}
        RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
      if(NOT missing)
        set(tov_test_python "${candidate}")
        break()
      endif()
    endif()
  endforeach()
  if(tov_test_python)
    set(Python3_EXECUTABLE "${tov_test_python}" CACHE FILEPATH
      "Interpreter of the Python tests (needs pytest, jsonschema, prometheus_client, yaml)")
  endif()
endif()
find_package(Python3 REQUIRED COMPONENTS Interpreter)
execute_process(COMMAND "${Python3_EXECUTABLE}" -c ${tov_test_modules}
  RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
if(missing)
  message(FATAL_ERROR "pytest, jsonschema, prometheus_client or yaml is missing for "
    "${Python3_EXECUTABLE}: install python3-pytest, python3-jsonschema, "
    "python3-prometheus-client and python3-yaml (scripts/install-deps.sh does), name another "
    "interpreter with -DPython3_EXECUTABLE=..., or configure with -DTOV_BUILD_TESTS=OFF")
endif()
message(STATUS "Python tests run with ${Python3_EXECUTABLE}")
