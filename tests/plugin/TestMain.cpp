// Test entry: the first argument is the path of the built plug-in module.

#include "PluginHost.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: %s MODULE_PATH [gtest options]\n", argv[0]);
        return 2;
    }
    velmoran::test::setModulePath(argv[1]);
    return RUN_ALL_TESTS();
}
