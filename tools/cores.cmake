# The parts of the tov program that need no command line: the answers of
# batch lines, explain and graph; the checks of documents and the suites of
# tov test; the HTTP layer's messages and guards; the service's routes,
# state and counters; and the workbench's routes and answers. The program
# links them, and so do the fuzz targets, which the fuzz preset builds
# without the program. The includer names the library to link in
# TOV_CORES_LIBRARY: tov::tov for the program, tov_internal for the fuzz
# targets.
if(NOT TARGET tov_program_core)
  set(tov_tools ${CMAKE_CURRENT_LIST_DIR})

  add_library(tov_program_core STATIC
    ${tov_tools}/batch_line.cpp
    ${tov_tools}/input_files.cpp
    ${tov_tools}/json_files.cpp
    ${tov_tools}/json_output.cpp
    ${tov_tools}/judging_order.cpp
    ${tov_tools}/lifecycle_graph.cpp
    ${tov_tools}/placed_json.cpp
    ${tov_tools}/request_names.cpp
    ${tov_tools}/request_kinds.cpp
    ${tov_tools}/rules_in_words.cpp
  )
  # The program's JSON uses the library's JSON types (json/json_types.h), so
  # that both meet a failed allocation alike.
  target_include_directories(tov_program_core PUBLIC ${tov_tools} ${PROJECT_SOURCE_DIR}/src
    ${RAPIDJSON_INCLUDE_DIRS})
  target_link_libraries(tov_program_core PUBLIC ${TOV_CORES_LIBRARY})
  tov_set_warnings(tov_program_core)

  # What check tells about documents, and the suites of tov test: the program
  # and the workbench share them.
  add_library(tov_check_core STATIC
    ${tov_tools}/session.cpp
    ${tov_tools}/documents.cpp
    ${tov_tools}/rule_load_faults.cpp
    ${tov_tools}/strict_checks.cpp
    ${tov_tools}/document_check.cpp
    ${tov_tools}/test_suite.cpp
  )
  if(NOT TOV_CORES_LIBRARY STREQUAL "tov_internal")
    # The --log words, read as the C interface reads them; the shared
    # library keeps them to itself.
    target_sources(tov_check_core PRIVATE ${PROJECT_SOURCE_DIR}/src/api/log_setting.cpp)
  endif()
  target_link_libraries(tov_check_core PUBLIC tov_program_core)
  tov_set_warnings(tov_check_core)

  # Reusable by every server of the program: no sockets, no Beast.
  add_library(tov_http_core STATIC
    ${tov_tools}/http/http_message.cpp
    ${tov_tools}/http/listen_address.cpp
    ${tov_tools}/http/request_guards.cpp
  )
  target_include_directories(tov_http_core PUBLIC ${tov_tools}/http ${PROJECT_SOURCE_DIR}/src
    ${RAPIDJSON_INCLUDE_DIRS})
  tov_set_warnings(tov_http_core)

  # The OpenAPI document that /openapi.json serves, compiled in from schemas/.
  set(tov_openapi ${PROJECT_SOURCE_DIR}/schemas/tov-serve.openapi.json)
  set(tov_openapi_source ${CMAKE_CURRENT_BINARY_DIR}/serve_openapi_document.cpp)
  add_custom_command(OUTPUT ${tov_openapi_source}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${tov_openapi} -DOUTPUT=${tov_openapi_source}
      -DNAMESPACE=tovserve -DFUNCTION=openApiDocument
      -P ${PROJECT_SOURCE_DIR}/cmake/embed_text.cmake
    DEPENDS ${tov_openapi} ${PROJECT_SOURCE_DIR}/cmake/embed_text.cmake
    COMMENT "Embedding the OpenAPI document of tov serve")

  add_library(tov_serve_core STATIC
    ${tov_tools}/serve/decision_log.cpp
    ${tov_tools}/serve/decision_service.cpp
    ${tov_tools}/serve/serve_metrics.cpp
    ${tov_tools}/serve/serve_router.cpp
    ${tov_tools}/serve/sha256.cpp
    ${tov_openapi_source}
  )
  target_include_directories(tov_serve_core PUBLIC ${tov_tools}/serve)
  target_compile_definitions(tov_serve_core PRIVATE TOV_PROGRAM_VERSION="${PROJECT_VERSION}")
  # The documents' SHA-256 for /v1/status comes from OpenSSL's libcrypto.
  find_package(OpenSSL REQUIRED COMPONENTS Crypto)
  target_link_libraries(tov_serve_core PUBLIC tov_program_core tov_http_core
    PRIVATE OpenSSL::Crypto)
  tov_set_warnings(tov_serve_core)

  if(TOV_BUILD_WORKBENCH)
    include(${CMAKE_CURRENT_LIST_DIR}/workbench/workbench.cmake)
  endif()
endif()
