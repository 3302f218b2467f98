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

# The workbench's browser tests drive Chromium with Selenium, which the
# chosen interpreter may lack while another has it (Debian's python3-selenium
# serves /usr/bin/python3 only): they take the first interpreter that has
# pytest and selenium, in the same order.
if(TOV_BUILD_TOOLS AND TOV_BUILD_WORKBENCH AND NOT DEFINED CACHE{TOV_BROWSER_TEST_PYTHON})
  set(tov_browser_modules "import pytest, selenium")
  find_program(tov_path_python NAMES python3 NO_CACHE)
  foreach(candidate IN ITEMS "${Python3_EXECUTABLE}" "${tov_path_python}" /usr/bin/python3)
    if(candidate AND EXISTS "${candidate}")
      execute_process(COMMAND "${candidate}" -c ${tov_browser_modules}
        RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
      if(NOT missing)
        set(TOV_BROWSER_TEST_PYTHON "${candidate}" CACHE FILEPATH
          "Interpreter of the workbench's browser tests (needs pytest and selenium)")
        break()
      endif()
    endif()
  endforeach()
  if(NOT TOV_BROWSER_TEST_PYTHON)
    message(FATAL_ERROR "selenium is missing for every python3 found: install python3-selenium "
      "(scripts/install-deps.sh does), name an interpreter with "
      "-DTOV_BROWSER_TEST_PYTHON=..., or configure with -DTOV_BUILD_TESTS=OFF")
  endif()
  message(STATUS "The workbench's browser tests run with ${TOV_BROWSER_TEST_PYTHON}")
endif()
