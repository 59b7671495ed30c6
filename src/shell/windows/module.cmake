# The component as one module. Its rooms spend their time in the host that they call, so they are built for size. To
# read the sample and to build its upload takes a tenth longer so: 1.23 ms and not 1.12.
foreach(room host config config_tables operations page shell win32 shell_windows_page shell_windows_host shell_windows)
  target_compile_options(zolvane_${room} PRIVATE $<$<CONFIG:Release>:-Os>)
endforeach()

set(ZOLVANE_ASSEMBLY_ARCHITECTURE x86)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(ZOLVANE_ASSEMBLY_ARCHITECTURE amd64)
endif()
configure_file(shell/windows/add_in.manifest.in ${ZOLVANE_INTERFACES}/add_in.manifest @ONLY)

# A library of its own, as the resource compiler does not know the warnings of the compiler.
add_library(zolvane_resources OBJECT shell/windows/add_in.rc)
target_include_directories(zolvane_resources PRIVATE ${ZOLVANE_INTERFACES})
set_source_files_properties(shell/windows/add_in.rc PROPERTIES OBJECT_DEPENDS
  "${ZOLVANE_INTERFACES}/add_in.tlb;${ZOLVANE_INTERFACES}/add_in.manifest")
add_dependencies(zolvane_resources zolvane_type_libraries)

add_library(HZOCalibrateDevice MODULE shell/windows/module.cpp shell/windows/add_in.def
                                      $<TARGET_OBJECTS:zolvane_resources>)
set_target_properties(HZOCalibrateDevice PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY
                                                              ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
add_version_resource(HZOCalibrateDevice "Zolvane Setup, an add-in for Hestrion")
target_link_libraries(HZOCalibrateDevice PRIVATE zolvane_shell_windows zolvane_warnings)
target_link_options(HZOCalibrateDevice PRIVATE
                    -static            # no compiler runtime has to lie beside the module
                    -Wl,--no-insert-timestamp
                    -Wl,--enable-stdcall-fixup  # 32 bits: the exports are named without their decoration
                    $<$<CONFIG:Release,MinSizeRel>:-s>)
