# Shared build helpers: warnings as an interface target that tests link too,
# and one function per kind of target, so that flags are written once.

add_library(qorvane_warnings INTERFACE)
target_compile_options(qorvane_warnings INTERFACE -Wall -Wextra -Wpedantic -Werror)
# Modules loaded at run time must keep their own inline variables.
target_compile_options(qorvane_warnings INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

# qorvane_library(name [SHARED] SOURCES a.cpp ... [LINK lib ...])
function(qorvane_library name)
  cmake_parse_arguments(ARG "SHARED" "" "SOURCES;LINK" ${ARGN})
  if(ARG_SHARED)
    add_library(${name} SHARED ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES
      LIBRARY_OUTPUT_DIRECTORY ${QORVANE_BIN_DIR}
      BUILD_RPATH "$ORIGIN" INSTALL_RPATH "$ORIGIN")
  else()
    add_library(${name} STATIC ${ARG_SOURCES})
  endif()
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE qorvane_warnings)
endfunction()

# qorvane_test(name SOURCES a.cpp ... [LINK lib ...]): one GoogleTest program under CTest.
function(qorvane_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE
    QORVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    QORVANE_BUILD_DIR="${CMAKE_BINARY_DIR}")
  target_link_libraries(${name} PRIVATE ${ARG_LINK} qorvane_warnings
    GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 300)
endfunction()

# qorvane_bench(name SOURCES a.cpp ... [LINK lib ...]): one Google Benchmark program.
function(qorvane_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} qorvane_warnings benchmark::benchmark)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()

# qorvane_fuzz(name source [libs...]): a libFuzzer program when QORVANE_FUZZ is on, otherwise a
# program that replays files through the same entry, run over the corpus as a test.
function(qorvane_fuzz name source)
  if(QORVANE_FUZZ)
    add_executable(${name} ${source})
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    add_executable(${name} ${source} ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
    add_test(NAME ${name} COMMAND ${name} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE ${ARGN} qorvane_warnings)
endfunction()
