# The Debian packages that this project needs, by purpose. Sourced by the scripts.
# shellcheck shell=bash disable=SC2034 # they are used where this is sourced

# To build the module and its simulated host, and to run them.
BUILD_PACKAGES=(g++ cmake ninja-build pkg-config qt6-base-dev libgl-dev fonts-dejavu-core
  libcli11-dev nlohmann-json3-dev libelf-dev)

# To offer a simulated chip to a real debug server.
REMOTE_PACKAGES=(openocd)

# To test them: a second compiler with its sanitizers and its C++ library, a virtual screen, an
# accessibility bus, other fonts; debug servers and a debugger; packages.
TEST_PACKAGES=(ccache clang libc++-dev libc++abi-dev libclang-rt-14-dev lld llvm clang-format clang-tidy shellcheck libgtest-dev
  libgmock-dev xvfb xauth dbus-daemon at-spi2-core gir1.2-atspi-2.0 python3-gi
  binutils fonts-liberation2 fonts-cantarell python3
  groff-base doxygen openocd gdb-multiarch qemu-system-arm libopencsd-bin
  dpkg-dev file make)

# To measure them, beside a generated scanner.
BENCH_PACKAGES=(libbenchmark-dev re2c python3)

# To make the icon's bitmaps of its drawing, after a change of that.
ICON_PACKAGES=(librsvg2-bin python3)

# To build the Windows module and to run it.
WINDOWS_PACKAGES=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix lld googletest wine64 fonts-wine)
