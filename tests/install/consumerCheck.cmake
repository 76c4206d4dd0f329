# Installs the build into a fresh prefix under WORK_DIR, then configures, builds and runs
# the consumer project against it. WORK_DIR is this test's own and is removed after a
# pass; after a failure it stays for a look.
foreach(var SOURCE_DIR BUILD_DIR INCLUDE_DIR CONSUMER_DIR WORK_DIR INITIAL_CACHE GENERATOR)
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

# The README's "Using the library" shows the consumer's files: each of its code blocks
# must appear verbatim in the file it stands for.
file(READ ${SOURCE_DIR}/README.md readme)
string(FIND "${readme}" "## Using the library\n" sectionStart)
if(sectionStart EQUAL -1)
  message(FATAL_ERROR "README.md has no \"Using the library\" section")
endif()
string(SUBSTRING "${readme}" ${sectionStart} -1 section)
string(FIND "${section}" "\n## " sectionEnd)
string(SUBSTRING "${section}" 0 ${sectionEnd} section)
function(expectShown fence file)
  string(FIND "${section}" "```${fence}\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "README.md's \"Using the library\" has no ${fence} block")
  endif()
  string(LENGTH "```${fence}\n" fenceLength)
  math(EXPR at "${at} + ${fenceLength}")
  string(SUBSTRING "${section}" ${at} -1 block)
  string(FIND "${block}" "```" blockEnd)
  string(SUBSTRING "${block}" 0 ${blockEnd} block)
  file(READ ${CONSUMER_DIR}/${file} content)
  string(FIND "${content}" "${block}" found)
  if(found EQUAL -1)
    message(FATAL_ERROR "README.md's ${fence} block in \"Using the library\" is not in "
                        "examples/consumer/${file}")
  endif()
endfunction()
expectShown(cmake CMakeLists.txt)
expectShown(cpp main.cpp)

file(REMOVE_RECURSE ${WORK_DIR})
step("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix OUTPUT_QUIET)

# Every header outside internal/ is public and must be installed; the consumer below
# only sees what was.
file(GLOB_RECURSE sourceHeaders RELATIVE ${SOURCE_DIR}
  ${SOURCE_DIR}/jev3d/*.h ${SOURCE_DIR}/jev3d/*.hpp ${SOURCE_DIR}/jev3d/*.inl)
list(FILTER sourceHeaders EXCLUDE REGEX "/internal/")
set(missing "")
foreach(header IN LISTS sourceHeaders)
  if(NOT EXISTS ${WORK_DIR}/prefix/${INCLUDE_DIR}/${header})
    list(APPEND missing ${header})
  endif()
endforeach()
if(missing)
  list(JOIN missing " " missing)
  message(FATAL_ERROR "public headers left out of the install: ${missing}")
endif()

step("configuring the consumer" ${CMAKE_COMMAND} -C ${INITIAL_CACHE} -G ${GENERATOR}
  -S ${CONSUMER_DIR} -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
step("building the consumer" ${CMAKE_COMMAND} --build ${WORK_DIR}/build -j2)
step("meshTool" ${WORK_DIR}/build/meshTool ${WORK_DIR}/torus.ply)
step("everyHeader" ${WORK_DIR}/build/everyHeader)
file(REMOVE_RECURSE ${WORK_DIR})
