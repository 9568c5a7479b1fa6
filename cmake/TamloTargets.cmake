# Helpers that keep each folder's CMakeLists.txt to its list of sources and neighbours.

# Compiler rules of every target of the project. No contraction of a * b + c and no fast math: the same
# source gives the same bytes whatever the number of cores.
add_library(tamlo_rules INTERFACE)
target_compile_features(tamlo_rules INTERFACE cxx_std_20)
target_include_directories(tamlo_rules INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(tamlo_rules INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror -ffp-contract=off)
# GCC 12 warns of std::optional<std::string> members that it can't follow, at -O2 only.
target_compile_options(tamlo_rules INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
if(TAMLO_SANITIZE)
  target_compile_options(tamlo_rules INTERFACE -fsanitize=${TAMLO_SANITIZE} -fno-omit-frame-pointer -O1
                                               -fno-sanitize-recover=all)
  target_link_options(tamlo_rules INTERFACE -fsanitize=${TAMLO_SANITIZE})
endif()

# tamlo_library(NAME SOURCES ... LINKS ... [PRIVATE_LINKS ...]): a static library tamlo_NAME, alias
# tamlo::NAME. LINKS are the folders below this one; PRIVATE_LINKS are third-party libraries.
function(tamlo_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(tamlo_${name} STATIC ${ARG_SOURCES})
  add_library(tamlo::${name} ALIAS tamlo_${name})
  target_link_libraries(tamlo_${name} PUBLIC tamlo_rules ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
endfunction()

# tamlo_test(NAME SOURCES ... LINKS ...): a GoogleTest program NAME_test, one CTest entry a case.
function(tamlo_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name}_test ${ARG_SOURCES})
  target_link_libraries(${name}_test PRIVATE ${ARG_LINKS} tamlo_rules GTest::gtest_main)
  target_compile_definitions(${name}_test PRIVATE TAMLO_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
                                                  TAMLO_SAMPLES="${PROJECT_SOURCE_DIR}/tests/samples")
  gtest_discover_tests(${name}_test DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600
                       ENVIRONMENT TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/tsan.supp)
endfunction()

# tamlo_bench(NAME LINKS ...): a Google Benchmark program NAME_bench from NAME_bench.cpp.
function(tamlo_bench name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  add_executable(${name}_bench ${name}_bench.cpp)
  target_link_libraries(${name}_bench PRIVATE ${ARG_LINKS} tamlo_rules benchmark::benchmark)
endfunction()

# tamlo_ui_library(NAME SOURCES ... LINKS ... [PRIVATE_LINKS ...]): a tamlo_library of widgets. Headers with
# Q_OBJECT are listed among the sources.
function(tamlo_ui_library name)
  tamlo_library(${name} ${ARGN})
  set_target_properties(tamlo_${name} PROPERTIES AUTOMOC ON)
  target_compile_definitions(tamlo_${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_FOREACH)
  target_link_libraries(tamlo_${name} PUBLIC Qt6::Widgets)
endfunction()
