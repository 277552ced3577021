# 32-bit ARM with hardware floating point (Debian: g++-arm-linux-gnueabihf).
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(triplet arm-linux-gnueabihf)
set(emulator qemu-arm)
# No notes about the parameter passing of compilers before g++ 7.1.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
