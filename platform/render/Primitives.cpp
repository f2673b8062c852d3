#include "CGLRenderer.h"

#include "BitmapFont.h"
#include "ShaderPrograms.h"
#include "images/FramePacking.h"

#include <algorithm>
#include <cmath>

namespace velmoran::platform
{

namespace
{

constexpr int kQuadVertices = 6;
constexpr float kLightFactor = 1.08f;
constexpr float kSmallestSize = 0.01f;
constexpr float kDashPeriod = 8.0f; // pixels of the dash texture

// Two triangles through the corners top left, top right, bottom right, bottom left.
void quadFromCorners(const float corners[8], float out[12])
{
    const int order[kQuadVertices] = {0, 1, 2, 0, 2, 3};
    for (int v = 0; v < kQuadVertices; ++v)
    {
        out[2 * v] = corners[2 * order[v]];
        out[2 * v + 1] = corners[2 * order[v] + 1];
    }
}

void quadFromRect(float x, float y, float width, float height, float out[12])
{
    const float corners[8] = {x, y, x + width, y, x + width, y + height, x, y + height};
    quadFromCorners(corners, out);
}

void coloursFromCorners(const Colour colours[4], float out[24])
{
    const int order[kQuadVertices] = {0, 1, 2, 0, 2, 3};
    for (int v = 0; v < kQuadVertices; ++v)
    {
        const Colour& c = colours[order[v]];
        out[4 * v] = c.r;
        out[4 * v + 1] = c.g;
        out[4 * v + 2] = c.b;
        out[4 * v + 3] = c.a;
    }
}

void fillColours(const Colour& colour, int vertexCount, float* out)
{
    for (int v = 0; v < vertexCount; ++v)
    {
        out[4 * v] = colour.r;
        out[4 * v + 1] = colour.g;
        out[4 * v + 2] = colour.b;
        out[4 * v + 3] = colour.a;
    }
}

Colour scaled(const Colour& colour, float factor)
{
    return {std::min(1.0f, colour.r * factor), std::min(1.0f, colour.g * factor),
            std::min(1.0f, colour.b * factor), colour.a};
}

} // namespace

void CGLRenderer::setColour(int red, int green, int blue, int alpha)
{
    mColour = {red / 255.0f, green / 255.0f, blue / 255.0f, alpha / 255.0f};
}

float CGLRenderer::setSaturation(float saturation)
{
    const float previous = mSaturation;
    mSaturation = std::clamp(saturation, 0.0f, 1.0f);
    return previous;
}

void CGLRenderer::setGamma(float gamma)
{
    mGamma = gamma;
}

void CGLRenderer::setModelViewMatrix(const Matrix& matrix)
{
    mModelView = matrix;
}

void CGLRenderer::resetModelViewMatrix()
{
    mModelView = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f,
                  0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
}

const ProgramRecord* CGLRenderer::beginDraw(int program)
{
    if (!contextExists())
        return nullptr;
    const ProgramRecord* record = sharedProgram(program);
    if (record == nullptr)
        return nullptr;
    gGL.glUseProgram(record->program);
    gGL.glUniformMatrix4fv(record->modelViewMatrix, 1, GL_FALSE, mModelView.data());
    return record;
}

void CGLRenderer::uploadArray(GLuint buffer, const float* data, size_t floatCount)
{
    gGL.glBindBuffer(GL_ARRAY_BUFFER, buffer);
    gGL.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(floatCount * sizeof(float)), data,
                     GL_STREAM_DRAW);
}

void CGLRenderer::finishDraw(const ProgramRecord& record, GLenum mode, int vertexCount)
{
    gGL.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gGL.glBindVertexArray(record.vertexArray);
    glDrawArrays(mode, 0, vertexCount);
    gGL.glBindVertexArray(0);
    gGL.glUseProgram(0);
}

void CGLRenderer::drawFlat(GLenum mode, const float* positions, const float* colours, int vertexCount)
{
    const ProgramRecord* record = beginDraw(kProgramFlat);
    if (record == nullptr)
        return;
    // An empty draw still ends like every other, with no program left in use.
    if (vertexCount <= 0)
    {
        gGL.glUseProgram(0);
        return;
    }
    gGL.glUniform1f(record->saturation, mSaturation);
    uploadArray(record->positionBuffer, positions, static_cast<size_t>(vertexCount) * 2);
    uploadArray(record->colourBuffer, colours, static_cast<size_t>(vertexCount) * 4);
    finishDraw(*record, mode, vertexCount);
}

void CGLRenderer::fillRect(float x, float y, float width, float height)
{
    float positions[12];
    float colours[24];
    quadFromRect(x, y, width, height, positions);
    fillColours(mColour, kQuadVertices, colours);
    drawFlat(GL_TRIANGLES, positions, colours, kQuadVertices);
}

