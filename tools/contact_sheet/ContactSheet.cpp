// Writes contact sheets of the stored images for a person to look at:
//   images.png  every image (frames side by side, twice their size) and the four glyph atlases;
//   text.png    sample lines in each built-in font, drawn by the text context.
//
// velmoran_contact_sheet OUTPUT_FOLDER

#include "PngWriter.h"

#include "platform/render/images/ImageLoader.h"
#include "platform/render/text/TextContext.h"
#include "resources/ResourceIds.h"

#include <algorithm>
#include <cstdio>
#include <string>

using velmoran::platform::CanvasBuffer;
using velmoran::platform::SoftwareCanvas;
using velmoran::platform::SoftwareImage;
using velmoran::platform::TextContext;

namespace
{

constexpr int kSheetWidth = 1200;
constexpr int kMargin = 16;
constexpr int kGap = 14;

void fillRect(SoftwareCanvas& canvas, int left, int top, int width, int height,
              const std::uint8_t (&colour)[3])
{
    for (int y = std::max(top, 0); y < std::min(top + height, canvas.height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + width, canvas.width); ++x)
        {
            std::uint8_t* pixel = canvas.pixels + static_cast<std::size_t>(y) * canvas.rowstride + x * 4;
            pixel[0] = colour[0];
            pixel[1] = colour[1];
            pixel[2] = colour[2];
            pixel[3] = 255;
        }
}

// Draws a w x h part of `image` at (left, top) of an opaque canvas, each pixel zoom x zoom.
void blit(SoftwareCanvas& canvas, const SoftwareImage& image, int sourceY, int width, int height, int left,
          int top, int zoom)
{
    for (int y = 0; y < height * zoom; ++y)
        for (int x = 0; x < width * zoom; ++x)
        {
            const int canvasX = left + x;
            const int canvasY = top + y;
            if (canvasX < 0 || canvasY < 0 || canvasX >= canvas.width || canvasY >= canvas.height)
                continue;
            const std::uint8_t* source = image.pixels +
                                         static_cast<std::size_t>(sourceY + y / zoom) * image.rowstride +
                                         static_cast<std::size_t>(x / zoom) * 4;
            std::uint8_t* target =
                canvas.pixels + static_cast<std::size_t>(canvasY) * canvas.rowstride + canvasX * 4;
            const int alpha = source[3];
            for (int channel = 0; channel < 3; ++channel)
                target[channel] = static_cast<std::uint8_t>(
                    (source[channel] * alpha + target[channel] * (255 - alpha)) / 255);
        }
}

void caption(TextContext& text, float x, float y, const std::string& words)
{
    text.selectFont(velmoran::platform::kArialSmallFont);
    text.setTextSize(14.0f);
    text.setColour(150, 156, 166, 255);
    text.setPen(x, y);
    text.drawString(words.c_str());
}

bool writeImageSheet(const std::string& folder)
{
    constexpr int kZoom = 2;
    constexpr int kHeight = 2700;
    CanvasBuffer buffer(kSheetWidth, kHeight);
    buffer.fill(28, 30, 34, 255);
    SoftwareCanvas canvas = buffer.canvas();
    TextContext text(canvas);
    text.selectFont(velmoran::platform::kMichromaFont);
    text.setTextSize(26.0f);
    text.setColour(255, 176, 0);
    text.setPen(kMargin, 40.0f);
    text.drawString("Velmoran image resources");

    bool complete = true;
    int x = kMargin;
    int y = 64;
    int rowHeight = 0;
    for (const auto& entry : velmoran::resources::kArtworkImages)
    {
        const auto image = velmoran::platform::loadImage(entry.id);
        if (!image)
        {
            std::fprintf(stderr, "contact sheet: image %d is missing\n", entry.id);
            complete = false;
            continue;
        }
        const int frameHeight = image->height / entry.frames;
        const int cellWidth = std::max(entry.frames * (image->width * kZoom + 4) - 4, 64);
        const int cellHeight = frameHeight * kZoom + 22;
        if (x + cellWidth > kSheetWidth - kMargin)
        {
            x = kMargin;
            y += rowHeight + kGap;
            rowHeight = 0;
        }
        for (int frame = 0; frame < entry.frames; ++frame)
            blit(canvas, *image, frame * frameHeight, image->width, frameHeight,
                 x + frame * (image->width * kZoom + 4), y, kZoom);
        caption(text, static_cast<float>(x), static_cast<float>(y + frameHeight * kZoom + 16),
                std::to_string(entry.id) + (entry.frames > 1 ? " x" + std::to_string(entry.frames) : ""));
        x += cellWidth + kGap;
        rowHeight = std::max(rowHeight, cellHeight);
    }

    y += rowHeight + 2 * kGap;
    for (const auto* font : velmoran::platform::builtInFonts())
    {
        const auto atlas = velmoran::platform::loadImageSilently(font->atlasResourceId);
        if (!atlas)
        {
            complete = false;
            continue;
        }
        caption(text, kMargin, static_cast<float>(y + 12),
                std::to_string(font->atlasResourceId) + "  " + font->name + " glyph atlas");
        blit(canvas, *atlas, 0, atlas->width, atlas->height, kMargin, y + 20, 1);
        y += atlas->height + 36;
    }
    SoftwareImage sheet = buffer.image();
    sheet.height = std::min(y, kHeight);
    return velmoran::tools::writePng(folder + "/images.png", sheet) && complete;
}

bool writeTextSheet(const std::string& folder)
{
    constexpr int kHeight = 1320;
    CanvasBuffer buffer(kSheetWidth, kHeight);
    buffer.fill(28, 30, 34, 255);
    SoftwareCanvas canvas = buffer.canvas();
    TextContext text(canvas);
    const std::uint8_t plot[3] = {56, 56, 56};

    float y = 0.0f;
    for (const auto* font : velmoran::platform::builtInFonts())
    {
        fillRect(canvas, 0, static_cast<int>(y) + 6, kSheetWidth, 312, plot);
        caption(text, kMargin, y + 26.0f,
                std::string(font->name) + "  (" + std::to_string(font->designSize) + " px design size)");
        text.selectFont(*font);
        float baseline = y + 40.0f;
        for (float size : {12.0f, 16.0f, 22.0f, 32.0f})
        {
            text.setTextSize(size);
            baseline += size * 1.35f;
            text.setColour(240, 240, 240, 255);
            text.setPen(kMargin, baseline);
            text.drawString(
                "Freq 1.2 kHz   Q 0.71   Gain +3.5 dB   Peak: Asym   The quick brown fox 0123456789");
        }
        text.setTextSize(44.0f);
        baseline += 60.0f;
        text.setColour(255, 176, 0, 255);
        text.setShadow(true);
        text.setPen(kMargin, baseline);
        text.drawString("Varnholt Ltd  :  Velmoran  V3.1.4");
        text.setShadow(false);
        text.setTextSize(18.0f);
        text.setColour(159, 159, 159, 160);
        text.setPen(kMargin, baseline + 34.0f);
        text.drawString(
            "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~  ABCDEFGHIJKLMNOPQRSTUVWXYZ  abcdefghijklmnopqrstuvwxyz");
        y += 330.0f;
    }
    return velmoran::tools::writePng(folder + "/text.png", buffer.image());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: velmoran_contact_sheet OUTPUT_FOLDER\n");
        return 2;
    }
    const std::string folder = argv[1];
    const bool images = writeImageSheet(folder);
    const bool text = writeTextSheet(folder);
    if (!images || !text)
        return 1;
    std::printf("Contact sheets written to %s/images.png and %s/text.png\n", folder.c_str(), folder.c_str());
    return 0;
}
