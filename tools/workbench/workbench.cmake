# The workbench's routes and answers (tov_workbench_core, which the fuzz
# targets link too), with the files of its page compiled in; and its
# drawings (tov_workbench_drawing), through Graphviz's library when the build
# finds it. Included by tools/cores.cmake, which sets tov_tools.
set(TOV_CODEMIRROR_DIR /usr/share/javascript/codemirror CACHE PATH
  "CodeMirror 5, as Debian's libjs-codemirror installs it")
if(NOT EXISTS "${TOV_CODEMIRROR_DIR}/lib/codemirror.js")
  message(FATAL_ERROR "The workbench's editors are CodeMirror 5, from Debian's libjs-codemirror, "
    "which is not in ${TOV_CODEMIRROR_DIR}: install libjs-codemirror "
    "(scripts/install-deps.sh does), name its folder with -DTOV_CODEMIRROR_DIR=..., or build "
    "without tov workbench: -DTOV_BUILD_WORKBENCH=OFF")
endif()

set(tov_page ${tov_tools}/workbench/page)
# Function name, then file: one generated source each.
set(tov_page_files
  pageHtml ${tov_page}/index.html
  pageScript ${tov_page}/workbench.js
  pageStyle ${tov_page}/workbench.css
  codeMirrorScript ${TOV_CODEMIRROR_DIR}/lib/codemirror.js
  codeMirrorStyle ${TOV_CODEMIRROR_DIR}/lib/codemirror.css
  codeMirrorJavascriptMode ${TOV_CODEMIRROR_DIR}/mode/javascript/javascript.js
  codeMirrorMatchBrackets ${TOV_CODEMIRROR_DIR}/addon/edit/matchbrackets.js)
set(tov_page_sources)
while(tov_page_files)
  list(POP_FRONT tov_page_files function input)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/workbench_page/${function}.cpp)
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${input} -DOUTPUT=${output}
      -DNAMESPACE=tovwb -DFUNCTION=${function} -P ${PROJECT_SOURCE_DIR}/cmake/embed_text.cmake
    DEPENDS ${input} ${PROJECT_SOURCE_DIR}/cmake/embed_text.cmake
    COMMENT "Embedding ${input} in the workbench")
  list(APPEND tov_page_sources ${output})
endwhile()

add_library(tov_workbench_core STATIC
  ${tov_tools}/workbench/edited_documents.cpp
  ${tov_tools}/workbench/file_replacement.cpp
  ${tov_tools}/workbench/missing_renderer.cpp
  ${tov_tools}/workbench/page_assets.cpp
  ${tov_tools}/workbench/section_places.cpp
  ${tov_tools}/workbench/workbench_api.cpp
  ${tov_tools}/workbench/workbench_router.cpp
  ${tov_tools}/workbench/workspace.cpp
  ${tov_page_sources}
)
target_include_directories(tov_workbench_core PUBLIC ${tov_tools}/workbench)
target_link_libraries(tov_workbench_core PUBLIC tov_check_core tov_http_core)
tov_set_warnings(tov_workbench_core)

# Graphviz's library is optional: without it the page shows the DOT text.
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(TOV_GVC QUIET IMPORTED_TARGET libgvc)
endif()
if(TOV_GVC_FOUND)
  add_library(tov_workbench_drawing STATIC ${tov_tools}/workbench/graphviz_renderer.cpp)
  target_link_libraries(tov_workbench_drawing PUBLIC tov_workbench_core PRIVATE PkgConfig::TOV_GVC)
  message(STATUS "tov workbench draws diagrams with Graphviz's libgvc ${TOV_GVC_VERSION}")
else()
  add_library(tov_workbench_drawing STATIC ${tov_tools}/workbench/graphviz_missing.cpp)
  target_link_libraries(tov_workbench_drawing PUBLIC tov_workbench_core)
  message(STATUS "Graphviz's libgvc not found (libgraphviz-dev): tov workbench shows diagrams "
    "as DOT text")
endif()
tov_set_warnings(tov_workbench_drawing)
