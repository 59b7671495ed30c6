# What `cmake --install` puts in place: the programs, on Windows the component, and the add-in's logic as libraries for
# another project:  find_package(HZOCalibrateDevice)  and  target_link_libraries(… zolvane::shell).
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

get_property(rooms GLOBAL PROPERTY ZOLVANE_STANDARD_ROOMS)
set(libraries zolvane_options)
foreach(room ${rooms})
  string(REPLACE "/" "_" name ${room})
  list(APPEND libraries zolvane_${name})
  set_target_properties(zolvane_${name} PROPERTIES EXPORT_NAME ${name})
  add_library(zolvane::${name} ALIAS zolvane_${name})
  file(GLOB headers CONFIGURE_DEPENDS src/${room}/*.h)
  install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zolvane/${room})
endforeach()

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/HZOCalibrateDevice)
install(TARGETS ${libraries} EXPORT HZOCalibrateDevice)
install(EXPORT HZOCalibrateDevice NAMESPACE zolvane:: FILE HZOCalibrateDeviceConfig.cmake DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/HZOCalibrateDeviceConfigVersion.cmake
                                 COMPATIBILITY ExactVersion)
install(FILES ${PROJECT_BINARY_DIR}/HZOCalibrateDeviceConfigVersion.cmake DESTINATION ${package})

if(NOT ZOLVANE_FUZZERS)
  install(TARGETS zolvane zolvane-bench zolvane-sim)
endif()
if(WIN32)
  install(TARGETS HestrionBench HZOCalibrateDevice RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
                                                   LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
