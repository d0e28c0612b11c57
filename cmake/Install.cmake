# What `cmake --install` gives beside the headers, which qellib10_files installs: the library, the umbrella header, the
# CMake package QELLIB10 and the pkg-config files. All of them work from wherever the tree is moved to.
include(CMakePackageConfigHelpers)

install(FILES qellib10.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10 COMPONENT development)
install(TARGETS qellib10 EXPORT QELLIB10Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)

set(QELLIB10_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/QELLIB10)
install(EXPORT QELLIB10Targets NAMESPACE QELLIB10:: DESTINATION ${QELLIB10_PACKAGE_DIR} COMPONENT development)
if(TARGET qellib10-gtk)
  install(EXPORT QELLIB10GtkTargets NAMESPACE QELLIB10:: DESTINATION ${QELLIB10_PACKAGE_DIR} COMPONENT gtk-development)
endif()
configure_package_config_file(cmake/QELLIB10Config.cmake.in ${PROJECT_BINARY_DIR}/QELLIB10Config.cmake
  INSTALL_DESTINATION ${QELLIB10_PACKAGE_DIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QELLIB10ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QELLIB10Config.cmake ${PROJECT_BINARY_DIR}/QELLIB10ConfigVersion.cmake
  DESTINATION ${QELLIB10_PACKAGE_DIR} COMPONENT development)

set(QELLIB10_PKGCONFIG_DIR ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH QELLIB10_PREFIX_FROM_PC ${QELLIB10_PKGCONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
function(qellib10_install_pc name component)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()
qellib10_install_pc(qellib10 development)
if(TARGET qellib10-gtk)
  qellib10_install_pc(qellib10-gtk gtk-development)
endif()
