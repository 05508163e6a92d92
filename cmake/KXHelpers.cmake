# The one place that says how a target of this project is compiled.
#
#   kx_add_library(NAME SOURCES...)          a library with the project's warnings
#   kx_add_test(FOLDER)                      tests/FOLDER/*.cpp as one GoogleTest program,
#                                            labelled FOLDER for `ctest -L FOLDER`
#   kx_add_bench(NAME SOURCES...)            a Google Benchmark program
#   kx_add_executable(NAME SOURCES...)       an application

function(kx_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Woverloaded-virtual)
  if(KX_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(KX_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()

function(kx_add_library name)
  add_library(${name} ${ARGN})
  kx_target_defaults(${name})
endfunction()

function(kx_add_executable name)
  add_executable(${name} ${ARGN})
  kx_target_defaults(${name})
  target_link_libraries(${name} PRIVATE kxcharts)
endfunction()

function(kx_add_test folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  set(name kx_test_${folder})
  string(REPLACE "/" "_" name ${name})
  add_executable(${name} ${sources} ${PROJECT_SOURCE_DIR}/tests/KXLeakSuppressions.cpp)
  kx_target_defaults(${name})
  target_link_libraries(${name} PRIVATE kxcharts kx_test_support GTest::gtest GTest::gmock)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
    PROPERTIES LABELS ${folder} ENVIRONMENT "KX_SOURCE_DIR=${PROJECT_SOURCE_DIR}")
endfunction()

function(kx_add_bench name)
  add_executable(${name} ${ARGN})
  kx_target_defaults(${name})
  target_link_libraries(${name} PRIVATE kxcharts benchmark::benchmark)
endfunction()
