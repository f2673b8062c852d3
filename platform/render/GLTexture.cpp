#include "GLTexture.h"

#include "GLPlatform.h"

namespace velmoran::platform
{

GLTexture::~GLTexture()
{
    if (name != 0 && contextIsCurrent())
        glDeleteTextures(1, &name);
}

namespace
{

void setUnpackAlignment()
{
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
}

} // namespace

std::unique_ptr<GLTexture> makeTexture(const uint8_t* pixels, int width, int height, GLint wrap)
{
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
    if (pixels == nullptr)
        return makeTexture(std::vector<uint8_t>(size, 0), width, height, wrap);
    return makeTexture(std::vector<uint8_t>(pixels, pixels + size), width, height, wrap);
}

std::unique_ptr<GLTexture> makeTexture(std::vector<uint8_t>&& pixels, int width, int height, GLint wrap)
{
    auto texture = std::make_unique<GLTexture>();
    texture->width = width;
    texture->height = height;
    texture->pixels = std::move(pixels);
    glGenTextures(1, &texture->name);
    glBindTexture(GL_TEXTURE_2D, texture->name);
    setUnpackAlignment();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 texture->pixels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

void uploadTexture(const GLTexture& texture)
{
    glBindTexture(GL_TEXTURE_2D, texture.name);
    setUnpackAlignment();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, texture.width, texture.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 texture.pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
}

int powerOfTwoSide(int required, int maximumSide)
{
    int side = 64;
    while (side < required)
    {
        if (side * 2 > maximumSide)
            return -1;
        side *= 2;
    }
    return side;
}

} // namespace velmoran::platform
