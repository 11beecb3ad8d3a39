# Installs the built tree into WORK_DIR/prefix, then builds and runs the consumer through
# find_package(TarnvikExtensions) and through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${CXX})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${WORK_DIR}/consumer/consumer)
if(NOT last_output MATCHES "Path /x does not exist")
  message(FATAL_ERROR "unexpected consumer output: ${last_output}")
endif()

file(GLOB pc_dirs ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "${pc_dirs}")
run(pkg-config --cflags --libs tarnvik)
string(STRIP "${last_output}" flags)
if(flags MATCHES "-std=")
  message(FATAL_ERROR "pkg-config forces a language standard: ${flags}")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
# A consumer on a newer standard than the library's own.
run(${CXX} -std=c++2b ${SOURCE_DIR}/main.cpp -o ${WORK_DIR}/pc-consumer ${flags})
run(${WORK_DIR}/pc-consumer)
