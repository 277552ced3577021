# 32-bit x86 with SSE2 (Debian: g++-i686-linux-gnu).
set(CMAKE_SYSTEM_PROCESSOR i686)
set(triplet i686-linux-gnu)
set(emulator qemu-i386)
# The x87 unit keeps more digits than a double has: the simulated links would differ from everybody else's.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
