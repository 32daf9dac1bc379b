# install(), the exported CMake package (find_package(Corlith) -> Corlith::corlith, and
# Corlith::corlith_ui when the user-interface library is built) and the pkg-config files
# (corlith, corlith-ui).

include(CMakePackageConfigHelpers)

install(TARGETS corlith EXPORT CorlithTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

if(TARGET corlith_ui_library)
  install(TARGETS corlith_ui_library EXPORT CorlithTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  set(_corlith_ui_headers "")
else()
  # Without the library its headers would promise what is not installed.
  set(_corlith_ui_headers PATTERN "ui" EXCLUDE)
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/corlith
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h"
  # The platform's implementation files are no interface.
  PATTERN "posix" EXCLUDE
  ${_corlith_ui_headers})
install(FILES ${PROJECT_BINARY_DIR}/src/corlith/Version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corlith)

install(EXPORT CorlithTargets
  NAMESPACE Corlith::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Corlith)

# The package config finds wxWidgets for Corlith::corlith_ui only when it was built.
if(TARGET corlith_ui_library)
  set(CORLITH_PACKAGE_HAS_UI ON)
else()
  set(CORLITH_PACKAGE_HAS_UI OFF)
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/CorlithConfig.cmake.in
  ${PROJECT_BINARY_DIR}/CorlithConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Corlith)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/CorlithConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/CorlithConfig.cmake ${PROJECT_BINARY_DIR}/CorlithConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Corlith)

# The pkg-config files name their prefix relative to their own folder, so that an
# installed tree (cmake --install --prefix DIR included) works wherever it was put.
file(RELATIVE_PATH _corlith_pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" _corlith_pc_to_prefix "${_corlith_pc_to_prefix}")
set(CORLITH_PC_PREFIX "\${pcfiledir}/${_corlith_pc_to_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/corlith.pc.in ${PROJECT_BINARY_DIR}/corlith.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/corlith.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# corlith-ui.pc: the library on top of corlith, with wx-config's flags of this build (the
# public headers derive from wx classes, so a host compiles with them too).
if(TARGET corlith_ui_library)
  execute_process(COMMAND ${wxWidgets_CONFIG_EXECUTABLE} --cxxflags core base gl
                  OUTPUT_VARIABLE CORLITH_WX_CFLAGS OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${wxWidgets_CONFIG_EXECUTABLE} --libs core base gl
                  OUTPUT_VARIABLE CORLITH_WX_LIBS OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/corlith-ui.pc.in ${PROJECT_BINARY_DIR}/corlith-ui.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/corlith-ui.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
