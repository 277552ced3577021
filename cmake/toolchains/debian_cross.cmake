# What the toolchain files beside this one share: Debian's cross compiler of `triplet`, and `emulator` to run what it
# made. Programs, and headers without code, are this machine's; libraries and packages only ever the target's.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The emulator shows a program the files of this folder before the machine's own: the target's libraries, and no cache of
# the machine's, where it may have such libraries too. The loader of one C library with the rest of another hangs in fork.
set(shown_to_programs ${CMAKE_BINARY_DIR}/shown_to_programs)
file(MAKE_DIRECTORY ${shown_to_programs}/etc)
file(TOUCH ${shown_to_programs}/etc/ld.so.cache)
file(CREATE_LINK /usr/${triplet}/lib ${shown_to_programs}/lib SYMBOLIC)
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L ${shown_to_programs})
