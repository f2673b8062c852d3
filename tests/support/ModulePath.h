#pragma once

#include <string>

namespace velmoran::test
{

// The built plug-in module's path: the first argument of the test programs that load it, whose
// main is ModuleTestMain.cpp.
const std::string& modulePath();
// The path of a program those tests run, if one is given as the second argument.
const std::string& toolPath();

} // namespace velmoran::test
