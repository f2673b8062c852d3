#include "GLPainter.h"

#include "CEditorShared.h"
#include "TextMeasure.h"
#include "platform/render/images/FramePacking.h"
#include "platform/render/images/SoftwareImage.h"
#include "platform/render/text/TextContext.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace velmoran::editor
{

namespace
{

// A text not drawn for this many frames (two seconds) gives its texture back.
constexpr uint64_t kTextLifetimeFrames = 50;
// Room around the glyphs for their soft edges, in device pixels.
constexpr int kTextMargin = 2;

platform::Colour colourOf(Rgba colour)
{
    return {colour.r / 255.0f, colour.g / 255.0f, colour.b / 255.0f, colour.a / 255.0f};
}

} // namespace

GLPainter::GLPainter(platform::CGLRenderer& renderer, const Steinberg::Vst::Velmoran::CEditorShared* images,
                     float devicePixelsPerDesignPixel)
    : mRenderer(renderer), mImages(images), mDensity(std::max(1.0f, devicePixelsPerDesignPixel))
{
}

GLPainter::~GLPainter() = default;

void GLPainter::beginFrame()
{
    ++mFrame;
    for (auto entry = mTexts.begin(); entry != mTexts.end();)
    {
        if (mFrame - entry->second.lastFrame > kTextLifetimeFrames)
            entry = mTexts.erase(entry);
        else
            ++entry;
    }
}

void GLPainter::releaseTextures()
{
    mTexts.clear();
}

void GLPainter::fillRect(const Rect& rect, Rgba colour)
{
    mRenderer.setColour(colour.r, colour.g, colour.b, colour.a);
    mRenderer.fillRect(rect.x, rect.y, rect.width, rect.height);
}

void GLPainter::fillRectGradient(const Rect& rect, Rgba top, Rgba bottom)
{
    mRenderer.fillRectVerticalGradient(rect.x, rect.y, rect.width, rect.height, colourOf(top),
                                       colourOf(bottom));
}

void GLPainter::fillTriangles(const ColouredVertex* vertices, int vertexCount)
{
    mVertices.clear();
    for (int index = 0; index < vertexCount; ++index)
        mVertices.add(vertices[index].x, vertices[index].y, colourOf(vertices[index].colour));
    mRenderer.drawTriangles(mVertices);
}

void GLPainter::drawCircle(float centreX, float centreY, float outerRadius, float innerRadius, Rgba colour)
{
    mRenderer.setColour(colour.r, colour.g, colour.b, colour.a);
    mRenderer.drawCircle(centreX, centreY, outerRadius, innerRadius);
}

void GLPainter::drawImage(int imageId, int /*frameCount*/, int frame, float x, float y, float opacity,
                          bool mirrorX, bool mirrorY)
{
    const Steinberg::Vst::Velmoran::EditorImage* image =
        mImages != nullptr ? mImages->image(imageId) : nullptr;
    if (image == nullptr || frame < 0 || frame >= image->frameCount)
        return;
    platform::FramePacking packing;
    packing.frameWidth = image->frameWidth;
    packing.frameHeight = image->frameHeight;
    packing.textureWidth = image->texture->width;
    packing.textureHeight = image->texture->height;
    packing.frameCount = image->frameCount;
    packing.valid = true;
    const platform::FramePosition cell = platform::framePosition(packing, frame);
    // A mirrored image is the same quad drawn from its far edge with a negative extent.
    const float width = static_cast<float>(image->frameWidth);
    const float height = static_cast<float>(image->frameHeight);
    mRenderer.drawImageScaled(*image->texture, static_cast<float>(cell.x), static_cast<float>(cell.y), width,
                              height, mirrorX ? x + width : x, mirrorY ? y + height : y,
                              mirrorX ? -width : width, mirrorY ? -height : height, opacity);
}

void GLPainter::drawText(float x, float y, const char* text, const TextStyle& style)
{
    if (text == nullptr || *text == '\0' || style.font == nullptr)
        return;
    const TextTexture* entry = textTexture(text, style);
    if (entry == nullptr || !entry->texture)
        return;
    const float margin = kTextMargin / mDensity;
    mRenderer.drawImageScaled(*entry->texture, 0.0f, 0.0f, static_cast<float>(entry->texture->width),
                              static_cast<float>(entry->texture->height), std::round(x) - margin,
                              std::round(y) - margin, entry->width, entry->height);
}

const GLPainter::TextTexture* GLPainter::textTexture(const char* text, const TextStyle& style)
{
    char key[96];
    std::snprintf(key, sizeof(key), "%p|%.2f|%02x%02x%02x%02x|%d|", static_cast<const void*>(style.font),
                  static_cast<double>(style.size), style.colour.r, style.colour.g, style.colour.b,
                  style.colour.a, style.shadow ? 1 : 0);
    const std::string name = std::string(key) + text;
    auto found = mTexts.find(name);
    if (found == mTexts.end())
        found = mTexts.emplace(name, renderText(text, style)).first;
    found->second.lastFrame = mFrame;
    return &found->second;
}

GLPainter::TextTexture GLPainter::renderText(const char* text, const TextStyle& style)
{
    // The text is drawn at the window's density, so it stays sharp on scaled displays.
    TextStyle deviceStyle = style;
    deviceStyle.size = style.size * mDensity;
    const int width = static_cast<int>(std::ceil(textWidth(text, deviceStyle))) + 2 * kTextMargin;
    const int height = static_cast<int>(std::ceil(lineHeight(deviceStyle))) + 2 * kTextMargin;
    platform::CanvasBuffer canvas(width, height);
    platform::TextContext context(canvas.canvas());
    context.selectFont(*style.font);
    context.setTextSize(deviceStyle.size);
    context.setColour(style.colour.r, style.colour.g, style.colour.b, style.colour.a);
    context.setShadow(style.shadow);
    context.setPen(static_cast<float>(kTextMargin), kTextMargin + context.ascent());
    context.drawString(text);
    TextTexture entry;
    const platform::SoftwareImage image = canvas.image();
    entry.texture = mRenderer.createTexture(image.pixels, width, height);
    entry.width = static_cast<float>(width) / mDensity;
    entry.height = static_cast<float>(height) / mDensity;
    return entry;
}

void GLPainter::setClip(const Rect& rect)
{
    if (rect.width <= 0.0f || rect.height <= 0.0f)
    {
        mRenderer.setScissor(0, 0, 0, 0);
        return;
    }
    mRenderer.setScissor(static_cast<int>(std::floor(rect.x * mDensity)),
                         static_cast<int>(std::floor(rect.y * mDensity)),
                         static_cast<int>(std::ceil(rect.width * mDensity)),
                         static_cast<int>(std::ceil(rect.height * mDensity)));
}

void GLPainter::setSaturation(float saturation)
{
    mRenderer.setSaturation(saturation);
}

} // namespace velmoran::editor
