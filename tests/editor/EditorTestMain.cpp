// Entry of the editor test programs: the first argument is the path of the built plug-in module.

#include "EditorHostFixture.h"

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

void setEditorModulePath(const std::string& path)
{
    storedModulePath() = path;
}

const std::string& editorModulePath()
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
    velmoran::test::setEditorModulePath(argv[1]);
    return RUN_ALL_TESTS();
}
