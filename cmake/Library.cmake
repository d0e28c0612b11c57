# The library, by components: each is a set of objects, linked into an installed shared library, and into the tests,
# which can also call what the shared libraries hide.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)

# Programs installed outside the system's folders find the libraries relative to themselves.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL /usr)
  file(RELATIVE_PATH library_from_program ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set(CMAKE_INSTALL_RPATH "$ORIGIN/${library_from_program}" "$ORIGIN")
endif()

file(CREATE_LINK ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/include/qellib10 SYMBOLIC)

# The objects of all components, for tests.
add_library(qellib10_objects INTERFACE)

# qellib10_shared(target): what all our shared libraries have in common.
function(qellib10_shared target)
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE CXX LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/qellib10.map)
  target_link_options(${target} PRIVATE
    LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/qellib10.map LINKER:--as-needed LINKER:-Bsymbolic-functions)
endfunction()

# qellib10_component(name [below]): the library qellib10-<name>, which uses that of the component below.
function(qellib10_component name)
  set(objects qellib10_${name}_objects)
  add_library(${objects} OBJECT)
  target_include_directories(${objects} PUBLIC ${PROJECT_BINARY_DIR}/include)
  target_compile_features(${objects} PUBLIC cxx_std_20)
  target_link_libraries(${objects} PRIVATE qellib10_flags)
  # No program replaces functions of the library, so calls within it need no look-up and can be inlined.
  target_compile_options(${objects} PRIVATE -fno-semantic-interposition)
  target_sources(qellib10_objects INTERFACE $<TARGET_OBJECTS:${objects}>)
  target_link_libraries(qellib10_objects INTERFACE ${objects})

  set(library qellib10-${name})
  add_library(${library} SHARED)
  add_library(QELLIB10::${library} ALIAS ${library})
  qellib10_shared(${library})
  target_link_libraries(${library} PRIVATE ${objects})
  target_compile_features(${library} PUBLIC cxx_std_20)
  target_include_directories(${library} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  foreach(below IN LISTS ARGN)
    target_include_directories(${objects} PUBLIC $<TARGET_PROPERTY:qellib10_${below}_objects,INTERFACE_INCLUDE_DIRECTORIES>)
    target_link_libraries(${library} PUBLIC qellib10-${below})
  endforeach()
endfunction()

qellib10_component(core)
qellib10_component(graphics core)

# Passwords are libsodium's: without it there is neither the component store nor record.
find_path(SODIUM_INCLUDE_DIR sodium.h)
find_library(SODIUM_LIBRARY sodium)
if(SODIUM_INCLUDE_DIR AND SODIUM_LIBRARY)
  add_library(qellib10_sodium INTERFACE IMPORTED GLOBAL)
  target_include_directories(qellib10_sodium INTERFACE ${SODIUM_INCLUDE_DIR})
  target_link_libraries(qellib10_sodium INTERFACE ${SODIUM_LIBRARY})
endif()

option(QELLIB10_BUILD_STORE "Build qellib10-store if libsodium is installed" ON)
if(QELLIB10_BUILD_STORE)
  if(TARGET qellib10_sodium)
    qellib10_component(store core)
  else()
    message(STATUS "libsodium was not found (Debian package libsodium-dev): qellib10-store and the demo are left out")
  endif()
endif()

# Entries of a trail are hashed and signed by OpenSSL's libcrypto; people's keys are sealed by libsodium.
option(QELLIB10_BUILD_RECORD "Build qellib10-record if OpenSSL and libsodium are installed" ON)
if(QELLIB10_BUILD_RECORD)
  find_package(OpenSSL 3.0)
  if(OPENSSL_FOUND AND TARGET qellib10_sodium)
    qellib10_component(record core)
  else()
    message(STATUS "OpenSSL or libsodium was not found (Debian packages libssl-dev, libsodium-dev): qellib10-record is left out")
  endif()
endif()

# Formulas, units and uncertainties: JSON is nlohmann's, quantiles are Boost's and linear algebra is Eigen's (both headers only); udunits2 is opened at its first
# use, so only its header is here.
option(QELLIB10_BUILD_QUANTITY "Build qellib10-quantity if udunits2, nlohmann_json, Boost and Eigen are installed" ON)
if(QELLIB10_BUILD_QUANTITY)
  find_path(UDUNITS2_INCLUDE_DIR udunits2.h)
  find_path(BOOST_MATH_INCLUDE_DIR boost/math/distributions/students_t.hpp)
  find_path(EIGEN3_INCLUDE_DIR Eigen/Dense PATH_SUFFIXES eigen3)
  find_package(nlohmann_json 3 QUIET)
  if(UDUNITS2_INCLUDE_DIR AND BOOST_MATH_INCLUDE_DIR AND EIGEN3_INCLUDE_DIR AND nlohmann_json_FOUND)
    qellib10_component(quantity core)
  else()
    message(STATUS "udunits2, nlohmann_json, Boost or Eigen was not found (Debian packages libudunits2-dev, nlohmann-json3-dev, "
      "libboost-dev, libeigen3-dev): qellib10-quantity is left out")
  endif()
endif()

# The whole.
add_library(qellib10 INTERFACE)
add_library(QELLIB10::qellib10 ALIAS qellib10)
target_link_libraries(qellib10 INTERFACE qellib10-graphics qellib10-core)

# Programs that were linked with the former single library, or that load it by name, still find it: it contains nothing
# and only loads the others.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/whole.cpp CONTENT "")
add_library(qellib10_whole SHARED ${PROJECT_BINARY_DIR}/whole.cpp)
set_target_properties(qellib10_whole PROPERTIES OUTPUT_NAME qellib10)
qellib10_shared(qellib10_whole)
target_link_options(qellib10_whole PRIVATE LINKER:--no-as-needed)
target_link_libraries(qellib10_whole PRIVATE qellib10-core qellib10-graphics)

# qellib10_files(SOURCES a.cpp ... HEADERS a.h ...): adds a folder's sources to the component QELLIB10_COMPONENT and
# installs its headers below include/qellib10/ in the same folder. Headers that only the library itself includes are not
# named.
function(qellib10_files)
  cmake_parse_arguments(PARSE_ARGV 0 ARG "" "" "SOURCES;HEADERS")
  target_sources(qellib10_${QELLIB10_COMPONENT}_objects PRIVATE ${ARG_SOURCES})
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  foreach(header IN LISTS ARG_HEADERS)
    set_property(GLOBAL APPEND PROPERTY QELLIB10_HEADERS_${QELLIB10_COMPONENT} qellib10/${folder}/${header})
  endforeach()
  install(FILES ${ARG_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qellib10/${folder}
    COMPONENT ${QELLIB10_COMPONENT}-development)
endfunction()

# qellib10_requires(target ...): libraries that the sources of a folder call; consumers never see them.
function(qellib10_requires)
  target_link_libraries(qellib10_${QELLIB10_COMPONENT}_objects PRIVATE ${ARGN})
  target_link_libraries(qellib10-${QELLIB10_COMPONENT} PRIVATE ${ARGN})
endfunction()
