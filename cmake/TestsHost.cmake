# The host flavours' side of Tests.cmake.
find_package(GTest REQUIRED)

# -fno-rtti as in the engine: a test's class may derive from one of the engine's.
add_library(kavrel_unit_test_base INTERFACE)
target_link_libraries(kavrel_unit_test_base INTERFACE
  kavrel_warnings GTest::gmock)
# Quickly compiled: most of a build's time is the tests', and little of it their own.
target_compile_options(kavrel_unit_test_base INTERFACE -fno-rtti -O0 -g1)
target_compile_definitions(kavrel_unit_test_base INTERFACE
  KAVREL_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data")
target_include_directories(kavrel_unit_test_base INTERFACE "${CMAKE_SOURCE_DIR}/tests")

add_library(kavrel_unit_main STATIC "${CMAKE_SOURCE_DIR}/tests/unit_main.cpp")
target_include_directories(kavrel_unit_main PRIVATE "${CMAKE_SOURCE_DIR}/src")
target_link_libraries(kavrel_unit_main PRIVATE kavrel_unit_test_base)

function(kavrel_unit_test room)
  add_executable(unit_${room} ${ARGN})
  target_link_libraries(unit_${room} PRIVATE kavrel_engine kavrel_unit_test_base kavrel_unit_main)
  add_test(NAME unit_${room} COMMAND unit_${room})
  set_tests_properties(unit_${room} PROPERTIES TIMEOUT 300 LABELS unit)
endfunction()

# Seconds that each fuzzer runs within the tests. By hand: build/host-asan/tests/fuzz/fuzz_<name>.
set(KAVREL_FUZZ_SECONDS 3 CACHE STRING "Seconds that each fuzzer runs as a test")

function(kavrel_fuzz_test name)
  cmake_parse_arguments(FUZZ "" "CORPUS;DICTIONARY" "" ${ARGN})
  if(KAVREL_COVERAGE)
    # Runs inputs that were found elsewhere.
    list(APPEND FUZZ_UNPARSED_ARGUMENTS replay_main.cpp)
  elseif(NOT KAVREL_SANITIZE MATCHES "address")
    return()
  endif()
  add_executable(fuzz_${name} ${FUZZ_UNPARSED_ARGUMENTS})
  target_link_libraries(fuzz_${name} PRIVATE kavrel_warnings kavrel_engine)
  target_compile_options(fuzz_${name} PRIVATE -fno-rtti)
  if(KAVREL_COVERAGE)
    return()
  endif()
  target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer-no-link)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  # New inputs go to a folder of the build; the checked-in corpus only seeds the run.
  set(found "${CMAKE_CURRENT_BINARY_DIR}/${name}-corpus")
  file(MAKE_DIRECTORY "${found}")
  set(arguments -max_total_time=${KAVREL_FUZZ_SECONDS} -timeout=10 -print_final_stats=1
    -artifact_prefix=${CMAKE_CURRENT_BINARY_DIR}/${name}-)
  if(FUZZ_DICTIONARY)
    list(APPEND arguments "-dict=${CMAKE_CURRENT_SOURCE_DIR}/${FUZZ_DICTIONARY}")
  endif()
  if(FUZZ_CORPUS)
    list(APPEND arguments "${found}" "${CMAKE_CURRENT_SOURCE_DIR}/${FUZZ_CORPUS}")
  else()
    list(APPEND arguments "${found}")
  endif()
  add_test(NAME fuzz_${name} COMMAND fuzz_${name} ${arguments})
  set_tests_properties(fuzz_${name} PROPERTIES TIMEOUT 120 LABELS fuzz)
endfunction()

function(kavrel_benchmark name)
  cmake_parse_arguments(BENCH "" "" "LIBS" ${ARGN})
  add_executable(${name} ${BENCH_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE kavrel_warnings kavrel_engine benchmark::benchmark
    ${BENCH_LIBS})
  target_compile_options(${name} PRIVATE -fno-rtti)
endfunction()

function(kavrel_automation_test)
endfunction()
function(kavrel_script_test)
endfunction()
function(kavrel_native_library)
endfunction()
