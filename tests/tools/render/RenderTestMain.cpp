// Test entry: the first argument is the built plug-in module, the second the velmoran-render program.

#include "RenderTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc < 3)
    {
        std::fprintf(stderr, "usage: %s MODULE_PATH RENDER_TOOL_PATH [gtest options]\n", argv[0]);
        return 2;
    }
    velmoran::test::renderModulePath = argv[1];
    velmoran::test::renderToolPath = argv[2];
    return RUN_ALL_TESTS();
}
