#pragma once

#include "editor/mbx/MBXObject.h"

namespace Steinberg::Vst::Velmoran
{

// A message with a single "OK" button; the plain kind carries no sign.
class MBXMessage : public MBXObject
{
public:
    MBXMessage(std::string title, std::string text);

protected:
    MBXMessage(std::string title, std::string text, MBXIcon icon);
};

// A warning the user should heed, with the warning sign.
class MBXAlertMessage : public MBXMessage
{
public:
    MBXAlertMessage(std::string title, std::string text);
};

// A failure the user must see, with the error sign.
class MBXErrorMessage : public MBXMessage
{
public:
    MBXErrorMessage(std::string title, std::string text);
};

// A notice, with the information sign.
class MBXInfoMessage : public MBXMessage
{
public:
    MBXInfoMessage(std::string title, std::string text);
};

} // namespace Steinberg::Vst::Velmoran
