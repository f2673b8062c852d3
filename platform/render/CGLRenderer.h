#pragma once

#include "GLEntryPoints.h"
#include "GLPlatform.h"
#include "GLTexture.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmoran::platform
{

struct ProgramRecord;

// A colour as the shaders take it: red, green, blue and opacity, each 0..1.
struct Colour
{
    float r = 1.0f;
    float g = 1.0f;
    float b = 1.0f;
    float a = 1.0f;
};

// Vertices gathered by the caller for one triangle-list draw: two floats of position (logical
// pixels) and four of colour each.
struct VertexArray
{
    std::vector<float> positions;
    std::vector<float> colours;

    // Appends one vertex.
    void add(float x, float y, const Colour& colour);
    // Removes every vertex, keeping the memory.
    void clear();
    // Number of vertices held.
    int vertexCount() const { return static_cast<int>(positions.size() / 2); }
};

// The editor's drawing engine on one window: all renderers of the process draw through one shared
// OpenGL context, made current on their own window's DC. Logical pixels have the origin at the top
// left and are stretched over the whole viewport. UI thread only.
class CGLRenderer
{
public:
    enum Result : int
    {
        kOk = 0,
        kMissingEntryPoints = 1,
        kShaderFailure = 2,
        kNoContext = 3
    };

    using Matrix = std::array<float, 16>; // column-major

    CGLRenderer() = default;
    CGLRenderer(const CGLRenderer&) = delete;
    CGLRenderer& operator=(const CGLRenderer&) = delete;

    // Sets OpenGL up on the window; a Result code.
    int initialise(NativeWindow window, double logicalWidth, double logicalHeight, double viewportWidth,
                   double viewportHeight);
    // Releases this renderer's share of the context, programs and textures.
    void teardown();

    // Device pixels per logical pixel used for scanline widths; values below 1 count as 1.
    void setPixelScale(float scale);
    // The pixel scale, at least 1.
    float pixelScale() const { return mPixelScale; }
    // Clear colour from 0..255 components, opaque.
    void setClearColour(int red, int green, int blue);
    // Fills the colour buffer with the clear colour.
    void clear();
    // New window size in device pixels; raises the size-changed flag.
    void setViewportSize(float width, float height);
    // Window size in device pixels; true when it changed since the last present.
    bool viewportSize(float& width, float& height) const;
    // Size of the drawing coordinate system in logical pixels.
    void logicalSize(float& width, float& height) const;
    // Sets the viewport and loads the projection into every program; call makeCurrent first.
    void beginFrame();
    // Finishes the frame and shows it.
    void present();
    // Makes the shared context current on this renderer's window.
    void makeCurrent();
    // Leaves no program in use.
    void stopUsingPrograms();
    // Clips drawing to a rectangle in device pixels from the top left; (0, 0, 0, 0) switches
    // clipping off.
    void setScissor(int x, int y, int width, int height);

    // Drawing colour from 0..255 components.
    void setColour(int red, int green, int blue, int alpha = 255);
    // The drawing colour, components 0..1.
    const Colour& colour() const { return mColour; }
    // Saturation 0 (grey) .. 1 (full colour) of everything drawn from now on; gives the previous one.
    float setSaturation(float saturation);
    // Gamma exponent applied to image colours (1 leaves them unchanged).
    void setGamma(float gamma);
    // Transform applied to every vertex before the projection (identity unless set).
    void setModelViewMatrix(const Matrix& matrix);
    void resetModelViewMatrix();
    // Logical pixels to clip space, as loaded by the last beginFrame.
    const Matrix& projectionMatrix() const { return mProjection; }

    // Rectangle in the drawing colour, logical pixels.
    void fillRect(float x, float y, float width, float height);
    // Rectangle shading from the top colour to the bottom colour.
    void fillRectVerticalGradient(float x, float y, float width, float height, const Colour& top,
                                  const Colour& bottom);
    // Quadrilateral through four corners (x, y pairs: top left, top right, bottom right, bottom left)
    // in the drawing colour.
    void fillQuad(const float corners[8]);
    // Quadrilateral with one colour per corner (same order as the corners).
    void fillQuad(const float corners[8], const Colour colours[4]);
    // Triangles given as 3 * count positions (x, y) and colours (r, g, b, a).
    void drawTriangles(const float* positions, const float* colours, int triangleCount);
    void drawTriangles(const VertexArray& vertices);
    // A panel in the drawing colour: style [0, 1) lit from above, [1, 2) sunken, 2 a one-pixel
    // outline of the top and both sides.
    void drawStripShape(float x, float y, float width, float height, float style);
    // Rectangle in the drawing colour with alternate bands of 2 * floor(pixel scale) rows darkened.
    void drawScanlineRect(float x, float y, float width, float height);
    // Rectangle in the drawing colour shown as a grid of dots every gridSize device pixels.
    void drawGridRect(float x, float y, float width, float height, float gridSize);
    // Anti-aliased ring between the two radii (logical pixels) in the drawing colour; a radius of 0
    // gives a disc.
    void drawCircle(float centreX, float centreY, float radiusA, float radiusB);
    // Part of a texture at 1:1 (source and size in texture pixels, destination in logical pixels).
    void drawImage(const GLTexture& texture, float sourceX, float sourceY, float x, float y, float width,
                   float height, float opacity = 1.0f);
    // Part of a texture stretched over a destination rectangle.
    void drawImageScaled(const GLTexture& texture, float sourceX, float sourceY, float sourceWidth,
                         float sourceHeight, float x, float y, float width, float height,
                         float opacity = 1.0f);
    // Frame `frame` of a multi-frame texture whose cells are frameWidth x frameHeight, at 1:1.
    void drawImageFrame(const GLTexture& texture, int frameWidth, int frameHeight, int frame, float x,
                        float y, float opacity = 1.0f);
    // Horizontal dashed line (dashes of 2 pixels every 4), in the drawing colour; phase in pixels.
    void drawDashedLineHorizontal(float x, float y, float length, float thickness, float phase);
    // Vertical dashed line.
    void drawDashedLineVertical(float x, float y, float length, float thickness, float phase);

    // Draws a label in the drawing colour with the renderer's bitmap font, line top at (x, y) in
    // logical pixels; at most 1024 characters.
    void drawBitmapString(float x, float y, const char* text);

    // A texture from width * height RGBA pixels (R, G, B, A bytes, top row first); null pixels give
    // a cleared texture, to be filled or read back later.
    std::unique_ptr<GLTexture> createTexture(const uint8_t* pixels, int width, int height);
    // Uploads a texture's pixel copy again after it was changed.
    void reuploadTexture(const GLTexture& texture);
    // Copies the window's pixels into the texture and its pixel copy; x from the left, y the
    // distance of the region's lower edge from the top, in device pixels. The copy's rows run
    // bottom-up.
    void readBackTexture(GLTexture& texture, int x, int y);
    // Power-of-two texture size for a request (each side from 64); -1 for a side that would grow
    // past the driver's limit (1024 without a context).
    static void powerOfTwoSize(int width, int height, int& textureWidth, int& textureHeight);

    // The shared context and the number of renderers using it.
    static NativeContext sharedContext();
    static int sharedContextUsers();
    // The shared dash texture, 8 x 1 pixels.
    static const GLTexture* dashTexture();
    // The shared atlas of the bitmap label font.
    static const GLTexture* glyphAtlas();

    // True when the last initialise found a tested entry point missing.
    bool missingEntryPoints() const { return mMissingEntryPoints; }
    // The window's device context.
    NativeSurface deviceContext() const { return mDc; }

private:
    // The dash texture over `positions`, `length` pixels from `phase` into its pattern.
    void drawDashedQuad(const float positions[12], float length, float phase, bool vertical);
    bool contextExists() const;
    // Joins the shared context, creating it on this window when there is none; false when it
    // cannot be created.
    bool attachContext();
    void buildSharedTextures();
    void releaseSharedTextures();
    void releaseContext();
    const ProgramRecord* beginDraw(int program);
    void uploadArray(GLuint buffer, const float* data, size_t floatCount);
    void finishDraw(const ProgramRecord& record, GLenum mode, int vertexCount);
    void drawFlat(GLenum mode, const float* positions, const float* colours, int vertexCount);
    void drawColouredQuad(int program, float x, float y, float width, float height);
    void drawTexturedQuad(const GLTexture& texture, const float* positions, const float* texCoords,
                          const Colour& tint, bool withGamma);

    NativeWindow mWindow{};
    NativeSurface mDc{};
    double mLogicalWidth = 0.0;
    double mLogicalHeight = 0.0;
    double mViewportWidth = 0.0;
    double mViewportHeight = 0.0;
    Colour mColour;
    float mSaturation = 1.0f;
    float mGamma = 1.0f;
    float mPixelScale = 1.0f;
    bool mViewportSizeChanged = false;
    bool mMissingEntryPoints = false;
    bool mInitialised = false;
    bool mHoldsContext = false;
    bool mHoldsPrograms = false;
    bool mHoldsSharedTextures = false;
    Matrix mProjection{};
    Matrix mModelView{};
};

} // namespace velmoran::platform
