# Common part of the two Windows tool chains: mingw-w64 with posix threads, run by wine.
# The including file sets RASTREL_WINDOWS_ARCH to i686 or x86_64.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${RASTREL_WINDOWS_ARCH})

set(CMAKE_C_COMPILER ${RASTREL_WINDOWS_ARCH}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${RASTREL_WINDOWS_ARCH}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${RASTREL_WINDOWS_ARCH}-w64-mingw32-windres)

# x87 arithmetic rounds otherwise than SSE2 does; all modules must give the same bytes.
if(RASTREL_WINDOWS_ARCH STREQUAL "i686")
  set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
  set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
endif()
# Everything static: a module then imports system DLLs only.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")

set(CMAKE_FIND_ROOT_PATH /usr/${RASTREL_WINDOWS_ARCH}-w64-mingw32 ${RASTREL_WIN_PREFIX})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES RASTREL_WIN_PREFIX)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../scripts/wine-run)
