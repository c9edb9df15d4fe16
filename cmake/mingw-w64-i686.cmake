# Toolchain for Windows, 32 bit.
set(CMAKE_SYSTEM_PROCESSOR x86)
set(HALCYRA_MINGW i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
