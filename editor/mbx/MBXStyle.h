#pragma once

#include "editor/EditorLayout.h"
#include "platform/render/text/TextContext.h"

namespace Steinberg::Vst::Velmoran
{

// How one kind of text in a box looks: a built-in font, its size and the distance between
// baselines, both in pixels.
struct MBXTextStyle
{
    const velmoran::platform::FontDescriptor* font;
    float size;
    float lineHeight;
};

inline constexpr MBXTextStyle kMBXTitleText{&velmoran::platform::kSairaFont, 15.0f, 20.0f};
inline constexpr MBXTextStyle kMBXBodyText{&velmoran::platform::kDejaVuSansFont, 13.0f, 19.0f};
inline constexpr MBXTextStyle kMBXButtonText{&velmoran::platform::kSairaFont, 14.0f, 18.0f};
inline constexpr MBXTextStyle kMBXHeadingText{&velmoran::platform::kMichromaFont, 26.0f, 36.0f};
inline constexpr MBXTextStyle kMBXDetailText{&velmoran::platform::kSairaFont, 15.0f, 24.0f};

// The look's colours: legends in light grey, links, default buttons and the version in amber.
inline constexpr velmoran::editor::Rgba kMBXLegend = velmoran::editor::kLegend;
inline constexpr velmoran::editor::Rgba kMBXLegendDim = velmoran::editor::kLegendDim;
inline constexpr velmoran::editor::Rgba kMBXAccent = velmoran::editor::kAmber;
inline constexpr velmoran::editor::Rgba kMBXHoverLegend = velmoran::editor::kLightGrey;
inline constexpr velmoran::editor::Rgba kMBXBezel{10, 11, 13, 255};
inline constexpr velmoran::editor::Rgba kMBXShade{0, 0, 0, 90};
inline constexpr velmoran::editor::Rgba kMBXSheen{255, 255, 255, 22};

// Sets a text context to a style.
void applyTextStyle(velmoran::platform::TextContext& text, const MBXTextStyle& style);

} // namespace Steinberg::Vst::Velmoran
