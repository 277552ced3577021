# 32-bit MIPS, big-endian (Debian: g++-mips-linux-gnu).
set(CMAKE_SYSTEM_PROCESSOR mips)
set(triplet mips-linux-gnu)
set(emulator qemu-mips)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
