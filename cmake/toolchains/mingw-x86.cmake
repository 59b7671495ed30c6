# 32-bit Windows; test programs run in the 32-bit Wine that tools/windows/wine32.sh fetches.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(ZOLVANE_KIND x86)

# The old floating-point unit keeps more digits than a double has and rounds to other numbers than every other build.
# And GCC folds a member function and a free one with the same body into one, although here the one takes its arguments
# off the stack and the other does not: whoever calls the wrong one comes back with a wrong stack.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -fno-ipa-icf")

include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
