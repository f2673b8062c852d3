// The editor test host against the built module, started as a DAW starts it: the editor in the
// host's frame, what it shows captured and saved, and the editor opened again. What its input does
// is EditorGestureHostTest's.

#include "EditorHostFixture.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace velmoran::test
{
namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;
using editorhost::Screenshot;

constexpr int kDefaultEditorWidth = 998;
constexpr int kDefaultEditorHeight = 634;

// Width and height from a PNG file's header; (0, 0) when the file is no PNG.
SIZE pngSizeOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(file)),
                                          std::istreambuf_iterator<char>());
    const std::uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (bytes.size() < 24 || !std::equal(std::begin(signature), std::end(signature), bytes.begin()) ||
        std::string(bytes.begin() + 12, bytes.begin() + 16) != "IHDR")
    {
        return {0, 0};
    }
    auto bigEndian = [&bytes](std::size_t at)
    { return static_cast<LONG>(bytes[at] << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3]); };
    return {bigEndian(16), bigEndian(20)};
}

// Where the graph draws 1 kHz and 0 dB in the editor's default size: band 6's handle in the default
// program.
constexpr int kHandleX = 585;
constexpr int kHandleY = 288;

// Whether a screenshot shows band 6's handle there, the right way up: its ring in the band's orange
// 10 pixels above and below the point.
bool showsBand6Handle(const Screenshot& screenshot)
{
    for (const int y : {kHandleY - 10, kHandleY + 10})
    {
        const std::uint8_t* pixel =
            &screenshot.rgba[(static_cast<std::size_t>(y) * screenshot.width + kHandleX) * 4];
        if (!(pixel[0] > pixel[1] + 30 && pixel[1] > pixel[2] + 30))
            return false;
    }
    return true;
}

// The editor's own checks: they fail, with the reason, when createView("editor") gives no view.
using EditorView = OpenEditorFixture;

// Inside the host's frame the editor shows what it draws, band 6's handle the right way up; that
// screenshot is saved as a PNG of the editor's size.
TEST_F(EditorView, OpensInsideTheFrameAndSavesWhatItShowsAsAPng)
{
    EXPECT_EQ(GetParent(session().editorWindow()), session().frameWindow());
    Screenshot screenshot;
    runUntil(
        [&screenshot]
        {
            screenshot = session().screenshot();
            return showsBand6Handle(screenshot);
        });
    const std::string path = ::testing::TempDir() + "editor-host-test.png";
    ASSERT_TRUE(saveScreenshot(screenshot, path));
    const SIZE saved = pngSizeOf(path);
    EXPECT_EQ(saved.cx, kDefaultEditorWidth);
    EXPECT_EQ(saved.cy, kDefaultEditorHeight);
    std::remove(path.c_str());
}

// Removed from the frame and attached again, the editor shows what it drew before.
TEST_F(EditorView, OpensAgainAfterItWasRemoved)
{
    std::string error;
    ASSERT_TRUE(session().reopenEditor(error)) << error;
    EXPECT_NE(session().editorWindow(), nullptr);
    runUntil([] { return showsBand6Handle(session().screenshot()); });
}

} // namespace
} // namespace velmoran::test
