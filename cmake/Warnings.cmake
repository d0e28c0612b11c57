# Flags for all of our targets; consumers do not get them. Each step of a calculation is rounded to double, even if the
# machine could fuse a product and a sum: results are the same everywhere.
add_library(qellib10_flags INTERFACE)
target_compile_options(qellib10_flags INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wshadow;-Wconversion;-Wno-sign-conversion;-Wnon-virtual-dtor;-Wold-style-cast;-Wformat=2;-ffp-contract=off>)
if(QELLIB10_WERROR)
  target_compile_options(qellib10_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Werror>)
endif()
if(QELLIB10_SANITIZE)
  add_compile_options(-fsanitize=${QELLIB10_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QELLIB10_SANITIZE})
endif()
if(QELLIB10_BUILD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)  # so that the fuzzer sees which branches an input took
endif()
# g++ 12 reports an overlap in std::string's assignment and concatenation of short literals that does not exist.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(qellib10_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
