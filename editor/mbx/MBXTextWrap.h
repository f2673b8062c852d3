#pragma once

#include "platform/render/text/TextContext.h"

#include <string>
#include <string_view>
#include <vector>

namespace Steinberg::Vst::Velmoran
{

// The link markup that a box's text may carry around a web address.
inline constexpr std::string_view kMBXLinkStart = "<a>";
inline constexpr std::string_view kMBXLinkEnd = "</a>";

// The length of the link markup that starts text[index], 0 when none does.
std::size_t linkMarkupLength(std::string_view text, std::size_t index);

// Width in pixels of a line in the context's current style; the link markup takes no room.
float markupWidth(const velmoran::platform::TextContext& text, std::string_view line);

// Breaks a text into lines no wider than maxWidth pixels in the context's current style: at
// newlines, at the space before a word that would not fit (the space is dropped), and inside a
// word longer than a whole line. The markup stays in the lines but is never split. Measuring the
// lines joined by newlines with TextContext::measure at maxWidth gives the same lines, with no
// character lost.
std::vector<std::string> wrapText(const velmoran::platform::TextContext& text, std::string_view source,
                                  float maxWidth);

} // namespace Steinberg::Vst::Velmoran
