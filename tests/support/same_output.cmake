# Runs PROGRAM and fails unless what it prints is the content of EXPECTED: a
# committed file that PROGRAM makes stays as PROGRAM would make it now.
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE made RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} failed: ${status}")
endif()
file(READ ${EXPECTED} committed)
if(NOT made STREQUAL committed)
  message(FATAL_ERROR "${EXPECTED} is not what ${PROGRAM} makes; run\n"
                      "  ${PROGRAM} > ${EXPECTED}\nand commit the result.")
endif()
