# GoogleTest and Google Benchmark. Natively both come from Debian's packages; for the Windows
# target GoogleTest is built from Debian's source copy with the cross compiler, and benchmarks
# are not built.
if(CMAKE_CROSSCOMPILING)
    set(VELMORAN_GTEST_SOURCE_DIR "/usr/src/googletest" CACHE PATH "GoogleTest sources")
    if(NOT EXISTS "${VELMORAN_GTEST_SOURCE_DIR}/CMakeLists.txt")
        message(FATAL_ERROR
            "GoogleTest sources were not found at ${VELMORAN_GTEST_SOURCE_DIR}.\n"
            "Install the Debian package 'googletest' (or run scripts/setup.sh).")
    endif()
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
    add_subdirectory("${VELMORAN_GTEST_SOURCE_DIR}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
else()
    find_package(GTest REQUIRED)
    find_package(benchmark QUIET)
    if(NOT benchmark_FOUND)
        message(FATAL_ERROR "Google Benchmark was not found: install the Debian package 'libbenchmark-dev'.")
    endif()
endif()
