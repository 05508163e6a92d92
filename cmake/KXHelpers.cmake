# The one place that says how a target of this project is compiled.
#
#   kx_add_layer(NAME FOLDERS f... LINKS l...)  a library layer made of kxcharts/<f>/*.cpp
#   kx_add_test(FOLDER LAYER)                tests/FOLDER/**.cpp as one GoogleTest program
#                                            against LAYER, labelled FOLDER (`ctest -L FOLDER`);
#                                            a subfolder that mirrors another layer's folder
#                                            (tests/charts/bars) is that layer's program
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

# A layer's headers are reached through a tree of links of its own under the build folder
# (kx-include/NAME/kxcharts/<folder>/X.h), never through the source tree: a layer compiles
# against its own tree and the trees of the layers it links, so it cannot include a header
# from above. Headers named *_p.h are the layer's private ones: they go into a second tree
# that only the layer and its tests see, and they are not installed.
function(kx_add_layer name)
  cmake_parse_arguments(L "" "" "FOLDERS;LINKS" ${ARGN})
  set(public_root ${PROJECT_BINARY_DIR}/kx-include/${name})
  set(private_root ${PROJECT_BINARY_DIR}/kx-include/${name}-private)
  file(REMOVE_RECURSE ${public_root} ${private_root})
  set(sources)
  set(public_headers)
  foreach(folder ${L_FOLDERS})
    set_property(GLOBAL PROPERTY KX_LAYER_OF_${folder} ${name})
    set(dir ${PROJECT_SOURCE_DIR}/kxcharts/${folder})
    file(GLOB cpp CONFIGURE_DEPENDS ${dir}/*.cpp)
    file(GLOB headers CONFIGURE_DEPENDS ${dir}/*.h)
    list(APPEND sources ${cpp})
    foreach(header ${headers})
      get_filename_component(file ${header} NAME)
      if(file MATCHES "_p\\.h$")
        set(root ${private_root})
      else()
        set(root ${public_root})
        list(APPEND public_headers kxcharts/${folder}/${file})
        install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kxcharts/${folder})
      endif()
      file(MAKE_DIRECTORY ${root}/kxcharts/${folder})
      file(CREATE_LINK ${header} ${root}/kxcharts/${folder}/${file} SYMBOLIC)
    endforeach()
  endforeach()
  file(MAKE_DIRECTORY ${public_root} ${private_root})
  add_library(${name} ${sources})
  kx_target_defaults(${name})
  target_include_directories(${name}
    PUBLIC $<BUILD_INTERFACE:${public_root}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE ${private_root})
  target_link_libraries(${name} PUBLIC ${L_LINKS})
  list(TRANSFORM public_headers REPLACE "/\\./" "/")
  set_target_properties(${name} PROPERTIES KX_PRIVATE_INCLUDE ${private_root}
                                           KX_PUBLIC_HEADERS "${public_headers}"
                                           VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()

# Every installed header compiles on its own (it includes what it uses), and all of them
# compile together in one translation unit (no two declare the same name). Both are builds,
# not runs: a header that fails either fails the build.
function(kx_add_header_checks)
  set(dir ${CMAKE_CURRENT_BINARY_DIR}/header-checks)
  file(REMOVE_RECURSE ${dir})
  set(sources)
  set(all "")
  foreach(layer ${ARGN})
    get_target_property(headers ${layer} KX_PUBLIC_HEADERS)
    foreach(header ${headers})
      string(MAKE_C_IDENTIFIER ${header} id)
      # Twice, so that a header without its guard fails too.
      file(WRITE ${dir}/${id}.cpp "#include \"${header}\"\n#include \"${header}\"\n")
      list(APPEND sources ${dir}/${id}.cpp)
      string(APPEND all "#include \"${header}\"\n")
    endforeach()
  endforeach()
  file(WRITE ${dir}/all_headers.cpp "${all}")
  add_library(kx_header_checks OBJECT ${sources} ${dir}/all_headers.cpp)
  kx_target_defaults(kx_header_checks)
  target_link_libraries(kx_header_checks PRIVATE ${ARGN})
endfunction()

function(kx_add_executable name)
  add_executable(${name} ${ARGN})
  kx_target_defaults(${name})
  target_link_libraries(${name} PRIVATE kxcharts)
endfunction()

function(kx_add_test folder layer)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  # The tests of a nested library folder that is a layer of its own (charts/bars under
  # charts) go into that layer's program, not into this one, which cannot see its headers.
  foreach(source ${sources})
    file(RELATIVE_PATH relative ${CMAKE_CURRENT_SOURCE_DIR} ${source})
    get_filename_component(dir ${relative} DIRECTORY)
    while(NOT dir STREQUAL folder AND NOT dir STREQUAL "")
      get_property(owner GLOBAL PROPERTY KX_LAYER_OF_${dir})
      if(owner AND NOT owner STREQUAL layer)
        list(REMOVE_ITEM sources ${source})
        break()
      endif()
      get_filename_component(dir ${dir} DIRECTORY)
    endwhile()
  endforeach()
  if(NOT sources)
    return()
  endif()
  set(name kx_test_${folder})
  string(REPLACE "/" "_" name ${name})
  add_executable(${name} ${sources} ${PROJECT_SOURCE_DIR}/tests/KXLeakSuppressions.cpp)
  kx_target_defaults(${name})
  get_target_property(private ${layer} KX_PRIVATE_INCLUDE)
  target_include_directories(${name} PRIVATE ${private})
  target_link_libraries(${name} PRIVATE ${layer} kx_test_support GTest::gtest GTest::gmock)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
    PROPERTIES LABELS ${folder} ENVIRONMENT "KX_SOURCE_DIR=${PROJECT_SOURCE_DIR}")
endfunction()

function(kx_add_bench name)
  add_executable(${name} ${ARGN})
  kx_target_defaults(${name})
  target_link_libraries(${name} PRIVATE kxcharts benchmark::benchmark)
endfunction()