void CGLRenderer::fillRectVerticalGradient(float x, float y, float width, float height, const Colour& top,
                                           const Colour& bottom)
{
    const float corners[8] = {x, y, x + width, y, x + width, y + height, x, y + height};
    const Colour colours[4] = {top, top, bottom, bottom};
    fillQuad(corners, colours);
}

void CGLRenderer::fillQuad(const float corners[8])
{
    const Colour colours[4] = {mColour, mColour, mColour, mColour};
    fillQuad(corners, colours);
}

void CGLRenderer::fillQuad(const float corners[8], const Colour colours[4])
{
    float positions[12];
    float vertexColours[24];
    quadFromCorners(corners, positions);
    coloursFromCorners(colours, vertexColours);
    drawFlat(GL_TRIANGLES, positions, vertexColours, kQuadVertices);
}

void CGLRenderer::drawTriangles(const float* positions, const float* colours, int triangleCount)
{
    drawFlat(GL_TRIANGLES, positions, colours, triangleCount * 3);
}

void CGLRenderer::drawTriangles(const VertexArray& vertices)
{
    drawFlat(GL_TRIANGLES, vertices.positions.data(), vertices.colours.data(), vertices.vertexCount());
}

void CGLRenderer::drawStripShape(float x, float y, float width, float height, float style)
{
    if (width < kSmallestSize || height < kSmallestSize)
        return;
    float colours[32];
    if (style >= 2.0f)
    {
        const float t = std::min(1.0f, std::min(width, height) * 0.5f);
        const float right = x + width;
        const float bottom = y + height;
        const float outline[16] = {x,     bottom, x + t,     bottom, x,     y,      x + t,     y + t,
                                   right, y,      right - t, y + t,  right, bottom, right - t, bottom};
        fillColours(mColour, 8, colours);
        drawFlat(GL_TRIANGLE_STRIP, outline, colours, 8);
        return;
    }
    const bool sunken = style >= 1.0f;
    const float middle = y + height * 0.5f;
    const float upper[8] = {x, y, x + width, y, x, middle, x + width, middle};
    const float lower[8] = {x, middle, x + width, middle, x, y + height, x + width, y + height};
    fillColours(sunken ? scaled(mColour, 1.0f / kLightFactor) : scaled(mColour, kLightFactor), 4, colours);
    drawFlat(GL_TRIANGLE_STRIP, upper, colours, 4);
    fillColours(mColour, 4, colours);
    drawFlat(GL_TRIANGLE_STRIP, lower, colours, 4);
}

void CGLRenderer::drawColouredQuad(int program, float x, float y, float width, float height)
{
    const ProgramRecord* record = beginDraw(program);
    if (record == nullptr)
        return;
    float positions[12];
    float colours[24];
    quadFromRect(x, y, width, height, positions);
    fillColours(mColour, kQuadVertices, colours);
    gGL.glUniform1f(record->saturation, mSaturation);
    if (program == kProgramScanline)
        gGL.glUniform1f(record->lineWidth, 2.0f * std::floor(mPixelScale));
    uploadArray(record->positionBuffer, positions, 12);
    uploadArray(record->colourBuffer, colours, 24);
    finishDraw(*record, GL_TRIANGLES, kQuadVertices);
}

void CGLRenderer::drawScanlineRect(float x, float y, float width, float height)
{
    drawColouredQuad(kProgramScanline, x, y, width, height);
}

void CGLRenderer::drawGridRect(float x, float y, float width, float height, float gridSize)
{
    if (const ProgramRecord* record = sharedProgram(kProgramGrid); record != nullptr && contextExists())
    {
        gGL.glUseProgram(record->program);
        gGL.glUniform1f(record->gridSize, gridSize);
    }
    drawColouredQuad(kProgramGrid, x, y, width, height);
}

void CGLRenderer::drawCircle(float centreX, float centreY, float radiusA, float radiusB)
{
    const ProgramRecord* record = beginDraw(kProgramCircle);
    if (record == nullptr)
        return;
    const float outer = std::max(radiusA, radiusB);
    const float inner = std::min(radiusA, radiusB);
    const float reach = outer + 1.0f;
    float positions[12];
    float colours[24];
    quadFromRect(centreX - reach, centreY - reach, 2.0f * reach, 2.0f * reach, positions);
    fillColours(mColour, kQuadVertices, colours);
    gGL.glUniform1f(record->circleRadiusOuter, outer);
    gGL.glUniform1f(record->circleRadiusInner, inner);
    // Snapped to the middle of its pixel so that small handles look the same wherever they sit.
    gGL.glUniform2f(record->circleCentre, std::floor(centreX) + 0.5f, std::floor(centreY) + 0.5f);
    uploadArray(record->positionBuffer, positions, 12);
    uploadArray(record->colourBuffer, colours, 24);
    finishDraw(*record, GL_TRIANGLES, kQuadVertices);
}

