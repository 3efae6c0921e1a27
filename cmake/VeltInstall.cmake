include(CMakePackageConfigHelpers)

install(TARGETS veltObjects EXPORT veltObjectsTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY velt/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velt
        FILES_MATCHING PATTERN "*.hpp")
install(EXPORT veltObjectsTargets NAMESPACE velt::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/veltObjects)

configure_package_config_file(cmake/veltObjectsConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/veltObjectsConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/veltObjects)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/veltObjectsConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/veltObjectsConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/veltObjectsConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/veltObjects)
