# The header-only libraries of the bench. A cross compiler must not see the build machine's system headers, so for
# Windows the three libraries are linked into a folder of their own.
if(WIN32)
  set(header_folder ${PROJECT_BINARY_DIR}/header_libraries)
  file(MAKE_DIRECTORY ${header_folder})
  foreach(entry CLI nlohmann asio asio.hpp)
    file(CREATE_LINK /usr/include/${entry} ${header_folder}/${entry} SYMBOLIC)
  endforeach()
  add_library(zolvane_header_libraries INTERFACE)
  target_include_directories(zolvane_header_libraries SYSTEM INTERFACE ${header_folder})
  target_compile_definitions(zolvane_header_libraries INTERFACE _WIN32_WINNT=0x0601 NOMINMAX WIN32_LEAN_AND_MEAN)
  target_link_libraries(zolvane_header_libraries INTERFACE ws2_32 mswsock)
else()
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_package(Threads REQUIRED)
  add_library(zolvane_header_libraries INTERFACE)
  target_link_libraries(zolvane_header_libraries INTERFACE CLI11::CLI11 nlohmann_json::nlohmann_json
                                                           Threads::Threads)
endif()
# Whether Asio finds aligned_alloc depends on what a source includes first, and sources that disagree free memory in
# another way than it was allocated. None of them uses it.
target_compile_definitions(zolvane_header_libraries INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED
                                                              ASIO_DISABLE_STD_ALIGNED_ALLOC)
# Debian 12's Asio knows clang's coroutines by the name that they had before they became standard.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_definitions(zolvane_header_libraries INTERFACE ASIO_HAS_CO_AWAIT ASIO_HAS_STD_COROUTINE)
endif()
