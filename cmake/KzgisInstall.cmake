# What `cmake --install` gives: the library, its headers, find_package(kzgis) and
# kzgis.pc.

include(CMakePackageConfigHelpers)

install(TARGETS kzgis EXPORT kzgisTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(kzgis_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kzgis)
install(EXPORT kzgisTargets NAMESPACE kzgis:: DESTINATION ${kzgis_cmake_dir})
configure_package_config_file(cmake/kzgisConfig.cmake.in kzgisConfig.cmake
  INSTALL_DESTINATION ${kzgis_cmake_dir})
write_basic_package_version_file(kzgisConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kzgisConfig.cmake ${PROJECT_BINARY_DIR}/kzgisConfigVersion.cmake
  DESTINATION ${kzgis_cmake_dir})

# A prefix derived from the .pc file's own place keeps an installed tree movable.
file(RELATIVE_PATH kzgis_pc_to_prefix
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/kzgis.pc.in kzgis.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kzgis.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
