#include "TextMeasure.h"

#include "platform/render/text/TextContext.h"

namespace velmoran::editor
{

namespace
{

// A context without a canvas: measuring needs only the metrics of the font.
platform::TextContext& measuringContext(const TextStyle& style)
{
    static platform::TextContext context{platform::SoftwareCanvas{}};
    if (style.font != nullptr && &context.font() != style.font)
        context.selectFont(*style.font);
    context.setTextSize(style.size);
    return context;
}

} // namespace

float textWidth(const char* text, const TextStyle& style)
{
    return measuringContext(style).textWidth(text);
}

float lineHeight(const TextStyle& style)
{
    platform::TextContext& context = measuringContext(style);
    return context.lineHeight() * context.scale();
}

float textAscent(const TextStyle& style)
{
    return measuringContext(style).ascent();
}

} // namespace velmoran::editor
