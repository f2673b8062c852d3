# Project-wide target settings and the test helper.

set(VELMORAN_SANITIZE "" CACHE STRING "Sanitizers for the native build, for example 'address;undefined'")

# Compile options every project target gets (third-party code does not).
function(velmoran_target_defaults target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

if(VELMORAN_SANITIZE)
    list(JOIN VELMORAN_SANITIZE "," velmoran_sanitizers)
    add_compile_options(-fsanitize=${velmoran_sanitizers} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${velmoran_sanitizers})
endif()

# Fuzzing (clang only): every target is built with libFuzzer's coverage instrumentation, and the
# fuzz targets in fuzz/ link libFuzzer's driver.
option(VELMORAN_FUZZ "Build the libFuzzer targets in fuzz/ (needs clang)" OFF)
if(VELMORAN_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "VELMORAN_FUZZ needs clang (the linux-fuzz preset uses clang++-14).")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Windows test programs run under Wine in one throw-away prefix per build tree. The prefix is
# made once per test run by a fixture and removed after it; wine-run.sh also makes it on demand,
# so a test program can be run by hand.
if(CMAKE_CROSSCOMPILING)
    set(VELMORAN_WINEPREFIX "${CMAKE_BINARY_DIR}/wineprefix")
    configure_file("${PROJECT_SOURCE_DIR}/scripts/wine-run.sh.in" "${CMAKE_BINARY_DIR}/wine-run.sh"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
        @ONLY)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_BINARY_DIR}/wine-run.sh")
    add_test(NAME wine_prefix_create COMMAND "${CMAKE_BINARY_DIR}/wine-run.sh" --create-prefix)
    set_tests_properties(wine_prefix_create PROPERTIES FIXTURES_SETUP wine_prefix)
    add_test(NAME wine_prefix_remove COMMAND "${CMAKE_BINARY_DIR}/wine-run.sh" --remove-prefix)
    set_tests_properties(wine_prefix_remove PROPERTIES FIXTURES_CLEANUP wine_prefix)
endif()

# velmoran_add_test(name SOURCES file... [LIBRARIES lib...] [ARGS arg...] [TIMEOUT seconds])
# One test program (GoogleTest) registered as one ctest test on either target.
function(velmoran_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;LIBRARIES;ARGS")
    add_executable(${name} ${arg_SOURCES})
    velmoran_target_defaults(${name})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gtest_main GTest::gtest)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    add_test(NAME ${name} COMMAND ${name} ${arg_ARGS})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 600)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT})
    if(CMAKE_CROSSCOMPILING)
        set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine_prefix)
    endif()
endfunction()
