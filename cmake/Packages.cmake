# Debian packages, one a component: the library, its development files, the tools, and the companion for GTK with its
# development files. scripts/package builds and checks them in a build of its own (preset package), where
# QELLIB10_PACKAGES is on.
option(QELLIB10_PACKAGES "Prepare what Debian packages hold beside the installed files" OFF)
if(NOT QELLIB10_PACKAGES)
  return()
endif()
find_program(QELLIB10_GENSYMBOLS dpkg-gensymbols REQUIRED)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qellib10)
set(CPACK_PACKAGE_VENDOR "The QELLIB10 maintainers")
set(CPACK_PACKAGE_CONTACT "The QELLIB10 maintainers <maintainers@qellib10.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # it would go before each package's own
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/gtk)

set(debian ${PROJECT_SOURCE_DIR}/cmake/debian)
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
execute_process(COMMAND ${QELLIB10_GZIP} -9nc ${debian}/changelog
  OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.Debian.gz COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${debian}/changelog)

# One package of a component, described by a summary and the lines of a text below it, whose licence and changelog Debian wants in its own folder.
macro(qellib10_package component name section summary text depends)
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}")
  install(FILES ${debian}/copyright ${PROJECT_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} COMPONENT ${component})
endmacro()

# A package of a shared library: it renews the loader's cache, and says since when its functions are there. They all
# stand under one version node, so the file for that has one line, and what is added later gets a node of its own.
macro(qellib10_library_package target component name section summary text depends)
  qellib10_package(${component} ${name} ${section} "${summary}" "${text}" "${depends}")
  set(control ${PROJECT_BINARY_DIR}/control/${component})
  add_custom_command(OUTPUT ${control}/symbols
    COMMAND ${CMAKE_COMMAND} -E make_directory ${control}
    COMMAND ${QELLIB10_GENSYMBOLS} -p${name} -v${version} -e$<TARGET_FILE:${target}> -I${debian}/${target}.symbols
      -P${control} -O${control}/symbols -c4
    DEPENDS ${target} ${debian}/${target}.symbols VERBATIM)
  add_custom_target(${target}_symbols ALL DEPENDS ${control}/symbols)
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${control}/symbols ${debian}/triggers)
endmacro()

set(library libqellib10-${PROJECT_VERSION_MAJOR})
set(gtk_library libqellib10-gtk${PROJECT_VERSION_MAJOR})
qellib10_library_package(qellib10 runtime ${library} libs
  "class library for laboratory instrument applications"
  "Exact decimal results and formulas, sealed and versioned files, settings,\nusers, curves and printed reports, for applications built with it."
  "")
qellib10_package(development libqellib10-dev libdevel
  "class library for laboratory instrument applications - headers"
  "What applications are built with: headers, CMake package and pkg-config file."
  "${library} (= ${version})")
qellib10_package(tools qellib10-tools utils
  "tools for the files of laboratory instrument applications"
  "A command for sealed files, histories, documents, print jobs and settings, and\nthe service that carries out what was put off to the next start."
  "${library} (= ${version})")
if(TARGET qellib10-gtk)
  qellib10_library_package(qellib10-gtk gtk ${gtk_library} libs
    "class library for laboratory instrument applications - GTK companion"
    "Print dialog, folder chooser and a widget to draw on, for GTK 3."
    "${library} (= ${version})")
  qellib10_package(gtk-development libqellib10-gtk-dev libdevel
    "class library for laboratory instrument applications - GTK headers"
    "What applications with GTK 3 are built with, beside libqellib10-dev."
    "${gtk_library} (= ${version}), libqellib10-dev (= ${version})")
endif()
include(CPack)
