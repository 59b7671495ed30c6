# 64-bit Windows; test programs run in the 64-bit Wine.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(ZOLVANE_KIND x64)

include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
