# The Windows flavours' side of Tests.cmake.
set(runWine "${CMAKE_SOURCE_DIR}/tools/run-wine")
set(runWithPorts "${CMAKE_SOURCE_DIR}/tools/run_with_ports.py")
set(winePrefix "${CMAKE_BINARY_DIR}/prefix")

# GoogleTest for mingw, from Debian's sources, with the tests' main program.
set(googletest /usr/src/googletest)
if(NOT EXISTS "${googletest}/googletest/src/gtest-all.cc")
  message(FATAL_ERROR "No GoogleTest sources in ${googletest}: run tools/setup")
endif()
add_library(kavrel_gtest STATIC
  "${googletest}/googletest/src/gtest-all.cc" "${googletest}/googlemock/src/gmock-all.cc"
  "${CMAKE_SOURCE_DIR}/tests/wine_main.cpp")
target_include_directories(kavrel_gtest SYSTEM PUBLIC
  "${googletest}/googletest/include" "${googletest}/googlemock/include"
  PRIVATE "${googletest}/googletest" "${googletest}/googlemock")

add_library(kavrel_wine_test_base INTERFACE)
target_link_libraries(kavrel_wine_test_base INTERFACE
  kavrel_warnings kavrel_gtest ole32 oleaut32 uuid)
target_link_options(kavrel_wine_test_base INTERFACE -static)
if(KAVREL_COVERAGE)
  # Some programs have sources of the library of their own.
  target_compile_options(kavrel_wine_test_base INTERFACE ${coverage})
  target_link_options(kavrel_wine_test_base INTERFACE --coverage)
endif()
# Z: is the build machine's file system.
target_compile_definitions(kavrel_wine_test_base INTERFACE
  KAVREL_TEST_DATA="Z:${CMAKE_SOURCE_DIR}/tests/data"
  KAVREL_DLL="Z:${CMAKE_BINARY_DIR}/KavrelCE.dll"
  KAVREL_BUILD="Z:${CMAKE_BINARY_DIR}")
target_include_directories(kavrel_wine_test_base INTERFACE
  "${CMAKE_SOURCE_DIR}/src" "${CMAKE_SOURCE_DIR}/tests")

# A prefix as tests that CTest runs before the first and after the last test that needs it; fixture
# <name>_registered is the same with the DLL registered, unless the prefix is to stay UNREGISTERED.
function(kavrel_wine_prefix name folder)
  cmake_parse_arguments(PREFIX "UNREGISTERED" "" "" ${ARGN})
  set(options ${PREFIX_UNPARSED_ARGUMENTS})
  if(KAVREL_BITS EQUAL 32)
    list(APPEND options --with-32-bit)
  endif()
  if(TARGET ttysim)
    list(APPEND options --shim "${CMAKE_BINARY_DIR}/libttysim.so")
  endif()
  set(tool "${CMAKE_SOURCE_DIR}/tools/wine-prefix")
  add_test(NAME ${name}_up COMMAND "${tool}" up "${folder}" ${options})
  add_test(NAME ${name}_down COMMAND "${tool}" down "${folder}")
  set_tests_properties(${name}_up PROPERTIES FIXTURES_SETUP ${name} TIMEOUT 300)
  set_tests_properties(${name}_down PROPERTIES FIXTURES_CLEANUP ${name} TIMEOUT 300)

  if(PREFIX_UNREGISTERED)
    return()
  endif()
  # A Windows path, so that the loader finds the device flavour's coredll.dll beside the DLL.
  string(REPLACE "/" "\\" dll "Z:${CMAKE_BINARY_DIR}/KavrelCE.dll")
  add_test(NAME ${name}_register COMMAND "${runWine}" "${folder}" regsvr32 /s "${dll}")
  set_tests_properties(${name}_register PROPERTIES
    FIXTURES_REQUIRED ${name} FIXTURES_SETUP ${name}_registered TIMEOUT 60)
endfunction()

# Called once, when all test folders have been read.
function(kavrel_wine_fixtures)
  kavrel_wine_prefix(wine_prefix "${winePrefix}")
  get_property(windowless GLOBAL PROPERTY KAVREL_WINDOWLESS_TESTS)
  if(windowless)
    kavrel_wine_prefix(windowless_prefix "${winePrefix}-windowless" --windowless)
  endif()
  get_property(unregistered GLOBAL PROPERTY KAVREL_UNREGISTERED_TESTS)
  if(unregistered)
    kavrel_wine_prefix(unregistered_prefix "${winePrefix}-unregistered" UNREGISTERED)
  endif()
endfunction()

