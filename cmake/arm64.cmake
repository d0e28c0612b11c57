# Toolchain file: Debian's cross compiler for arm64, with headers and libraries from the unpacked packages below
# QELLIB10_ARM64_ROOT; programs run under qemu-user. scripts/arm64 makes the folder.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QELLIB10_ARM64_ROOT)

set(CMAKE_SYSROOT ${QELLIB10_ARM64_ROOT})
set(CMAKE_FIND_ROOT_PATH ${QELLIB10_ARM64_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${QELLIB10_ARM64_ROOT})
set(ENV{PKG_CONFIG_LIBDIR}
  ${QELLIB10_ARM64_ROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${QELLIB10_ARM64_ROOT}/usr/share/pkgconfig)

# Programs name loader and libraries below the root themselves: qemu-user's own option (-L) would also open "/" there.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--dynamic-linker=${QELLIB10_ARM64_ROOT}/lib/ld-linux-aarch64.so.1,--disable-new-dtags,-rpath,${QELLIB10_ARM64_ROOT}/usr/lib/aarch64-linux-gnu:${QELLIB10_ARM64_ROOT}/lib/aarch64-linux-gnu")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
