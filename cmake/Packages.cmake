# Debian packages, one for each component: the libraries with their development files, and the tools. scripts/package
# builds and checks them in a build of its own (preset package), where QELLIB10_PACKAGES is on.
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

# One package of a component, described by a summary and the lines of a text below it. Debian wants its licence and
# changelog in a folder of the package's name.
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

# A package of a shared library: it renews the loader's cache, and says since which version its functions exist. All
# are under one version node, so that file has one line, and later additions get a node of their own.
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

set(major ${PROJECT_VERSION_MAJOR})
set(summary "class library for laboratory instrument applications")
qellib10_library_package(qellib10-core core libqellib10-core${major} libs "${summary} - core"
  "Exact decimal results and formulas, sealed and versioned files, settings and\nusers. It needs no display and no printer."
  "")
qellib10_package(core-development libqellib10-core-dev libdevel "${summary} - core headers"
  "What applications with the core alone are built with: headers, CMake package\nand pkg-config file."
  "libqellib10-core${major} (= ${version})")
if(TARGET qellib10-store)
  qellib10_library_package(qellib10-store store libqellib10-store${major} libs "${summary} - store"
    "Users with passwords in a database: hashes, a lock after wrong passwords,\nautomatic logon."
    "libqellib10-core${major} (= ${version})")
  qellib10_package(store-development libqellib10-store-dev libdevel "${summary} - store headers"
    "What applications that keep users are built with, beside\nlibqellib10-core-dev."
    "libqellib10-store${major} (= ${version}), libqellib10-core-dev (= ${version})")
endif()
if(TARGET qellib10-record)
  qellib10_library_package(qellib10-record record libqellib10-record${major} libs "${summary} - record"
    "Who did what, when and why: a trail of signed entries in an archive, and its\nverification."
    "libqellib10-core${major} (= ${version})")
  qellib10_package(record-development libqellib10-record-dev libdevel "${summary} - record headers"
    "What applications that keep a trail are built with, beside\nlibqellib10-core-dev."
    "libqellib10-record${major} (= ${version}), libqellib10-core-dev (= ${version})")
  set(tools_need ", libqellib10-record${major} (= ${version})")
endif()
if(TARGET qellib10-quantity)
  qellib10_library_package(qellib10-quantity quantity libqellib10-quantity${major} libs "${summary} - quantity"
    "Results that can be computed again: formulas in exact decimals, named rounding,\nunits, uncertainties and their trace."
    "libqellib10-core${major} (= ${version})")
  set(CPACK_DEBIAN_QUANTITY_PACKAGE_RECOMMENDS libudunits2-0)
  qellib10_package(quantity-development libqellib10-quantity-dev libdevel "${summary} - quantity headers"
    "What applications that compute results are built with, beside\nlibqellib10-core-dev."
    "libqellib10-quantity${major} (= ${version}), libqellib10-core-dev (= ${version})")
  string(APPEND tools_need ", libqellib10-quantity${major} (= ${version})")
endif()
qellib10_library_package(qellib10-graphics graphics libqellib10-graphics${major} libs "${summary} - graphics"
  "Drawing, printing, print jobs and measurement curves, for applications built\nwith it."
  "libqellib10-core${major} (= ${version})")
# Texts of charts and reports, Latin and Japanese.
set(CPACK_DEBIAN_GRAPHICS_PACKAGE_RECOMMENDS "fonts-liberation2, fonts-ipafont-gothic")
qellib10_package(graphics-development libqellib10-graphics-dev libdevel "${summary} - graphics headers"
  "What applications that draw and print are built with, beside\nlibqellib10-core-dev."
  "libqellib10-graphics${major} (= ${version}), libqellib10-core-dev (= ${version})")
qellib10_library_package(qellib10_whole runtime libqellib10-${major} libs "${summary}"
  "Core and graphics, for applications that were linked with both under one name."
  "libqellib10-core${major} (= ${version}), libqellib10-graphics${major} (= ${version})")
qellib10_package(development libqellib10-dev libdevel "${summary} - headers"
  "What applications are built with: all headers, the CMake package and the\npkg-config files."
  "libqellib10-${major} (= ${version}), libqellib10-graphics-dev (= ${version})")
qellib10_package(tools qellib10-tools utils
  "tools for the files of laboratory instrument applications"
  "A command for sealed files, histories, trails, documents, print jobs and\nsettings, and the service that carries out what was put off to the next start."
  "libqellib10-graphics${major} (= ${version})${tools_need}")
if(TARGET qellib10-gtk)
  qellib10_library_package(qellib10-gtk gtk libqellib10-gtk${major} libs "${summary} - GTK companion"
    "Print dialog, folder chooser and a widget to draw on, for GTK 3."
    "libqellib10-graphics${major} (= ${version})")
  qellib10_package(gtk-development libqellib10-gtk-dev libdevel "${summary} - GTK headers"
    "What applications with GTK 3 are built with, beside libqellib10-graphics-dev."
    "libqellib10-gtk${major} (= ${version}), libqellib10-graphics-dev (= ${version})")
endif()
include(CPack)
