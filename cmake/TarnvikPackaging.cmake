# The umbrella target, the CMake package and the pkg-config file.
get_property(tarnvik_components GLOBAL PROPERTY TARNVIK_COMPONENTS)
# The Qt adapter is optional and separate: the umbrella and pkg-config never pull in Qt.
list(REMOVE_ITEM tarnvik_components tarnvik_qt)
add_library(tarnvik_tarnvik INTERFACE)
add_library(tarnvik::tarnvik ALIAS tarnvik_tarnvik)
set_target_properties(tarnvik_tarnvik PROPERTIES EXPORT_NAME tarnvik)
get_property(tarnvik_interface_components GLOBAL PROPERTY TARNVIK_INTERFACE_COMPONENTS)
target_link_libraries(tarnvik_tarnvik INTERFACE ${tarnvik_components} ${tarnvik_interface_components})
install(TARGETS tarnvik_tarnvik EXPORT TarnvikExtensionsTargets)

include(CMakePackageConfigHelpers)
set(tarnvik_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TarnvikExtensions)
install(EXPORT TarnvikExtensionsTargets NAMESPACE tarnvik:: DESTINATION ${tarnvik_cmake_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TarnvikExtensionsConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TarnvikExtensionsConfig.cmake INSTALL_DESTINATION ${tarnvik_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TarnvikExtensionsConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TarnvikExtensionsConfig.cmake
              ${PROJECT_BINARY_DIR}/TarnvikExtensionsConfigVersion.cmake
        DESTINATION ${tarnvik_cmake_dir})

# pkg-config: components in link order (higher layers first).
set(tarnvik_pc_libs "")
list(REVERSE tarnvik_components)
foreach(component IN LISTS tarnvik_components)
  string(APPEND tarnvik_pc_libs " -l${component}")
endforeach()
# The prefix is written relative to the .pc file so that the installed tree can move.
file(RELATIVE_PATH tarnvik_pc_prefix_from_pcdir "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" tarnvik_pc_prefix_from_pcdir "${tarnvik_pc_prefix_from_pcdir}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/tarnvik.pc.in ${PROJECT_BINARY_DIR}/tarnvik.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarnvik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The platform layer's guide (which floor each piece is on and what stands behind it) goes
# beside its headers.
install(FILES ${PROJECT_SOURCE_DIR}/src/tarnvik/platform/README.md
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnvik/platform)
