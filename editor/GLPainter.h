#pragma once

#include "Painter.h"
#include "platform/render/CGLRenderer.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{
class CEditorShared;
}
} // namespace Vst
} // namespace Steinberg

namespace velmoran::editor
{

// The Painter on the OpenGL renderer: design pixels are the renderer's logical pixels; images
// come from the module's shared editor images; text is drawn with the distance-field fonts into
// small textures at the window's pixel density and kept while it is in use. UI thread only.
class GLPainter : public Painter
{
public:
    // Draws with `renderer`, whose viewport holds `devicePixelsPerDesignPixel` device pixels for
    // each design pixel.
    GLPainter(platform::CGLRenderer& renderer, const Steinberg::Vst::Velmoran::CEditorShared* images,
              float devicePixelsPerDesignPixel);
    ~GLPainter() override;

    // Starts a frame: texts not drawn for a while are dropped from the cache.
    void beginFrame();
    // Frees every text texture (the shared context must be current).
    void releaseTextures();
    // Number of text textures kept.
    int cachedTexts() const { return static_cast<int>(mTexts.size()); }

    void fillRect(const Rect& rect, Rgba colour) override;
    void fillRectGradient(const Rect& rect, Rgba top, Rgba bottom) override;
    void fillTriangles(const ColouredVertex* vertices, int vertexCount) override;
    void drawCircle(float centreX, float centreY, float outerRadius, float innerRadius, Rgba colour) override;
    void drawImage(int imageId, int frameCount, int frame, float x, float y, float opacity, bool mirrorX,
                   bool mirrorY) override;
    void drawText(float x, float y, const char* text, const TextStyle& style) override;
    void setClip(const Rect& rect) override;
    void setSaturation(float saturation) override;

private:
    struct TextTexture
    {
        std::unique_ptr<platform::GLTexture> texture;
        float width = 0.0f;  // design pixels
        float height = 0.0f; // design pixels
        uint64_t lastFrame = 0;
    };

    const TextTexture* textTexture(const char* text, const TextStyle& style);
    TextTexture renderText(const char* text, const TextStyle& style);

    platform::CGLRenderer& mRenderer;
    const Steinberg::Vst::Velmoran::CEditorShared* mImages;
    float mDensity;
    platform::VertexArray mVertices;
    std::unordered_map<std::string, TextTexture> mTexts;
    uint64_t mFrame = 0;
};

} // namespace velmoran::editor
