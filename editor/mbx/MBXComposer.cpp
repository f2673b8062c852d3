#include "editor/mbx/MBXComposer.h"

#include "editor/mbx/MBXCanvas.h"
#include "editor/mbx/MBXStyle.h"
#include "editor/mbx/MBXTextWrap.h"
#include "platform/render/images/ImageLoader.h"
#include "resources/ResourceIds.h"

#include <optional>

namespace Steinberg::Vst::Velmoran
{

namespace
{

using velmoran::editor::Rgba;
using velmoran::platform::CanvasBuffer;
using velmoran::platform::SoftwareCanvas;
using velmoran::platform::TextContext;

constexpr int kSignSize = 24;                   // each sign image holds two 24 x 24 frames
constexpr int kButtonFace = 24;                 // the button image: the face above, the pressed face below
constexpr MBXImageCaps kPanelCaps{0, 3, 0, 1};  // the amber edge and its highlight, the bottom shadow
constexpr MBXImageCaps kButtonCaps{6, 0, 6, 0}; // the rounded ends
constexpr Rgba kPanelFallback{22, 24, 27, 255};
constexpr Rgba kLinkHover{255, 215, 122, 255};
constexpr int kUnderlineDrop = 2; // pixels below the baseline

void setColour(TextContext& text, Rgba colour)
{
    text.setColour(colour.r, colour.g, colour.b, colour.a);
}

// The image and frame of a sign: warning and error share one image, information and question the other.
void drawSign(const SoftwareCanvas& canvas, MBXIcon icon, const MBXRect& where)
{
    if (icon == MBXIcon::kNone)
        return;
    const bool alert = icon == MBXIcon::kWarning || icon == MBXIcon::kError;
    const int frame = icon == MBXIcon::kError || icon == MBXIcon::kQuestion ? 1 : 0;
    const std::optional<velmoran::platform::SoftwareImage> image = velmoran::platform::loadImage(
        alert ? velmoran::resources::kAlertSigns : velmoran::resources::kInfoSigns);
    if (image)
        drawImage(canvas, *image, {0, frame * kSignSize, kSignSize, kSignSize}, where.x, where.y);
}

void drawPanel(const SoftwareCanvas& canvas, const MBXBoxLayout& layout)
{
    const MBXRect whole{0, 0, layout.width, layout.height};
    fillRect(canvas, whole, kPanelFallback);
    if (const auto shading = velmoran::platform::loadImage(velmoran::resources::kPanelShading))
        drawImageStretched(canvas, *shading, {0, 0, shading->width, shading->height}, whole, kPanelCaps);
}

// A darker band with an engraved lower edge: under the title, and behind the buttons.
void drawBand(const SoftwareCanvas& canvas, const MBXRect& band, bool edgeBelow)
{
    fillRect(canvas, band, kMBXShade);
    const int edge = edgeBelow ? band.bottom() - 1 : band.y;
    fillRect(canvas, {band.x, edge, band.width, 1}, kMBXBezel);
    fillRect(canvas, {band.x, edge + 1, band.width, 1}, kMBXSheen);
}

void drawTitle(TextContext& text, const MBXObject& box, const MBXBoxLayout& layout)
{
    applyTextStyle(text, kMBXTitleText);
    setColour(text, kMBXLegend);
    text.setPen(static_cast<float>(layout.titleX), layout.titleBaseline);
    text.drawString(box.title().c_str());
}

Rgba lineColour(const MBXTextLine& line)
{
    return line.style == &kMBXDetailText ? kMBXAccent : kMBXLegend;
}

// Draws the lines character by character, switching to the link colour inside the markup.
void drawLines(TextContext& text, const MBXBoxLayout& layout, bool linkHovered)
{
    const Rgba linkColour = linkHovered ? kLinkHover : kMBXAccent;
    for (const MBXTextLine& line : layout.lines)
    {
        applyTextStyle(text, *line.style);
        bool inLink = line.startsInLink;
        setColour(text, inLink ? linkColour : lineColour(line));
        text.setPen(static_cast<float>(line.x), line.baseline);
        for (std::size_t index = 0; index < line.text.size(); ++index)
        {
            const std::size_t markup = linkMarkupLength(line.text, index);
            if (markup == 0)
            {
                text.drawCharacter(static_cast<unsigned char>(line.text[index]));
                continue;
            }
            inLink = markup == kMBXLinkStart.size();
            setColour(text, inLink ? linkColour : lineColour(line));
            index += markup - 1;
        }
    }
}

void drawLinkUnderlines(TextContext& text, const SoftwareCanvas& canvas, const MBXBoxLayout& layout,
                        bool linkHovered)
{
    applyTextStyle(text, kMBXBodyText);
    const int drop = static_cast<int>(text.ascent()) + kUnderlineDrop;
    for (const MBXRect& link : layout.links)
        fillRect(canvas, {link.x, link.y + drop, link.width, 1}, linkHovered ? kLinkHover : kMBXAccent);
}

Rgba labelColour(const MBXObject& box, int index, const MBXPointerState& pointer)
{
    if (index == box.defaultButton())
        return kMBXAccent;
    return index == pointer.hoveredButton ? kMBXHoverLegend : kMBXLegend;
}

void drawButtons(TextContext& text, const SoftwareCanvas& canvas, const MBXObject& box,
                 const MBXBoxLayout& layout, const MBXPointerState& pointer)
{
    const auto face = velmoran::platform::loadImage(velmoran::resources::kMessageButton);
    applyTextStyle(text, kMBXButtonText);
    for (std::size_t index = 0; index < layout.buttons.size(); ++index)
    {
        const MBXRect& button = layout.buttons[index];
        const bool pressed = static_cast<int>(index) == pointer.pressedButton;
        if (face)
            drawImageStretched(canvas, *face, {0, pressed ? kButtonFace : 0, kButtonFace, kButtonFace},
                               button, kButtonCaps);
        if (static_cast<int>(index) == pointer.hoveredButton && !pressed)
            fillRect(canvas, {button.x + 2, button.y + 2, button.width - 4, button.height - 4}, kMBXSheen);
        const std::string& label = box.buttons()[index];
        setColour(text, labelColour(box, static_cast<int>(index), pointer));
        const float labelWidth = text.textWidth(label.c_str());
        text.setPen(static_cast<float>(button.x) + (static_cast<float>(button.width) - labelWidth) * 0.5f,
                    layout.buttonBaseline + (pressed ? 1.0f : 0.0f));
        text.drawString(label.c_str());
    }
}

// Sides and bottom only: the amber top edge is the box's upper rim.
void drawBorder(const SoftwareCanvas& canvas, const MBXBoxLayout& layout)
{
    fillRect(canvas, {0, layout.height - 1, layout.width, 1}, kMBXBezel);
    fillRect(canvas, {0, 0, 1, layout.height}, kMBXBezel);
    fillRect(canvas, {layout.width - 1, 0, 1, layout.height}, kMBXBezel);
}

} // namespace

CanvasBuffer composeBox(const MBXObject& box, const MBXBoxLayout& layout, const MBXPointerState& pointer)
{
    CanvasBuffer buffer(layout.width, layout.height);
    const SoftwareCanvas canvas = buffer.canvas();
    TextContext text(canvas);
    drawPanel(canvas, layout);
    // Below the panel's amber top edge, which stays bright.
    drawBand(canvas, {0, kPanelCaps.top, layout.width, layout.titleBar.height - kPanelCaps.top}, true);
    drawTitle(text, box, layout);
    drawSign(canvas, box.icon(), layout.icon);
    drawLines(text, layout, pointer.linkHovered);
    drawLinkUnderlines(text, canvas, layout, pointer.linkHovered);
    drawBand(canvas, layout.footer, false);
    drawButtons(text, canvas, box, layout, pointer);
    drawBorder(canvas, layout);
    return buffer;
}

} // namespace Steinberg::Vst::Velmoran
