# What the toolchains for Windows share; HALCYRA_MINGW names the target. The posix thread model is needed for std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${HALCYRA_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${HALCYRA_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${HALCYRA_MINGW}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${HALCYRA_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
# Release builds are stripped: symbols are half of each file.
set(CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT "-s")
set(CMAKE_SHARED_LINKER_FLAGS_RELEASE_INIT "-s")
