#include "editor/mbx/MBXTextWrap.h"

namespace Steinberg::Vst::Velmoran
{

namespace
{

// Adds the advances of a piece of text to a width one character after the other, in the order
// TextContext::measure adds them, so that both agree on where a line overflows.
float widthAfter(const velmoran::platform::TextContext& text, float width, std::string_view piece)
{
    for (std::size_t index = 0; index < piece.size(); ++index)
    {
        const std::size_t markup = linkMarkupLength(piece, index);
        if (markup > 0)
            index += markup - 1;
        else
            width += text.characterAdvance(static_cast<unsigned char>(piece[index]));
    }
    return width;
}

// Builds the lines of one text, a paragraph at a time.
class LineBreaker
{
public:
    LineBreaker(const velmoran::platform::TextContext& text, float maxWidth)
        : mText(text), mMaxWidth(maxWidth)
    {
    }

    void addParagraph(std::string_view paragraph)
    {
        bool firstWord = true;
        std::size_t start = 0;
        while (start <= paragraph.size())
        {
            std::size_t end = paragraph.find(' ', start);
            if (end == std::string_view::npos)
                end = paragraph.size();
            addWord(paragraph.substr(start, end - start), firstWord);
            firstWord = false;
            start = end + 1;
        }
        finishLine();
    }

    std::vector<std::string> takeLines() { return std::move(mLines); }

private:
    void addWord(std::string_view word, bool firstWord)
    {
        if (!firstWord)
        {
            const float withWord = widthAfter(mText, mWidth + mText.characterAdvance(' '), word);
            if (withWord <= mMaxWidth)
            {
                mLine += ' ';
                mLine += word;
                mWidth = withWord;
                return;
            }
            finishLine();
        }
        const float alone = widthAfter(mText, 0.0f, word);
        if (alone <= mMaxWidth)
        {
            mLine = word;
            mWidth = alone;
            return;
        }
        addCharacters(word);
    }

    // A word too long for any line is cut where it overflows; the markup moves as one piece.
    void addCharacters(std::string_view word)
    {
        std::size_t index = 0;
        while (index < word.size())
        {
            const std::size_t markup = linkMarkupLength(word, index);
            const std::size_t length = markup > 0 ? markup : 1;
            const float advance =
                markup > 0 ? 0.0f : mText.characterAdvance(static_cast<unsigned char>(word[index]));
            if (mWidth + advance > mMaxWidth && !mLine.empty())
                finishLine();
            mLine += word.substr(index, length);
            mWidth += advance;
            index += length;
        }
    }

    void finishLine()
    {
        mLines.push_back(std::move(mLine));
        mLine.clear();
        mWidth = 0.0f;
    }

    const velmoran::platform::TextContext& mText;
    float mMaxWidth;
    std::vector<std::string> mLines;
    std::string mLine;
    float mWidth = 0.0f;
};

} // namespace

std::size_t linkMarkupLength(std::string_view text, std::size_t index)
{
    const std::string_view rest = text.substr(index);
    if (rest.substr(0, kMBXLinkStart.size()) == kMBXLinkStart)
        return kMBXLinkStart.size();
    if (rest.substr(0, kMBXLinkEnd.size()) == kMBXLinkEnd)
        return kMBXLinkEnd.size();
    return 0;
}

float markupWidth(const velmoran::platform::TextContext& text, std::string_view line)
{
    return widthAfter(text, 0.0f, line);
}

std::vector<std::string> wrapText(const velmoran::platform::TextContext& text, std::string_view source,
                                  float maxWidth)
{
    LineBreaker breaker(text, maxWidth);
    std::size_t start = 0;
    while (start <= source.size())
    {
        std::size_t end = source.find('\n', start);
        if (end == std::string_view::npos)
            end = source.size();
        breaker.addParagraph(source.substr(start, end - start));
        start = end + 1;
    }
    return breaker.takeLines();
}

} // namespace Steinberg::Vst::Velmoran
