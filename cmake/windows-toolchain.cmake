# Windows executables, made on Debian: one static 64-bit program that needs no other file.
# scripts/build-windows-libraries makes what is linked into it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(tools x86_64-w64-mingw32)
# The threads of the "posix" kind are those that the standard library's own need.
set(CMAKE_C_COMPILER ${tools}-gcc-posix)
set(CMAKE_CXX_COMPILER ${tools}-g++-posix)
set(CMAKE_RC_COMPILER ${tools}-windres)

set(QUILLON_WINDOWS_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries CACHE PATH
    "Where scripts/build-windows-libraries has put the libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUILLON_WINDOWS_LIBRARIES)
get_filename_component(libraries ${QUILLON_WINDOWS_LIBRARIES} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${libraries} /usr/${tools})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH ${libraries})
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")

# Windows 10 and later; wide calls everywhere; none of the headers that nobody needs.
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -DUNICODE -D_UNICODE -DNOMINMAX -DWIN32_LEAN_AND_MEAN")
set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0A00")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# Runs what was made: tests under CTest.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-windows-program)
