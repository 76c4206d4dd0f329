# Installs the build into a fresh prefix under WORK_DIR, then configures, builds and runs
# the consumer project against it. WORK_DIR is this test's own and is removed after a
# pass; after a failure it stays for a look.
foreach(var BUILD_DIR CONSUMER_DIR WORK_DIR INITIAL_CACHE GENERATOR)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "consumerCheck.cmake needs -D${var}=...")
  endif()
endforeach()

function(step what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed: ${status}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
step("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
step("configuring the consumer" ${CMAKE_COMMAND} -C ${INITIAL_CACHE} -G ${GENERATOR}
  -S ${CONSUMER_DIR} -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
step("building the consumer" ${CMAKE_COMMAND} --build ${WORK_DIR}/build -j2)
step("meshTool" ${WORK_DIR}/build/meshTool ${WORK_DIR}/torus.ply)
step("everyHeader" ${WORK_DIR}/build/everyHeader)
file(REMOVE_RECURSE ${WORK_DIR})
