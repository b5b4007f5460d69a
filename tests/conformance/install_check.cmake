# Installs the build into a fresh prefix, then builds the example program
# against it twice, through find_package(orvvm) and through pkg-config, and
# runs both.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
endfunction()
run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
foreach(f include/orvvm.h lib/liborvvm.so.6 lib/liborvvm.a lib/cmake/orvvm/orvvmConfig.cmake
          lib/cmake/orvvm/orvvmConfigVersion.cmake lib/pkgconfig/orvvm.pc)
  if(NOT EXISTS "${prefix}/${f}")
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

run(${CMAKE_COMMAND} -S "${SOURCE_DIR}/examples" -B "${WORK_DIR}/example" "-DCMAKE_PREFIX_PATH=${prefix}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/example")
run(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefix}/lib" "${WORK_DIR}/example/example")

run(${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${prefix}/lib/pkgconfig" pkg-config --cflags --libs orvvm)
execute_process(COMMAND ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${prefix}/lib/pkgconfig" pkg-config --cflags --libs orvvm
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(flags)
run(cc -std=c99 "${SOURCE_DIR}/examples/example.c" ${flags} -o "${WORK_DIR}/example_pc")
run(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefix}/lib" "${WORK_DIR}/example_pc")
message(STATUS "the installed package builds and runs the example")
