include(CMakePackageConfigHelpers)

install(TARGETS orv_allocator orv_utils EXPORT orv_utilsTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/allocator/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orv/allocator
        FILES_MATCHING PATTERN "*.h")
# Private implementation headers stay in the source tree.
install(DIRECTORY ${CMAKE_SOURCE_DIR}/utils/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orv/utils
        FILES_MATCHING PATTERN "*.h" PATTERN "impl" EXCLUDE)
install(EXPORT orv_utilsTargets NAMESPACE orv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orv_utils)

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/orv_utilsConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/orv_utilsConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orv_utils)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/orv_utilsConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/orv_utilsConfig.cmake ${CMAKE_BINARY_DIR}/orv_utilsConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orv_utils)

configure_file(${CMAKE_SOURCE_DIR}/cmake/orv_utils.pc.in ${CMAKE_BINARY_DIR}/orv_utils.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/orv_utils.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
