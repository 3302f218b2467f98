# Runs one fuzz target for FUZZ_SECONDS (environment, default 60), as ctest
# calls it from tov_add_fuzz_target. The seeds are copied into a corpus folder
# of the build tree, which keeps what the runs find, so that no run writes
# into the committed seeds. An input that fails lands in WORK_DIR/artifacts.
#   cmake -DFUZZER=... -DWORK_DIR=... -DSEEDS=a;b;... [-DDICT=...] -P run_fuzzer.cmake
set(seconds 60)
if(DEFINED ENV{FUZZ_SECONDS})
  set(seconds $ENV{FUZZ_SECONDS})
endif()

set(corpus ${WORK_DIR}/corpus)
set(artifacts ${WORK_DIR}/artifacts)
file(MAKE_DIRECTORY ${corpus} ${artifacts})
file(COPY ${SEEDS} DESTINATION ${corpus})

set(options -max_total_time=${seconds} -timeout=10 -print_final_stats=1
            -artifact_prefix=${artifacts}/)
if(DICT)
  list(APPEND options -dict=${DICT})
endif()
execute_process(COMMAND ${FUZZER} ${options} ${corpus} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${FUZZER} failed (status ${status}); the failing input is in ${artifacts}")
endif()
