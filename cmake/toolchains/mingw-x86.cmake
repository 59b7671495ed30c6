# 32-bit Windows, cross-compiled; test programs run in the 32-bit Wine that tools/windows/wine32.sh fetches.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(ZOLVANE_MINGW i686-w64-mingw32)
# The variant with POSIX threads is the one whose library has std::thread and std::mutex.
set(CMAKE_C_COMPILER ${ZOLVANE_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZOLVANE_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${ZOLVANE_MINGW}-windres)
set(ZOLVANE_WIDL ${ZOLVANE_MINGW}-widl)

# The old floating-point unit keeps more digits than a double has and rounds to other numbers than every other build.
# And GCC folds a member function and a free one with the same body into one, although here the one takes its arguments
# off the stack and the other does not: whoever calls the wrong one comes back with a wrong stack.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -fno-ipa-icf")

# No compiler runtime has to lie beside the module.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)

set(CMAKE_FIND_ROOT_PATH /usr/${ZOLVANE_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH ZOLVANE_CMAKE)
cmake_path(GET ZOLVANE_CMAKE PARENT_PATH ZOLVANE_ROOT)
set(CMAKE_CROSSCOMPILING_EMULATOR ${ZOLVANE_ROOT}/tools/windows/wine.sh x86)
