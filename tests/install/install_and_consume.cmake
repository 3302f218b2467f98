# Installs the main build into a private prefix and builds the example host
# (examples/host) against it twice: through find_package(tov) and through
# pkg-config. Each program runs on the example documents. Expects SOURCE_DIR,
# BUILD_DIR and WORK_DIR.
cmake_minimum_required(VERSION 3.25)

foreach(var SOURCE_DIR BUILD_DIR WORK_DIR)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "${var} is not set")
  endif()
endforeach()

set(prefix "${WORK_DIR}/prefix")
set(consumer_source "${SOURCE_DIR}/examples/host")
set(consumer_build "${WORK_DIR}/consumer-build")

# Runs a command; any failure ends the test with the command's output.
function(run_step what)
  execute_process(COMMAND ${ARGN}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${out}\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
endfunction()

# The consumer must use the compiler, and so the standard library, of the main
# build.
function(read_main_cache entry result)
  file(STRINGS "${BUILD_DIR}/CMakeCache.txt" line REGEX "^${entry}:[A-Z]+=")
  if(NOT line)
    message(FATAL_ERROR "${entry} not found in ${BUILD_DIR}/CMakeCache.txt")
  endif()
  string(REGEX REPLACE "^${entry}:[A-Z]+=" "" value "${line}")
  set(${result} "${value}" PARENT_SCOPE)
endfunction()
read_main_cache(CMAKE_CXX_COMPILER cxx)
read_main_cache(CMAKE_MAKE_PROGRAM make_program)
# A sanitized library needs sanitized programs around it.
read_main_cache(CMAKE_CXX_FLAGS cxx_flags)
read_main_cache(CMAKE_EXE_LINKER_FLAGS exe_linker_flags)

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

run_step("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")

# The library and its links: lib/ or lib/<multiarch>/, after GNUInstallDirs.
file(GLOB_RECURSE libraries LIST_DIRECTORIES false "${prefix}/lib*/libtov.so.1.1.0")
list(LENGTH libraries count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one installed libtov.so.1.1.0, found: ${libraries}")
endif()
get_filename_component(libdir "${libraries}" DIRECTORY)
foreach(link libtov.so.1 libtov.so)
  if(NOT IS_SYMLINK "${libdir}/${link}")
    message(FATAL_ERROR "${libdir}/${link} is not installed as a link")
  endif()
endforeach()
run_step("readelf" readelf -d "${libraries}")
if(NOT step_output MATCHES "\\(SONAME\\)[ \t]+Library soname: \\[libtov\\.so\\.1\\]")
  message(FATAL_ERROR "libtov.so.1.1.0 has no SONAME libtov.so.1:\n${step_output}")
endif()

foreach(header tov.h version.h)
  if(NOT EXISTS "${prefix}/include/tov/${header}")
    message(FATAL_ERROR "tov/${header} is not installed")
  endif()
endforeach()

# The shell completes the installed program's commands.
set(completion "${prefix}/share/bash-completion/completions/tov")
if(NOT EXISTS "${completion}")
  message(FATAL_ERROR "share/bash-completion/completions/tov is not installed")
endif()

foreach(schema rules datamodel edit-request link-request options-query)
  if(NOT EXISTS "${prefix}/share/tov/schemas/${schema}.schema.json")
    message(FATAL_ERROR "share/tov/schemas/${schema}.schema.json is not installed")
  endif()
endforeach()

# The installed program finds the installed library by itself and reads the
# example documents.
read_main_cache(TOV_BUILD_TOOLS build_tools)
if(build_tools)
  run_step("installed tov check" "${prefix}/bin/tov" check
    --rules "${SOURCE_DIR}/examples/rules.json" --dm "${SOURCE_DIR}/examples/datamodel.json")
  # tov workbench edits the installed example scenario when given no
  # documents: it is whole, since its suite passes.
  read_main_cache(TOV_BUILD_WORKBENCH build_workbench)
  if(build_workbench)
    foreach(example rules.json datamodel.json scenario.json tests.json
                    requests/edit-part-release-first-pass.json)
      if(NOT EXISTS "${prefix}/share/tov/examples/${example}")
        message(FATAL_ERROR "share/tov/examples/${example} is not installed")
      endif()
    endforeach()
    run_step("installed example suite" "${prefix}/bin/tov" test
      "${prefix}/share/tov/examples/tests.json")
  endif()
endif()

# 1. As a CMake package.
run_step("consumer configure" "${CMAKE_COMMAND}"
  -S "${consumer_source}" -B "${consumer_build}" -G Ninja
  "-DCMAKE_MAKE_PROGRAM=${make_program}"
  "-DCMAKE_CXX_COMPILER=${cxx}"
  "-DCMAKE_CXX_FLAGS=${cxx_flags}"
  "-DCMAKE_EXE_LINKER_FLAGS=${exe_linker_flags}"
  -DCMAKE_BUILD_TYPE=Release
  "-DCMAKE_PREFIX_PATH=${prefix}")
run_step("consumer build" "${CMAKE_COMMAND}" --build "${consumer_build}")
run_step("consumer run (find_package)" "${consumer_build}/tov_host" "${SOURCE_DIR}/examples")
message(STATUS "find_package consumer: ${step_output}")

# 2. Through pkg-config, with no help: the file finds its prefix from its own
# place. The file names no language standard, so a host of a later one builds.
file(GLOB_RECURSE pc_files LIST_DIRECTORIES false "${prefix}/lib*/pkgconfig/tov.pc")
list(LENGTH pc_files count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one installed tov.pc, found: ${pc_files}")
endif()
get_filename_component(pc_dir "${pc_files}" DIRECTORY)
run_step("pkg-config version" "${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${pc_dir}"
  pkg-config --modversion tov)
string(STRIP "${step_output}" pc_version)
if(NOT pc_version STREQUAL "1.1.0")
  message(FATAL_ERROR "tov.pc has version \"${pc_version}\", expected 1.1.0")
endif()
run_step("pkg-config flags" "${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${pc_dir}"
  pkg-config --cflags --libs tov)
string(STRIP "${step_output}" pc_flags)
if(pc_flags MATCHES "-std=")
  message(FATAL_ERROR "tov.pc imposes a language standard: ${pc_flags}")
endif()
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
separate_arguments(extra_flags UNIX_COMMAND "${cxx_flags} ${exe_linker_flags}")
run_step("pkg-config compile" "${cxx}" -std=c++20 "${consumer_source}/main.cpp"
  ${pc_flags} ${extra_flags} -o "${WORK_DIR}/tov_host_pc")
run_step("consumer run (pkg-config)" "${CMAKE_COMMAND}" -E env "LD_LIBRARY_PATH=${libdir}"
  "${WORK_DIR}/tov_host_pc" "${SOURCE_DIR}/examples")
message(STATUS "pkg-config consumer: ${step_output}")

# 3. Hosts in other languages, through the C interface: a C program built with
# examples/c_host/CMakeLists.txt, the installed Python package and a Java
# program compiled against the installed jar each evaluate every example
# request and must print exactly what the installed tov eval prints.
if(NOT EXISTS "${prefix}/include/tov/tov_c.h")
  message(FATAL_ERROR "tov/tov_c.h is not installed")
endif()
include("${SOURCE_DIR}/cmake/example_scenario.cmake")
tov_scenario_steps("${SOURCE_DIR}/examples/scenario.json" steps)
set(examples "${SOURCE_DIR}/examples")
set(documents "${examples}/rules.json" "${examples}/datamodel.json")
set(requests)
set(tov_eval_output "")
list(LENGTH steps step_words)
math(EXPR last "${step_words} - 1")
foreach(i RANGE 0 ${last} 2)
  math(EXPR j "${i} + 1")
  list(GET steps ${i} kind)
  list(GET steps ${j} name)
  set(request "${examples}/requests/${name}.json")
  list(APPEND requests "${kind}" "${request}")
  if(build_tools)
    # tov eval exits 1 or 3 for a refusal, so only its output is judged here.
    execute_process(COMMAND "${prefix}/bin/tov" eval "${kind}" --rules "${examples}/rules.json"
        --dm "${examples}/datamodel.json" "${request}"
      OUTPUT_VARIABLE answer ERROR_QUIET)
  else()
    file(READ "${examples}/expected/${name}.out" answer)
  endif()
  string(APPEND tov_eval_output "${answer}")
endforeach()

# Anything that prints the answers must print them exactly so.
function(expect_tov_eval_output what output)
  if(NOT output STREQUAL tov_eval_output)
    message(FATAL_ERROR "${what} does not print what tov eval prints:\n${output}\n"
      "expected:\n${tov_eval_output}")
  endif()
endfunction()

read_main_cache(CMAKE_C_COMPILER c_compiler)
read_main_cache(CMAKE_C_FLAGS c_flags)
execute_process(COMMAND "${c_compiler}" --version OUTPUT_VARIABLE c_compiler_version)
# A sanitized library needs the C++ parts of the sanitizer runtimes, which
# Clang's C driver leaves out (see cmake/c_programs.cmake).
set(c_host_linker_flags "${exe_linker_flags}")
if(c_compiler_version MATCHES "clang" AND c_flags MATCHES "-fsanitize=")
  string(APPEND c_host_linker_flags " -fsanitize-link-c++-runtime -lstdc++")
endif()
set(c_host_build "${WORK_DIR}/c-host-build")
run_step("C host configure" "${CMAKE_COMMAND}"
  -S "${SOURCE_DIR}/examples/c_host" -B "${c_host_build}" -G Ninja
  "-DCMAKE_MAKE_PROGRAM=${make_program}"
  "-DCMAKE_C_COMPILER=${c_compiler}"
  "-DCMAKE_C_FLAGS=-Wall -Wextra -Wpedantic -Werror ${c_flags}"
  "-DCMAKE_EXE_LINKER_FLAGS=${c_host_linker_flags}"
  -DCMAKE_BUILD_TYPE=Release
  "-DCMAKE_PREFIX_PATH=${prefix}")
run_step("C host build" "${CMAKE_COMMAND}" --build "${c_host_build}")
run_step("C host run" "${c_host_build}/tov_c_host" ${documents} ${requests})
expect_tov_eval_output("the C host" "${step_output}")

# The installed Python package finds the installed library by itself.
read_main_cache(TOV_INSTALL_PYTHON install_python)
if(install_python)
  read_main_cache(TOV_PYTHON_INSTALL_DIR python_dir)
  if(NOT IS_ABSOLUTE "${python_dir}")
    set(python_dir "${prefix}/${python_dir}")
  endif()
  foreach(file __init__.py _engine.py _library.py _texts.py _install_location.py py.typed)
    if(NOT EXISTS "${python_dir}/tov/${file}")
      message(FATAL_ERROR "${python_dir}/tov/${file} is not installed")
    endif()
  endforeach()
  read_main_cache(Python3_EXECUTABLE python)
  set(python_environment --unset=TOV_LIBRARY --unset=LD_LIBRARY_PATH "PYTHONPATH=${python_dir}"
    PYTHONDONTWRITEBYTECODE=1)
  # A sanitized library needs its runtime loaded before the interpreter.
  if(cxx_flags MATCHES "-fsanitize=address")
    execute_process(COMMAND "${cxx}" -print-file-name=libclang_rt.asan-x86_64.so
      OUTPUT_VARIABLE asan_runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
    list(APPEND python_environment "LD_PRELOAD=${asan_runtime}" "ASAN_OPTIONS=detect_leaks=0")
  endif()
  run_step("Python host run" "${CMAKE_COMMAND}" -E env ${python_environment}
    "${python}" "${SOURCE_DIR}/examples/python/evaluate.py" ${documents} ${requests})
  expect_tov_eval_output("the Python package" "${step_output}")
endif()

# The installed Java package: the example host compiled with javac against the
# installed jar alone, and run with nothing else on its class path; the jar
# finds the installed libtov_jni.so from its own place, and that finds
# libtov.so beside itself.
read_main_cache(TOV_BUILD_JAVA build_java)
if(build_java)
  read_main_cache(TOV_JAVA_INSTALL_DIR java_dir)
  if(NOT IS_ABSOLUTE "${java_dir}")
    set(java_dir "${prefix}/${java_dir}")
  endif()
  set(jar "${java_dir}/tov.jar")
  set(jni_library "${libdir}/libtov_jni.so")
  foreach(file "${jar}" "${jni_library}")
    if(NOT EXISTS "${file}")
      message(FATAL_ERROR "${file} is not installed")
    endif()
  endforeach()
  run_step("readelf libtov_jni.so" readelf -d "${jni_library}")
  if(NOT step_output MATCHES "\\((RUNPATH|RPATH)\\)[^\n]*\\[\\$ORIGIN\\]")
    message(FATAL_ERROR "libtov_jni.so does not look for libtov.so beside itself:\n${step_output}")
  endif()

  read_main_cache(Java_JAVAC_EXECUTABLE javac)
  read_main_cache(Java_JAVA_EXECUTABLE java)
  set(java_host "${WORK_DIR}/java-host")
  run_step("Java host compile" "${javac}" -encoding UTF-8 -Xlint:all -Werror -cp "${jar}"
    -d "${java_host}" "${SOURCE_DIR}/examples/java/Evaluate.java")
  # What a JVM needs around a sanitized library, as the Java tests have it.
  set(CMAKE_CXX_COMPILER "${cxx}")
  set(CMAKE_CXX_FLAGS "${cxx_flags}")
  include("${SOURCE_DIR}/cmake/hosted_runtimes.cmake")
  tov_java_environment(java_environment)
  set(java_run "${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH ${java_environment} "${java}")
  run_step("Java host run" ${java_run} -cp "${jar}:${java_host}" Evaluate ${documents} ${requests})
  expect_tov_eval_output("the Java package" "${step_output}")

  # A jar linked from elsewhere, as Debian links jars into /usr/share/java,
  # finds the installation that it links to.
  file(MAKE_DIRECTORY "${WORK_DIR}/linked")
  file(CREATE_LINK "${jar}" "${WORK_DIR}/linked/tov.jar" SYMBOLIC)
  run_step("Java host run through a linked jar" ${java_run}
    -cp "${WORK_DIR}/linked/tov.jar:${java_host}" Evaluate ${documents} ${requests})
  expect_tov_eval_output("the Java package through a linked jar" "${step_output}")

  # The other two ways to the JNI library, from a copy of the jar that has no
  # installation around it: the system property, and java.library.path.
  set(lone_jar "${WORK_DIR}/lone/tov.jar")
  file(COPY "${jar}" DESTINATION "${WORK_DIR}/lone")
  set(one_request edit "${examples}/requests/edit-part-release-first-pass.json")
  foreach(way "-Dtov.jni.library=${jni_library}" "-Djava.library.path=${libdir}")
    run_step("Java host run with ${way}" ${java_run} "${way}" -cp "${lone_jar}:${java_host}"
      Evaluate ${documents} ${one_request})
    file(READ "${examples}/expected/edit-part-release-first-pass.out" expected)
    if(NOT step_output STREQUAL expected)
      message(FATAL_ERROR "the Java host with ${way} printed:\n${step_output}")
    endif()
  endforeach()
  # Without either it fails and says where it looked and how to name the file.
  function(expect_java_failure what words)
    execute_process(COMMAND ${java_run} ${ARGN} RESULT_VARIABLE rc OUTPUT_QUIET ERROR_VARIABLE err)
    string(FIND "${err}" "${words}" at)
    if(rc EQUAL 0 OR at EQUAL -1)
      message(FATAL_ERROR "the Java host ${what} did not fail saying \"${words}\" (${rc}):\n${err}")
    endif()
  endfunction()
  # It looked where an installation would have put the library, relative to
  # the jar, and beside the jar.
  file(RELATIVE_PATH library_from_jar "${java_dir}" "${libdir}")
  set(installed_place "${library_from_jar}/libtov_jni.so")
  cmake_path(ABSOLUTE_PATH installed_place BASE_DIRECTORY "${WORK_DIR}/lone" NORMALIZE)
  expect_java_failure("without its library"
    "cannot load libtov_jni.so: tried [${installed_place}, ${WORK_DIR}/lone/libtov_jni.so] and java.library.path ("
    -cp "${lone_jar}:${java_host}" Evaluate ${documents})
  expect_java_failure("without its library" "); name the file with -Dtov.jni.library=PATH"
    -cp "${lone_jar}:${java_host}" Evaluate ${documents})
  # A named file that is not there is named in the failure.
  expect_java_failure("with a missing library file"
    "java.lang.UnsatisfiedLinkError: Can't load library: ${WORK_DIR}/missing/libtov_jni.so"
    "-Dtov.jni.library=${WORK_DIR}/missing/libtov_jni.so" -cp "${jar}:${java_host}" Evaluate
    ${documents})
endif()
