# Type libraries, and the C++ headers of their interfaces.
set(ZOLVANE_INTERFACES ${CMAKE_CURRENT_BINARY_DIR}/shell/windows/generated)
file(MAKE_DIRECTORY ${ZOLVANE_INTERFACES})
configure_file(shell/windows/automation.h ${ZOLVANE_INTERFACES}/automation.h COPYONLY)

find_program(ZOLVANE_WIDL widl REQUIRED)
find_path(ZOLVANE_STDOLE_FOLDER stdole2.tlb REQUIRED NO_CMAKE_FIND_ROOT_PATH
          PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib64/wine/x86_64-windows
                /usr/lib/wine/x86_64-windows
          DOC "The folder of the standard type library; Wine has one")

function(add_type_library name)
  set(idl ${CMAKE_CURRENT_SOURCE_DIR}/shell/windows/${name}.idl)
  set(made ${ZOLVANE_INTERFACES}/${name})
  # At a fixed time, so that the same sources make the same file.
  set(widl ${CMAKE_COMMAND} -E env WIDL_TIME_OVERRIDE=0 ${ZOLVANE_WIDL} -I ${CMAKE_CURRENT_SOURCE_DIR}/shell/windows)
  set(sources ${idl} ${CMAKE_CURRENT_SOURCE_DIR}/shell/windows/automation.idl ${ARGN})
  add_custom_command(OUTPUT ${made}.tlb DEPENDS ${sources} VERBATIM
    COMMAND ${widl} -L ${ZOLVANE_STDOLE_FOLDER} -L ${ZOLVANE_INTERFACES} -t -o ${made}.tlb ${idl})
  add_custom_command(OUTPUT ${made}.h DEPENDS ${sources} VERBATIM COMMAND ${widl} -h -o ${made}.h ${idl})
endfunction()
add_type_library(hestrion_cmds)
add_type_library(add_in ${CMAKE_CURRENT_SOURCE_DIR}/shell/windows/hestrion_cmds.idl
                 ${ZOLVANE_INTERFACES}/hestrion_cmds.tlb)

add_custom_target(zolvane_type_libraries
                  DEPENDS ${ZOLVANE_INTERFACES}/hestrion_cmds.tlb ${ZOLVANE_INTERFACES}/hestrion_cmds.h
                          ${ZOLVANE_INTERFACES}/add_in.tlb ${ZOLVANE_INTERFACES}/add_in.h)

# What every room for Windows sees: the interfaces in C++, for the component and for programs that are its host.
add_library(zolvane_com_interfaces INTERFACE)
target_include_directories(zolvane_com_interfaces SYSTEM INTERFACE ${ZOLVANE_INTERFACES})
target_compile_definitions(zolvane_com_interfaces INTERFACE UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
                                                            _WIN32_WINNT=0x0601)
target_link_libraries(zolvane_com_interfaces INTERFACE advapi32 comctl32 comdlg32 gdi32 ole32 oleaut32 user32 uuid)
add_dependencies(zolvane_com_interfaces zolvane_type_libraries)
