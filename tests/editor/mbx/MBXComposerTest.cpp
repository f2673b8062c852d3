// The picture of a box and the stretched images it is made of.

#include "editor/mbx/MBXComposer.h"
#include "editor/mbx/MBXCanvas.h"
#include "editor/mbx/MBXMessage.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

using namespace Steinberg::Vst::Velmoran;
using velmoran::platform::CanvasBuffer;

namespace
{

bool lightGrey(const std::uint8_t* p)
{
    return p[0] > 150 && p[1] > 150 && p[2] > 150;
}

// How many pixels of an area pass a test.
template <typename PixelTest> int count(const CanvasBuffer& canvas, const MBXRect& area, PixelTest test)
{
    int passing = 0;
    for (int y = area.y; y < area.bottom(); ++y)
        for (int x = area.x; x < area.right(); ++x)
            passing += test(canvas.pixel(x, y)) ? 1 : 0;
    return passing;
}

TEST(MBXComposer, PanelIsOpaqueWithTheTitleInTheTitleBarAndTheText)
{
    const MBXErrorMessage box("Plug-In Editor Failed to Open", "Failed to create compatible OpenGL context.");
    const MBXBoxLayout layout = layoutBox(box);
    const CanvasBuffer canvas = composeBox(box, layout);
    EXPECT_EQ(
        count(canvas, {0, 0, layout.width, layout.height}, [](const std::uint8_t* p) { return p[3] == 255; }),
        layout.width * layout.height);

    const MBXRect titleArea{layout.titleX, 4, 220, layout.titleBar.height - 6};
    EXPECT_GT(count(canvas, titleArea, lightGrey), 150);
    const MBXRect pastTitle{titleArea.right() + 10, 4, layout.width - titleArea.right() - 12,
                            titleArea.height};
    EXPECT_EQ(count(canvas, pastTitle, lightGrey), 0);

    const MBXTextLine& line = layout.lines.front();
    const MBXRect lineArea{line.x, static_cast<int>(line.baseline) - 12, layout.width - line.x, 16};
    EXPECT_GT(count(canvas, lineArea, lightGrey), 300);
}

// Stretches a one-row image whose red channel numbers its columns 1..6, keeping two columns at
// each end, to several widths; partial reads past the image's edge draw nothing.
TEST(MBXCanvas, StretchKeepsTheCapsAndSpreadsTheMiddle)
{
    std::array<std::uint8_t, 24> row{};
    for (int column = 0; column < 6; ++column)
    {
        row[column * 4] = static_cast<std::uint8_t>(column + 1);
        row[column * 4 + 3] = 255;
    }
    const velmoran::platform::SoftwareImage image{6, 1, 24, 4, row.data()};
    const struct
    {
        int width;
        std::vector<int> columns;
    } cases[] = {{6, {1, 2, 3, 4, 5, 6}}, {10, {1, 2, 3, 3, 3, 4, 4, 4, 5, 6}}, {5, {1, 2, 3, 5, 6}}};
    for (const auto& stretch : cases)
    {
        velmoran::platform::CanvasBuffer canvas(stretch.width, 1);
        drawImageStretched(canvas.canvas(), image, {0, 0, 6, 1}, {0, 0, stretch.width, 1}, {2, 0, 2, 0});
        drawImage(canvas.canvas(), image, {4, 0, 4, 1}, 0, 0);
        for (int x = 0; x < stretch.width; ++x)
            EXPECT_EQ(canvas.pixel(x, 0)[0], stretch.columns[x]) << "width " << stretch.width << ", x " << x;
    }
}

} // namespace
