#include "TextureLoader.h"

#include "CGLRenderer.h"
#include "images/FramePacking.h"
#include "images/ImageLoader.h"

namespace velmoran::platform
{

std::unique_ptr<GLTexture> loadTexture(CGLRenderer& renderer, int id, int frameCount)
{
    const std::optional<SoftwareImage> image = loadImage(id);
    if (!image || CGLRenderer::sharedContext() == nullptr)
        return nullptr;
    renderer.makeCurrent();
    GLint maximumSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maximumSide);
    const FramePacking packing = packFrames(image->width, image->height, frameCount, maximumSide);
    if (!packing.valid)
        return nullptr;
    std::vector<uint8_t> pixels(
        static_cast<size_t>(packing.textureWidth) * static_cast<size_t>(packing.textureHeight) * 4, 0);
    copyFramesIntoTexture(packing, image->pixels, image->rowstride, pixels.data());
    return makeTexture(std::move(pixels), packing.textureWidth, packing.textureHeight, GL_CLAMP_TO_EDGE);
}

} // namespace velmoran::platform
