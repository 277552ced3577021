# 32-bit PowerPC, big-endian (Debian: g++-powerpc-linux-gnu).
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(triplet powerpc-linux-gnu)
set(emulator qemu-ppc)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
