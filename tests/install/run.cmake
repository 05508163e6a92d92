# A newcomer's first hour as a test. The built library is installed into a scratch prefix,
# which is then moved elsewhere (the package must not remember where it was installed). The
# README's first program is copied out of README.md into a folder outside the source tree and
# built against the moved package twice, once with find_package(KXCharts) and once with
# pkg-config; both programs must run and write their three pictures and their form.
#
#   cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DCONSUMER_DIR=... -DGENERATOR=... -DCXX=...
#         -DPKG_CONFIG=... -P run.cmake

function(fail)
  string(JOIN "" text ${ARGN})
  message(FATAL_ERROR "${text}")
endfunction()

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(rc)
    fail("${what} failed (${rc}):\n${out}\n${err}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

# Outside the source tree, so that nothing but the package can be found; one folder per
# build folder, so that builds of several work trees do not meet.
if(DEFINED ENV{TMPDIR} AND IS_DIRECTORY "$ENV{TMPDIR}")
  set(temp "$ENV{TMPDIR}")
else()
  set(temp /tmp)
endif()
string(SHA1 id "${BUILD_DIR}")
string(SUBSTRING "${id}" 0 12 id)
set(work "${temp}/kxcharts-first-hour-${id}")
file(REMOVE_RECURSE "${work}")

# --- Install, then move ---
run("install" ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${work}/installed")
file(MAKE_DIRECTORY "${work}/moved")
file(RENAME "${work}/installed" "${work}/moved/kx")
set(prefix "${work}/moved/kx")
file(GLOB pc_dir LIST_DIRECTORIES true "${prefix}/lib*/pkgconfig")
if(NOT EXISTS "${pc_dir}/kxcharts.pc")
  fail("no kxcharts.pc under ${prefix}/lib*/pkgconfig")
endif()

# --- The README's program ---
file(READ "${SOURCE_DIR}/README.md" readme)
set(marker "<!-- first-chart")
string(FIND "${readme}" "${marker}" at)
if(at EQUAL -1)
  fail("README.md has no '${marker}' line before its first program: put it back above the "
       "program's code block")
endif()
string(SUBSTRING "${readme}" ${at} -1 readme)
string(FIND "${readme}" "```cpp\n" open)
if(open EQUAL -1)
  fail("README.md has no ```cpp block after '${marker}'")
endif()
math(EXPR open "${open} + 7")
string(SUBSTRING "${readme}" ${open} -1 readme)
string(FIND "${readme}" "\n```" close)
math(EXPR close "${close} + 1")
string(SUBSTRING "${readme}" 0 ${close} program)
file(MAKE_DIRECTORY "${work}/app")
file(WRITE "${work}/app/first_chart.cpp" "${program}")
configure_file("${CONSUMER_DIR}/CMakeLists.txt" "${work}/app/CMakeLists.txt" COPYONLY)

# --- Built with the CMake package ---
run("configuring the program with find_package(KXCharts)"
    ${CMAKE_COMMAND} -S "${work}/app" -B "${work}/app/build" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_BUILD_TYPE=Debug)
run("building the program with find_package(KXCharts)" ${CMAKE_COMMAND} --build "${work}/app/build")

# --- Built with pkg-config ---
run("pkg-config" ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${pc_dir}"
    "${PKG_CONFIG}" --cflags --libs kxcharts)
string(STRIP "${run_output}" flags)
string(FIND "${flags}" "-I${prefix}/" into_moved)
string(FIND "${flags}" "/installed/" into_old)
if(into_moved EQUAL -1 OR NOT into_old EQUAL -1)
  fail("pkg-config does not point into the moved package (${prefix}): ${flags}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
run("building the program with pkg-config"
    "${CXX}" "${work}/app/first_chart.cpp" ${flags} -o "${work}/app/first_chart_pc")

# --- Run both, each in a folder of its own ---
foreach(variant cmake pc)
  if(variant STREQUAL "cmake")
    set(exe "${work}/app/build/first_chart")
  else()
    set(exe "${work}/app/first_chart_pc")
  endif()
  set(dir "${work}/run-${variant}")
  file(MAKE_DIRECTORY "${dir}")
  execute_process(COMMAND "${exe}" WORKING_DIRECTORY "${dir}" RESULT_VARIABLE rc
                  OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(rc OR NOT out MATCHES "read back [1-9][0-9]* values")
    fail("the program built with ${variant} failed (${rc}): ${out}${err}")
  endif()
  # Each file what it claims to be.
  foreach(pair "png;89504e47" "svg;3c3f786d6c" "pdf;25504446" "json;7b")
    list(GET pair 0 ext)
    list(GET pair 1 magic)
    file(GLOB written "${dir}/*.${ext}")
    list(LENGTH written n)
    if(NOT n EQUAL 1)
      fail("the program built with ${variant} wrote ${n} .${ext} files, not one")
    endif()
    string(LENGTH "${magic}" hex_length)
    math(EXPR bytes "${hex_length} / 2")
    file(READ "${written}" head LIMIT ${bytes} HEX)
    if(NOT head STREQUAL magic)
      fail("${written} does not start like a .${ext} file")
    endif()
  endforeach()
endforeach()

file(REMOVE_RECURSE "${work}")