void CGLRenderer::drawTexturedQuad(const GLTexture& texture, const float* positions, const float* texCoords,
                                   const Colour& tint, bool withGamma)
{
    const ProgramRecord* record = beginDraw(kProgramTextured);
    if (record == nullptr)
        return;
    gGL.glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture.name);
    const GLfloat tintValues[4] = {tint.r, tint.g, tint.b, tint.a};
    gGL.glUniform1i(record->texture, 0);
    gGL.glUniform4fv(record->textureColour, 1, tintValues);
    gGL.glUniform1f(record->width, static_cast<float>(texture.width));
    gGL.glUniform1f(record->height, static_cast<float>(texture.height));
    gGL.glUniform1f(record->saturation, mSaturation);
    if (withGamma)
        gGL.glUniform1f(record->gamma, mGamma);
    uploadArray(record->positionBuffer, positions, 12);
    uploadArray(record->texCoordBuffer, texCoords, 12);
    finishDraw(*record, GL_TRIANGLES, kQuadVertices);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void CGLRenderer::drawImageScaled(const GLTexture& texture, float sourceX, float sourceY, float sourceWidth,
                                  float sourceHeight, float x, float y, float width, float height,
                                  float opacity)
{
    if (texture.width <= 0 || texture.height <= 0)
        return;
    const float left = sourceX / static_cast<float>(texture.width);
    const float top = sourceY / static_cast<float>(texture.height);
    const float right = left + sourceWidth / static_cast<float>(texture.width);
    const float bottom = top + sourceHeight / static_cast<float>(texture.height);
    float positions[12];
    float texCoords[12];
    quadFromRect(x, y, width, height, positions);
    quadFromRect(left, top, right - left, bottom - top, texCoords);
    drawTexturedQuad(texture, positions, texCoords, {1.0f, 1.0f, 1.0f, opacity}, true);
}

void CGLRenderer::drawImage(const GLTexture& texture, float sourceX, float sourceY, float x, float y,
                            float width, float height, float opacity)
{
    drawImageScaled(texture, sourceX, sourceY, width, height, x, y, width, height, opacity);
}

void CGLRenderer::drawImageFrame(const GLTexture& texture, int frameWidth, int frameHeight, int frame,
                                 float x, float y, float opacity)
{
    FramePacking packing;
    packing.frameWidth = frameWidth;
    packing.frameHeight = frameHeight;
    packing.textureWidth = texture.width;
    packing.textureHeight = texture.height;
    packing.frameCount = frame + 1;
    packing.valid = true;
    const FramePosition cell = framePosition(packing, frame);
    drawImage(texture, static_cast<float>(cell.x), static_cast<float>(cell.y), x, y,
              static_cast<float>(frameWidth), static_cast<float>(frameHeight), opacity);
}

void CGLRenderer::drawDashedLineHorizontal(float x, float y, float length, float thickness, float phase)
{
    float positions[12];
    quadFromRect(x, y, length, thickness, positions);
    drawDashedQuad(positions, length, phase, false);
}

void CGLRenderer::drawDashedLineVertical(float x, float y, float length, float thickness, float phase)
{
    float positions[12];
    quadFromRect(x, y, thickness, length, positions);
    drawDashedQuad(positions, length, phase, true);
}

void CGLRenderer::drawDashedQuad(const float positions[12], float length, float phase, bool vertical)
{
    const GLTexture* dash = dashTexture();
    if (dash == nullptr)
        return;
    const float start = phase / kDashPeriod;
    const float end = (phase + length) / kDashPeriod;
    // The texture runs along the line: u follows x on a horizontal line and y on a vertical one.
    const float alongX[8] = {start, 0.0f, end, 0.0f, end, 1.0f, start, 1.0f};
    const float alongY[8] = {start, 0.0f, start, 1.0f, end, 1.0f, end, 0.0f};
    float texCoords[12];
    quadFromCorners(vertical ? alongY : alongX, texCoords);
    drawTexturedQuad(*dash, positions, texCoords, mColour, false);
}

void CGLRenderer::drawBitmapString(float x, float y, const char* text)
{
    const GLTexture* atlas = glyphAtlas();
    if (atlas == nullptr)
        return;
    const BitmapGlyphTable& glyphs = bitmapGlyphs();
    const float side = static_cast<float>(atlas->width);
    float penX = x;
    for (int i = 0; i < 1024 && text[i] != '\0'; ++i)
    {
        const int code = static_cast<uint8_t>(text[i]);
        const BitmapGlyph& glyph = glyphs[static_cast<size_t>(code)];
        if (glyph.width > 0)
        {
            const float left = static_cast<float>((code % 16) * kBitmapFontCell + kBitmapFontInset);
            const float top = static_cast<float>((code / 16) * kBitmapFontCell + kBitmapFontInset);
            float positions[12];
            float texCoords[12];
            quadFromRect(penX - kOverhang, y, glyph.width, glyph.height, positions);
            quadFromRect(left / side, top / side, glyph.width / side, glyph.height / side, texCoords);
            drawTexturedQuad(*atlas, positions, texCoords, mColour, true);
        }
        penX += glyph.advance;
    }
}

} // namespace velmoran::platform