function(kavrel_wine_test_properties name)
  cmake_parse_arguments(TEST "REGISTRY;ALONE;WINDOWLESS;UNREGISTERED;SERIAL" "" "" ${ARGN})
  set(prefix wine_prefix)
  set(locks "")
  if(TEST_WINDOWLESS)
    set(prefix windowless_prefix)
    set_property(GLOBAL PROPERTY KAVREL_WINDOWLESS_TESTS TRUE)
  endif()
  set(fixtures "${prefix};${prefix}_registered")
  if(TEST_UNREGISTERED)
    set(fixtures unregistered_prefix)
    set_property(GLOBAL PROPERTY KAVREL_UNREGISTERED_TESTS TRUE)
  endif()
  set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED "${fixtures}" TIMEOUT 120)
  if(TEST_REGISTRY)
    list(APPEND locks registry)
  endif()
  if(TEST_SERIAL)
    list(APPEND locks serial)
  endif()
  set_tests_properties(${name} PROPERTIES RESOURCE_LOCK "${locks}")
  if(TEST_ALONE)
    set_tests_properties(${name} PROPERTIES RUN_SERIAL TRUE)
  endif()
endfunction()

function(kavrel_automation_test name)
  cmake_parse_arguments(TEST "REGISTRY;ALONE;WINDOWLESS;UNREGISTERED;SERIAL" "" "LIBS" ${ARGN})
  set(target automation_${name})
  add_executable(${target} ${TEST_UNPARSED_ARGUMENTS})
  target_link_libraries(${target} PRIVATE kavrel_wine_test_base kavrel_idl ${TEST_LIBS})
  target_precompile_headers(${target} REUSE_FROM kavrel_automation_support)
  # The library's own sources know no more than they include.
  list(FILTER TEST_UNPARSED_ARGUMENTS INCLUDE REGEX "^/")
  set_source_files_properties(${TEST_UNPARSED_ARGUMENTS} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  add_dependencies(${target} KavrelCE)
  set(prefix "${winePrefix}")
  set(flags "")
  foreach(flag REGISTRY ALONE WINDOWLESS UNREGISTERED SERIAL)
    if(TEST_${flag})
      list(APPEND flags ${flag})
    endif()
  endforeach()
  if(TEST_WINDOWLESS)
    string(APPEND prefix -windowless)
  endif()
  if(TEST_UNREGISTERED)
    string(APPEND prefix -unregistered)
  endif()
  set(runner "${runWine}")
  if(TEST_SERIAL)
    set(runner "${runWithPorts}")
  endif()
  # In the DLL's folder, where a test that loads it by path finds coredll.dll, too.
  add_test(NAME ${target} COMMAND "${runner}" "${prefix}" "$<TARGET_FILE:${target}>"
    WORKING_DIRECTORY "${CMAKE_BINARY_DIR}")
  kavrel_wine_test_properties(${target} ${flags})
  set_tests_properties(${target} PROPERTIES LABELS automation
    ENVIRONMENT "TEST_PREMATURE_EXIT_FILE=Z:${CMAKE_CURRENT_BINARY_DIR}/${target}.unfinished")
endfunction()

function(kavrel_script_test file)
  cmake_parse_arguments(TEST "REGISTRY" "HOST;RECEIVER;LAST;EXPECTED" "ARGS" ${ARGN})
  cmake_path(GET file FILENAME filename)
  set(name "script_${filename}")
  if(file MATCHES "/samples/")
    set(name "sample_${filename}")
  endif()
  string(REPLACE "." "_" name "${name}")
  set(host cscript //nologo)
  if(TEST_HOST STREQUAL scripthost)
    set(host "$<TARGET_FILE:scripthost>")
  elseif(TEST_HOST AND NOT TEST_HOST STREQUAL cscript)
    message(FATAL_ERROR "kavrel_script_test(${file}): unknown host ${TEST_HOST}")
  endif()
  cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" OUTPUT_VARIABLE path)
  set(flags "")
  set(receiver "")
  if(TEST_RECEIVER)
    set(receiver --receiver "${CMAKE_SOURCE_DIR}/${TEST_RECEIVER}")
    list(APPEND flags SERIAL)
  endif()
  set(checks "")
  if(TEST_LAST)
    list(APPEND checks --last "${TEST_LAST}")
  endif()
  if(TEST_EXPECTED)
    list(APPEND checks --expected "${CMAKE_CURRENT_SOURCE_DIR}/${TEST_EXPECTED}")
  endif()
  add_test(NAME ${name} COMMAND "${CMAKE_SOURCE_DIR}/tools/run_script_test.py" ${receiver} ${checks}
    "${winePrefix}" "${path}" ${host} -- ${TEST_ARGS})
  if(TEST_REGISTRY)
    list(APPEND flags REGISTRY)
  endif()
  kavrel_wine_test_properties(${name} ${flags})
  set_tests_properties(${name} PROPERTIES LABELS script)
endfunction()

# A library for the Unix side of Wine, built by the build machine's own compiler.
function(kavrel_native_library name)
  list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/" OUTPUT_VARIABLE sources)
  set(library "${CMAKE_BINARY_DIR}/lib${name}.so")
  file(GLOB headers CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
  add_custom_command(OUTPUT "${library}"
    COMMAND g++ -std=c++20 -O2 -g -Wall -Wextra -Werror -shared -fPIC -o "${library}" ${sources}
      -ldl
    DEPENDS ${sources} ${headers}
    VERBATIM)
  add_custom_target(${name} ALL DEPENDS "${library}")
endfunction()

function(kavrel_unit_test)
endfunction()
function(kavrel_fuzz_test)
endfunction()
