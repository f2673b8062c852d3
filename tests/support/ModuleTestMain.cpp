// Entry of the test programs that load the built plug-in module: its path is the first argument,
// that of a program they run the second.

#include "ModulePath.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace velmoran::test
{
namespace
{

std::string gModulePath;
std::string gToolPath;

} // namespace

const std::string& modulePath()
{
    return gModulePath;
}

const std::string& toolPath()
{
    return gToolPath;
}

} // namespace velmoran::test

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: %s MODULE_PATH [TOOL_PATH] [gtest options]\n", argv[0]);
        return 2;
    }
    velmoran::test::gModulePath = argv[1];
    velmoran::test::gToolPath = argc > 2 ? argv[2] : "";
    return RUN_ALL_TESTS();
}
