# Fuzz targets: libFuzzer programs built in the fuzz preset (Clang, with
# AddressSanitizer and UndefinedBehaviorSanitizer), each registered as a ctest
# test that fuzzes for FUZZ_SECONDS (environment, default 60).
set(TOV_FUZZ_RUNNER ${CMAKE_CURRENT_LIST_DIR}/run_fuzzer.cmake)

# tov_add_fuzz_target(NAME name SOURCES file... [LIBS target...]
#                     [CORPUS glob...] [DICT file])
#
# Builds `name` from SOURCES, which define LLVMFuzzerTestOneInput, against the
# library's static archive and LIBS. Its seeds are the files that the CORPUS
# globs match at configure time; DICT is a libFuzzer dictionary.
function(tov_add_fuzz_target)
  cmake_parse_arguments(PARSE_ARGV 0 FUZZ "" "NAME;DICT" "SOURCES;LIBS;CORPUS")
  if(NOT FUZZ_NAME OR NOT FUZZ_SOURCES)
    message(FATAL_ERROR "tov_add_fuzz_target needs NAME and SOURCES")
  endif()
  file(GLOB seeds LIST_DIRECTORIES false CONFIGURE_DEPENDS ${FUZZ_CORPUS})
  if(NOT seeds)
    message(FATAL_ERROR "Fuzz target ${FUZZ_NAME} has no seed files")
  endif()

  add_executable(${FUZZ_NAME} ${FUZZ_SOURCES})
  target_link_libraries(${FUZZ_NAME} PRIVATE ${FUZZ_LIBS} tov_internal)
  target_link_options(${FUZZ_NAME} PRIVATE -fsanitize=fuzzer)
  tov_set_warnings(${FUZZ_NAME})

  add_test(NAME fuzz_${FUZZ_NAME}
    COMMAND ${CMAKE_COMMAND}
      -DFUZZER=$<TARGET_FILE:${FUZZ_NAME}>
      -DWORK_DIR=${CMAKE_BINARY_DIR}/fuzz-runs/${FUZZ_NAME}
      -DDICT=${FUZZ_DICT}
      "-DSEEDS=${seeds}"
      -P ${TOV_FUZZ_RUNNER})
endfunction()
