# The library: one set of objects, linked into the shared library that is installed, and into the tests, which also
# reach what the shared library hides.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)

# Programs that are installed outside the system's folders find the library from where they stand.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL /usr)
  file(RELATIVE_PATH library_from_program ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set(CMAKE_INSTALL_RPATH "$ORIGIN/${library_from_program}")
endif()

file(CREATE_LINK ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/include/qellib10 SYMBOLIC)

add_library(qellib10_objects OBJECT)
target_include_directories(qellib10_objects PUBLIC ${PROJECT_BINARY_DIR}/include)
target_compile_features(qellib10_objects PUBLIC cxx_std_20)
target_link_libraries(qellib10_objects PRIVATE qellib10_flags)
# No program replaces functions of the library by its own, so calls within it need no look-up and can be inlined.
target_compile_options(qellib10_objects PRIVATE -fno-semantic-interposition)

add_library(qellib10 SHARED)
add_library(QELLIB10::qellib10 ALIAS qellib10)
set_target_properties(qellib10 PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)
target_link_libraries(qellib10 PRIVATE qellib10_objects)
target_link_options(qellib10 PRIVATE
  LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/qellib10.map LINKER:--as-needed LINKER:-Bsymbolic-functions)
set_target_properties(qellib10 PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/qellib10.map)
target_compile_features(qellib10 PUBLIC cxx_std_20)
target_include_directories(qellib10 PUBLIC
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

# qellib10_files(SOURCES a.cpp ... HEADERS a.h ...): adds a folder's sources to the library and installs its headers
# below include/qellib10/ in the same folder. Headers that only the library itself includes are not named.
function(qellib10_files)
  cmake_parse_arguments(PARSE_ARGV 0 ARG "" "" "SOURCES;HEADERS")
  target_sources(qellib10_objects PRIVATE ${ARG_SOURCES})
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  foreach(header IN LISTS ARG_HEADERS)
    set_property(GLOBAL APPEND PROPERTY QELLIB10_PUBLIC_HEADERS qellib10/${folder}/${header})
  endforeach()
  install(FILES ${ARG_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10/${folder} COMPONENT development)
endfunction()

# qellib10_requires(target ...): libraries that the sources of a folder call; consumers never see them.
function(qellib10_requires)
  target_link_libraries(qellib10_objects PRIVATE ${ARGN})
  target_link_libraries(qellib10 PRIVATE ${ARGN})
endfunction()
