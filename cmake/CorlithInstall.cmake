# install(), the exported CMake package (find_package(Corlith) -> Corlith::corlith)
# and the pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS corlith EXPORT CorlithTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/corlith
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h"
  # The platform's implementation files are no interface.
  PATTERN "posix" EXCLUDE)
install(FILES ${PROJECT_BINARY_DIR}/src/corlith/Version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corlith)

install(EXPORT CorlithTargets
  NAMESPACE Corlith::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Corlith)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/CorlithConfig.cmake.in
  ${PROJECT_BINARY_DIR}/CorlithConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Corlith)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/CorlithConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/CorlithConfig.cmake ${PROJECT_BINARY_DIR}/CorlithConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Corlith)

configure_file(${PROJECT_SOURCE_DIR}/cmake/corlith.pc.in ${PROJECT_BINARY_DIR}/corlith.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/corlith.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
