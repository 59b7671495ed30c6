# Windows, cross-compiled. To be included with ZOLVANE_KIND set to the kind of programs (x64 or x86).
set(CMAKE_SYSTEM_NAME Windows)

set(ZOLVANE_MINGW ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
# The variant with POSIX threads is the one whose library has std::thread and std::mutex.
set(CMAKE_C_COMPILER ${ZOLVANE_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZOLVANE_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${ZOLVANE_MINGW}-windres)
set(ZOLVANE_WIDL ${ZOLVANE_MINGW}-widl)

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
set(CMAKE_CROSSCOMPILING_EMULATOR ${ZOLVANE_ROOT}/tools/windows/wine.sh ${ZOLVANE_KIND})
