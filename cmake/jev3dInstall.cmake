# Installed and exported package: find_package(jev3d) gives jev3d::core and jev3d::jev3d.
include(CMakePackageConfigHelpers)

# Headers by folder, so new ones install without a list: every .h and .inl under jev3d/
# except the internal/ folders, which hold what only the library's own sources include.
# No installed header may include an internal/ one (the package test checks it).
install(DIRECTORY ${PROJECT_SOURCE_DIR}/jev3d/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/jev3d
  FILES_MATCHING PATTERN "*.h" PATTERN "*.inl"
  PATTERN "internal" EXCLUDE)

install(EXPORT jev3dTargets
  NAMESPACE jev3d::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/jev3d)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/jev3dConfig.cmake.in
  ${PROJECT_BINARY_DIR}/jev3dConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/jev3d)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/jev3dConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/jev3dConfig.cmake ${PROJECT_BINARY_DIR}/jev3dConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/jev3d)
