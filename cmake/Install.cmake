# What `cmake --install` installs in addition to the headers of qellib10_files: the libraries, the umbrella headers, the
# CMake package QELLIB10 and the pkg-config files. All of them still work after the tree was moved.
include(CMakePackageConfigHelpers)

set(QELLIB10_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/QELLIB10)
set(QELLIB10_PKGCONFIG_DIR ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH QELLIB10_PREFIX_FROM_PC ${QELLIB10_PKGCONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
function(qellib10_install_pc name component)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()

# qellib10_install(name): the library qellib10-<name> in component <name>; its development files in <name>-development.
function(qellib10_install name)
  install(TARGETS qellib10-${name} EXPORT QELLIB10-${name}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${name} NAMELINK_COMPONENT ${name}-development)
  install(EXPORT QELLIB10-${name} NAMESPACE QELLIB10:: DESTINATION ${QELLIB10_PACKAGE_DIR}
    COMPONENT ${name}-development)
  qellib10_install_pc(qellib10-${name} ${name}-development)
endfunction()

set(components core graphics)
if(TARGET qellib10-store)
  list(APPEND components store)
endif()
if(TARGET qellib10-record)
  list(APPEND components record)
endif()
if(TARGET qellib10-quantity)
  list(APPEND components quantity)
endif()
foreach(component IN LISTS components)
  qellib10_install(${component})
  install(FILES ${component}.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10 COMPONENT ${component}-development)
endforeach()
if(TARGET qellib10-gtk)
  qellib10_install(gtk)
endif()

# The whole library. -lqellib10 finds a linker script, so that a program needs only those of the libraries that it
# calls.
install(TARGETS qellib10 EXPORT QELLIB10-whole)
install(EXPORT QELLIB10-whole NAMESPACE QELLIB10:: DESTINATION ${QELLIB10_PACKAGE_DIR} COMPONENT development)
install(TARGETS qellib10_whole LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_SKIP)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/script/libqellib10.so
  CONTENT "/* All components of the library. */\nINPUT(AS_NEEDED(-lqellib10-graphics -lqellib10-core))\n")
install(FILES ${PROJECT_BINARY_DIR}/script/libqellib10.so DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(FILES qellib10.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10 COMPONENT development)
qellib10_install_pc(qellib10 development)

# The documentation's pages, which headers refer to, and each page's program, for beginners, with the component that it
# needs.
set(QELLIB10_EXAMPLES_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/libqellib10)
install(DIRECTORY docs/ DESTINATION ${QELLIB10_EXAMPLES_DIR}-core-dev COMPONENT core-development
  FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN examples EXCLUDE)
install(FILES docs/examples/end_points.cpp DESTINATION ${QELLIB10_EXAMPLES_DIR}-core-dev/examples
  COMPONENT core-development)
install(DIRECTORY docs/examples/ DESTINATION ${QELLIB10_EXAMPLES_DIR}-dev/examples COMPONENT development
  FILES_MATCHING PATTERN *.cpp
  PATTERN curves.cpp EXCLUDE
  PATTERN end_points.cpp EXCLUDE
  PATTERN gtk.cpp EXCLUDE
  PATTERN records.cpp EXCLUDE
  PATTERN uncertainty.cpp EXCLUDE
  PATTERN units.cpp EXCLUDE
  PATTERN users.cpp EXCLUDE)
install(DIRECTORY examples/gallery DESTINATION ${QELLIB10_EXAMPLES_DIR}-dev/examples COMPONENT development
  FILES_MATCHING PATTERN *.cpp)
if(TARGET qellib10-store)
  install(FILES docs/examples/users.cpp DESTINATION ${QELLIB10_EXAMPLES_DIR}-store-dev/examples
    COMPONENT store-development)
endif()
if(TARGET qellib10-record)
  install(FILES docs/examples/records.cpp DESTINATION ${QELLIB10_EXAMPLES_DIR}-record-dev/examples
    COMPONENT record-development)
  install(PROGRAMS docs/check-trail DESTINATION ${QELLIB10_EXAMPLES_DIR}-record-dev COMPONENT record-development)
endif()
if(TARGET qellib10-quantity)
  install(FILES docs/examples/curves.cpp docs/examples/uncertainty.cpp docs/examples/units.cpp DESTINATION ${QELLIB10_EXAMPLES_DIR}-quantity-dev/examples
    COMPONENT quantity-development)
  install(DIRECTORY examples/quantity/ DESTINATION ${QELLIB10_EXAMPLES_DIR}-quantity-dev/examples/quantity
    COMPONENT quantity-development FILES_MATCHING PATTERN *.cpp)
  install(FILES docs/trace-schema.json DESTINATION ${QELLIB10_EXAMPLES_DIR}-quantity-dev COMPONENT quantity-development)
endif()
if(TARGET qellib10-gtk)
  install(FILES docs/examples/gtk.cpp DESTINATION ${QELLIB10_EXAMPLES_DIR}-gtk-dev/examples COMPONENT gtk-development)
  install(DIRECTORY examples/viewer examples/titrator DESTINATION ${QELLIB10_EXAMPLES_DIR}-gtk-dev/examples COMPONENT gtk-development
    FILES_MATCHING PATTERN *.h PATTERN *.cpp)
endif()

configure_package_config_file(cmake/QELLIB10Config.cmake.in ${PROJECT_BINARY_DIR}/QELLIB10Config.cmake
  INSTALL_DESTINATION ${QELLIB10_PACKAGE_DIR} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QELLIB10ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES
    ${PROJECT_BINARY_DIR}/QELLIB10Config.cmake
    ${PROJECT_BINARY_DIR}/QELLIB10ConfigVersion.cmake
  DESTINATION ${QELLIB10_PACKAGE_DIR} COMPONENT core-development)
