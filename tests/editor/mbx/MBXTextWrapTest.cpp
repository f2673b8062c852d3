#include "editor/mbx/MBXTextWrap.h"
#include "editor/mbx/MBXStyle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

using namespace Steinberg::Vst::Velmoran;

namespace
{

std::string joined(const std::vector<std::string>& lines, const char* separator)
{
    std::string text;
    for (std::size_t index = 0; index < lines.size(); ++index)
        text += (index > 0 ? separator : "") + lines[index];
    return text;
}

std::string without(std::string text, const std::string& dropped)
{
    text.erase(std::remove_if(text.begin(), text.end(),
                              [&dropped](char c) { return dropped.find(c) != std::string::npos; }),
               text.end());
    return text;
}

class TextWrap : public ::testing::Test
{
protected:
    void SetUp() override { applyTextStyle(mText, kMBXBodyText); }

    velmoran::platform::TextContext mText{velmoran::platform::SoftwareCanvas{}};
};

// Lines fit, measure finds the same lines, no character is lost, and where every word fits the
// breaks are greedy and at spaces.
TEST_F(TextWrap, LinesFitAgreeWithMeasureAndLoseNoCharacter)
{
    const struct
    {
        const char* text;
        float width;
        bool wordsFit;
    } cases[] = {
        {"Failed to create compatible OpenGL context.", 380.0f, true},
        {"Every band goes back to its factory setting and cannot be restored", 150.0f, true},
        {"First paragraph.\n\nThird, after a blank line, long enough to wrap once.", 200.0f, true},
        {"Visit <a>www.varnholt.co.uk</a> for more about the equaliser.", 130.0f, true},
        {"A path C:\\Program-Files\\Common-Files\\VST3\\Velmoran.vst3 is long", 150.0f, false},
        {"", 100.0f, true},
    };
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.text);
        const std::vector<std::string> lines = wrapText(mText, sample.text, sample.width);
        const std::string text = joined(lines, "\n");
        const velmoran::platform::TextExtent extent = mText.measure(sample.width, 1e6f, "%s", text.c_str());
        EXPECT_EQ(extent.height, static_cast<int>(std::ceil(lines.size() * kMBXBodyText.lineHeight)));
        EXPECT_EQ(without(text, " \n"), without(sample.text, " \n"));
        for (std::size_t index = 0; index < lines.size(); ++index)
        {
            EXPECT_LE(markupWidth(mText, lines[index]), sample.width) << lines[index];
            const std::string& next = index + 1 < lines.size() ? lines[index + 1] : "";
            if (sample.wordsFit && !next.empty() && !lines[index].empty())
            {
                EXPECT_GT(markupWidth(mText, lines[index] + " " + next.substr(0, next.find(' '))),
                          sample.width);
            }
        }
        std::string spaced = sample.text;
        std::replace(spaced.begin(), spaced.end(), '\n', ' ');
        if (sample.wordsFit)
        {
            EXPECT_EQ(joined(lines, " "), spaced);
        }
    }
}

TEST_F(TextWrap, LinkMarkupIsNeverSplit)
{
    const std::vector<std::string> lines =
        wrapText(mText, "<a>abcdefghijklmnopqrstuvwxyzabcdefghij</a>", 60.0f);
    ASSERT_GT(lines.size(), 2u);
    EXPECT_EQ(lines.front().rfind("<a>", 0), 0u);
    EXPECT_EQ(lines.back().substr(lines.back().size() - 4), "</a>");
    for (const std::string& line : lines)
        for (std::size_t at = line.find('<'); at != std::string::npos; at = line.find('<', at + 1))
            EXPECT_GT(linkMarkupLength(line, at), 0u) << line;
}

} // namespace
