#include "editor/mbx/MBXComposer.h"
#include "editor/mbx/MBXDialogue.h"
#include "editor/mbx/MBXMessage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <utility>

using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CanvasBuffer;

namespace
{

using PixelTest = std::function<bool(const std::uint8_t* rgba)>;

bool amber(const std::uint8_t* p)
{
    return p[0] > 200 && p[1] > 110 && p[1] < 200 && p[2] < 90;
}

bool lightGrey(const std::uint8_t* p)
{
    return p[0] > 150 && p[1] > 150 && p[2] > 150;
}

// How many pixels of an area pass a test.
int count(const CanvasBuffer& canvas, const MBXRect& area, const PixelTest& test)
{
    int passing = 0;
    for (int y = area.y; y < area.bottom(); ++y)
        for (int x = area.x; x < area.right(); ++x)
            passing += test(canvas.pixel(x, y)) ? 1 : 0;
    return passing;
}

struct Composed
{
    MBXBoxLayout layout;
    CanvasBuffer canvas;
};

Composed composed(const MBXObject& box, const MBXPointerState& pointer = {})
{
    MBXBoxLayout layout = layoutBox(box);
    CanvasBuffer canvas = composeBox(box, layout, pointer);
    return {std::move(layout), std::move(canvas)};
}

TEST(MBXComposer, PanelIsOpaqueWithTheTitleInTheTitleBarAndTheText)
{
    const MBXErrorMessage box("Plug-In Editor Failed to Open", "Failed to create compatible OpenGL context.");
    const Composed result = composed(box);
    const MBXBoxLayout& layout = result.layout;
    EXPECT_EQ(count(result.canvas, {0, 0, layout.width, layout.height},
                    [](const std::uint8_t* p) { return p[3] == 255; }),
              layout.width * layout.height);

    const MBXRect titleArea{layout.titleX, 4, 220, layout.titleBar.height - 6};
    EXPECT_GT(count(result.canvas, titleArea, lightGrey), 150);
    const MBXRect pastTitle{titleArea.right() + 10, 4, layout.width - titleArea.right() - 12,
                            titleArea.height};
    EXPECT_EQ(count(result.canvas, pastTitle, lightGrey), 0);

    const MBXTextLine& line = layout.lines.front();
    const MBXRect lineArea{line.x, static_cast<int>(line.baseline) - 12, layout.width - line.x, 16};
    EXPECT_GT(count(result.canvas, lineArea, lightGrey), 300);
}

TEST(MBXComposer, DefaultButtonIsLabelledInAmberAndAPressedFaceIsRimmedInAmber)
{
    const MBXDialogue box("Reset?", "Every band goes back.", MBXDialogueButtons::kYesNo);
    const Composed idle = composed(box);
    const MBXRect& yes = idle.layout.buttons[0];
    const MBXRect& no = idle.layout.buttons[1];
    EXPECT_GT(count(idle.canvas, yes, amber), 10);
    EXPECT_EQ(count(idle.canvas, no, amber), 0);

    const Composed pressed = composed(box, {1, 1, false});
    const MBXRect rim{no.x + 6, no.y, no.width - 12, 1}; // the top edge between the rounded ends
    EXPECT_EQ(count(pressed.canvas, rim, amber), rim.width);
    EXPECT_EQ(count(idle.canvas, rim, amber), 0);
}

} // namespace
