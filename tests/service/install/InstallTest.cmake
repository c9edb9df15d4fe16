# Installs the library into a folder of its own, moves it, and builds and runs the example client there, on a league.
# Called with BUILD (the build tree), WORK (a folder to work in), CLIENT (the client's sources), COMPILER, and FIXTURE (a league
# file).
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    string(JOIN " " command ${ARGV})
    message(FATAL_ERROR "${command}\n${output}")
  endif()
endfunction()

# Runs the client with further words; it must end with a code and print these very lines.
function(expect code text)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL code OR NOT output STREQUAL text)
    message(FATAL_ERROR "${ARGN} ended with ${result} instead of ${code} and printed\n${output}instead of\n${text}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --component HLDataSrvc --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/moved)
file(GLOB_RECURSE pc_file ${WORK}/moved/HLDataSrvc.pc)
get_filename_component(pc_folder ${pc_file} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_folder})
run(${CMAKE_COMMAND} -S ${CLIENT} -B ${WORK}/client -DCMAKE_PREFIX_PATH=${WORK}/moved -DCMAKE_CXX_COMPILER=${COMPILER})
run(${CMAKE_COMMAND} --build ${WORK}/client)

file(READ ${CMAKE_CURRENT_LIST_DIR}/expected.txt expected)
file(COPY_FILE ${FIXTURE} "${WORK}/Halcyra - Live.mdb")
set(programs ${WORK}/client/league)
if(EXISTS ${WORK}/client/league_of_pkgconfig)
  list(APPEND programs ${WORK}/client/league_of_pkgconfig)
endif()
foreach(program IN LISTS programs)
  expect(1 "Database file: \\Halcyra - Live.mdb is missing.\n" ${program} ${WORK}/moved "Garba")
  expect(0 "${expected}" ${program} ${WORK} "Garba")
endforeach()
expect(1 "The draft of the season 2021 is locked: it cannot be changed.\n\n" ${WORK}/client/draft ${WORK} "Garba")
