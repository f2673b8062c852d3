// Entry of the test programs that load the built plug-in module: its path is the first argument.

#include "ModulePath.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace velmoran::test
{
namespace
{

std::string& storedModulePath()
{
    static std::string path;
    return path;
}

} // namespace

const std::string& modulePath()
{
    return storedModulePath();
}

} // namespace velmoran::test

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: %s MODULE_PATH [gtest options]\n", argv[0]);
        return 2;
    }
    velmoran::test::storedModulePath() = argv[1];
    return RUN_ALL_TESTS();
}
