# Compiles for arm64 on amd64, with the libraries that Debian installs beside its own for another architecture
# (scripts/install-packages --for arm64). Used by the preset "arm64".
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
# What is built and run to make a file of the build, and the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
# Qt's tools run during the build.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
