# Cross build for 64-bit Windows with the POSIX-thread flavour of mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VELMORAN_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${VELMORAN_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VELMORAN_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${VELMORAN_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VELMORAN_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The module must need nothing beside it but DLLs that Windows ships: libgcc, libstdc++ and
# winpthread are linked in statically, for programs and for the plug-in alike.
set(VELMORAN_STATIC_RUNTIME "-static -static-libgcc -static-libstdc++")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${VELMORAN_STATIC_RUNTIME}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${VELMORAN_STATIC_RUNTIME}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${VELMORAN_STATIC_RUNTIME}")
