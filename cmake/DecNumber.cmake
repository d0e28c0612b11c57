# decNumber, the decimal library of CBCD. Debian's package gdb-source contains its sources in an archive; they are
# extracted once into the build folder and never enter this repository.
set(QELLIB10_DECNUMBER_SOURCE "" CACHE PATH
  "Folder with decNumber.c and its headers (libdecnumber); empty: taken from the Debian package gdb-source")

set(decnumber ${PROJECT_BINARY_DIR}/decnumber)
if(QELLIB10_DECNUMBER_SOURCE)
  set(decnumber_source ${QELLIB10_DECNUMBER_SOURCE})
else()
  set(decnumber_source ${decnumber}/source)
  if(NOT EXISTS ${decnumber_source})
    set(archive /usr/src/gdb.tar.xz)
    if(NOT EXISTS ${archive})
      message(FATAL_ERROR "decNumber is missing: install the Debian package gdb-source, which brings ${archive}, "
        "or name an unpacked libdecnumber by -DQELLIB10_DECNUMBER_SOURCE=<dir>.")
    endif()
    # Renamed when complete, so that an interrupted extraction is not taken for a complete one.
    file(REMOVE_RECURSE ${decnumber}/unpacking)
    file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${decnumber}/unpacking PATTERNS
      gdb/libdecnumber/dec*.h
      gdb/libdecnumber/dconfig.h
      gdb/libdecnumber/decNumber.c
      gdb/libdecnumber/decContext.c
    )
    file(RENAME ${decnumber}/unpacking/gdb/libdecnumber ${decnumber_source})
  endif()
endif()

set(decnumber_headers
  decNumber.h
  decNumberSymbols.h
  decContext.h
  decContextSymbols.h
)
foreach(file IN LISTS decnumber_headers ITEMS decNumber.c decContext.c)
  if(NOT EXISTS ${decnumber_source}/${file})
    message(FATAL_ERROR "decNumber is incomplete: ${decnumber_source}/${file} does not exist.")
  endif()
endforeach()

# The headers where an installation has them: <qellib10/decnumber/decNumber.h>.
foreach(header IN LISTS decnumber_headers)
  configure_file(${decnumber_source}/${header} ${decnumber}/include/qellib10/decnumber/${header} COPYONLY)
  install(FILES ${decnumber_source}/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10/decnumber COMPONENT core-development)
endforeach()
file(CONFIGURE OUTPUT ${decnumber}/include/qellib10/decnumber/gstdint.h CONTENT "#include <stdint.h>\n")
install(FILES ${decnumber}/include/qellib10/decnumber/gstdint.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10/decnumber COMPONENT core-development)
target_include_directories(qellib10_core_objects PUBLIC ${decnumber}/include)
target_include_directories(qellib10-core PUBLIC $<BUILD_INTERFACE:${decnumber}/include>)

# We do not fix its own warnings. It relies on signed numbers that wrap around: an exponent of many digits is read to
# its end and only then found to be too large. Units of a long number continue past the array of its type.
file(CONFIGURE OUTPUT ${decnumber}/config/config.h CONTENT "")
add_library(qellib10_decnumber STATIC
  ${decnumber_source}/decContext.c
  ${decnumber_source}/decNumber.c
)
target_include_directories(qellib10_decnumber PRIVATE ${decnumber}/config ${decnumber}/include/qellib10/decnumber)
target_compile_definitions(qellib10_decnumber PRIVATE DECNUMDIGITS=15)
target_compile_options(qellib10_decnumber PRIVATE -w -fwrapv -fno-sanitize=bounds)
set_target_properties(qellib10_decnumber PROPERTIES C_VISIBILITY_PRESET hidden)
