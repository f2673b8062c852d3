#include "editor/mbx/MBXCanvas.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

using namespace Steinberg::Vst::Velmoran;

namespace
{

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
