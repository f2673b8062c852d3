# Programs that run during the build. They must be native even when the project is cross-compiled,
# so a cross build configures tools/glyph_atlas as a project of its own with the build machine's
# compiler. Sets VELMORAN_GLYPH_ATLAS (the program) and VELMORAN_GLYPH_ATLAS_TARGET (what a custom
# command depends on).
include_guard(GLOBAL)

if(CMAKE_CROSSCOMPILING)
    include(ExternalProject)
    set(velmoran_host_tools_dir "${CMAKE_BINARY_DIR}/host-tools")
    set(VELMORAN_GLYPH_ATLAS "${velmoran_host_tools_dir}/velmoran_glyph_atlas")
    ExternalProject_Add(velmoran_host_tools
        SOURCE_DIR "${PROJECT_SOURCE_DIR}/tools/glyph_atlas"
        BINARY_DIR "${velmoran_host_tools_dir}"
        CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
        BUILD_ALWAYS ON
        INSTALL_COMMAND ""
        BUILD_BYPRODUCTS "${VELMORAN_GLYPH_ATLAS}"
    )
    set(VELMORAN_GLYPH_ATLAS_TARGET velmoran_host_tools)
else()
    add_subdirectory("${PROJECT_SOURCE_DIR}/tools/glyph_atlas" "${CMAKE_BINARY_DIR}/tools/glyph_atlas")
    set(VELMORAN_GLYPH_ATLAS "$<TARGET_FILE:velmoran_glyph_atlas>")
    set(VELMORAN_GLYPH_ATLAS_TARGET velmoran_glyph_atlas)
endif()
