#include "CGLRenderer.h"

#include "BitmapFont.h"
#include "ShaderPrograms.h"

#include <algorithm>

namespace velmoran::platform
{

namespace
{

// The one rendering context of the process and the number of renderers drawing through it.
struct SharedContext
{
    NativeContext context = nullptr;
    int32_t users = 1;
};

std::unique_ptr<SharedContext> gContext;
std::unique_ptr<GLTexture> gDashTexture;
std::unique_ptr<GLTexture> gGlyphAtlas;

constexpr std::array<int, 5> kProjectionOrder{kProgramFlat, kProgramTextured, kProgramCircle,
                                              kProgramScanline, kProgramGrid};
constexpr std::array<int, 5> kReleaseOrder{kProgramTextured, kProgramFlat, kProgramCircle, kProgramScanline,
                                           kProgramGrid};

constexpr int kMaximumSideWithoutContext = 1024;

CGLRenderer::Matrix identityMatrix()
{
    return {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
}

// Column-major orthographic projection.
CGLRenderer::Matrix orthographic(float left, float right, float bottom, float top, float nearPlane,
                                 float farPlane)
{
    CGLRenderer::Matrix m{};
    m[0] = 2.0f / (right - left);
    m[5] = 2.0f / (top - bottom);
    m[10] = -2.0f / (farPlane - nearPlane);
    m[12] = -(right + left) / (right - left);
    m[13] = -(top + bottom) / (top - bottom);
    m[14] = -(farPlane + nearPlane) / (farPlane - nearPlane);
    m[15] = 1.0f;
    return m;
}

void setFixedState()
{
    glFrontFace(GL_CW);
    glEnable(GL_DITHER);
    glEnable(GL_MULTISAMPLE);
    glEnable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

} // namespace

void VertexArray::add(float x, float y, const Colour& colour)
{
    positions.insert(positions.end(), {x, y});
    colours.insert(colours.end(), {colour.r, colour.g, colour.b, colour.a});
}

void VertexArray::clear()
{
    positions.clear();
    colours.clear();
}

NativeContext CGLRenderer::sharedContext()
{
    return gContext != nullptr ? gContext->context : nullptr;
}

int CGLRenderer::sharedContextUsers()
{
    return gContext != nullptr ? gContext->users : 0;
}

const GLTexture* CGLRenderer::dashTexture()
{
    return gDashTexture.get();
}

const GLTexture* CGLRenderer::glyphAtlas()
{
    return gGlyphAtlas.get();
}

bool CGLRenderer::contextExists() const
{
    return sharedContext() != nullptr;
}

int CGLRenderer::initialise(NativeWindow window, double logicalWidth, double logicalHeight,
                            double viewportWidth, double viewportHeight)
{
    mWindow = window;
    mDc = openSurface(window);
    mLogicalWidth = logicalWidth;
    mLogicalHeight = logicalHeight;
    mViewportWidth = viewportWidth;
    mViewportHeight = viewportHeight;

    mInitialised = true;
    if (!attachContext())
        return kNoContext;

    makeCurrent();
    glViewport(0, 0, static_cast<GLsizei>(logicalWidth), static_cast<GLsizei>(logicalHeight));
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    mMissingEntryPoints = loadGLEntryPoints(gGL);
    if (mMissingEntryPoints)
        return kMissingEntryPoints;

    setFixedState();
    buildSharedTextures();
    glGetError();
    mHoldsPrograms = true;
    const int programs = buildPrograms();
    mProjection = identityMatrix();
    mModelView = identityMatrix();
    return programs == 0 ? kOk : kShaderFailure;
}

bool CGLRenderer::attachContext()
{
    if (gContext != nullptr)
    {
        ++gContext->users;
        mHoldsContext = true;
        return true;
    }
    NativeContext context = createContext(mDc);
    // No record is kept for a failed creation, so that the next editor to open tries again.
    if (context == nullptr)
        return false;
    gContext = std::make_unique<SharedContext>();
    gContext->context = context;
    mHoldsContext = true;
    return true;
}

void CGLRenderer::buildSharedTextures()
{
    mHoldsSharedTextures = true;
    if (gGlyphAtlas != nullptr)
        ++gGlyphAtlas->useCount;
    else
        gGlyphAtlas = makeTexture(bitmapFontAtlasPixels(), kBitmapFontAtlasSide, kBitmapFontAtlasSide,
                                  GL_CLAMP_TO_EDGE);
    if (gDashTexture != nullptr)
    {
        ++gDashTexture->useCount;
        return;
    }
    static const uint8_t kDash[8 * 4] = {255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0,
                                         255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0};
    gDashTexture = makeTexture(kDash, 8, 1, GL_REPEAT);
}

void CGLRenderer::releaseSharedTextures()
{
    if (!mHoldsSharedTextures)
        return;
    mHoldsSharedTextures = false;
    for (std::unique_ptr<GLTexture>* shared : {&gDashTexture, &gGlyphAtlas})
    {
        if (*shared != nullptr && --(*shared)->useCount == 0)
            shared->reset();
    }
}

void CGLRenderer::releaseContext()
{
    if (!mHoldsContext)
        return;
    mHoldsContext = false;
    if (--gContext->users > 0)
        return;
    deleteContext(gContext->context);
    gContext.reset();
}

void CGLRenderer::teardown()
{
    if (!mInitialised)
        return;
    mInitialised = false;
    if (mHoldsContext)
        makeCurrent();
    releaseSharedTextures();
    if (mHoldsPrograms)
    {
        for (const int number : kReleaseOrder)
            releaseProgram(number);
        mHoldsPrograms = false;
    }
    releaseContext();
    closeSurface(mWindow, mDc);
    mDc = NativeSurface{};
}

void CGLRenderer::setPixelScale(float scale)
{
    mPixelScale = std::max(1.0f, scale);
}

void CGLRenderer::setClearColour(int red, int green, int blue)
{
    if (contextExists())
        glClearColor(red / 255.0f, green / 255.0f, blue / 255.0f, 1.0f);
}

void CGLRenderer::clear()
{
    if (contextExists())
        glClear(GL_COLOR_BUFFER_BIT);
}

void CGLRenderer::setViewportSize(float width, float height)
{
    mViewportWidth = width;
    mViewportHeight = height;
    mViewportSizeChanged = true;
}

bool CGLRenderer::viewportSize(float& width, float& height) const
{
    width = static_cast<float>(mViewportWidth);
    height = static_cast<float>(mViewportHeight);
    return mViewportSizeChanged;
}

void CGLRenderer::logicalSize(float& width, float& height) const
{
    width = static_cast<float>(mLogicalWidth);
    height = static_cast<float>(mLogicalHeight);
}

void CGLRenderer::beginFrame()
{
    if (!contextExists())
        return;
    glViewport(0, 0, static_cast<GLsizei>(mViewportWidth), static_cast<GLsizei>(mViewportHeight));
    mProjection = orthographic(0.0f, static_cast<float>(mLogicalWidth), static_cast<float>(mLogicalHeight),
                               0.0f, 1.0f, -1.0f);
    for (const int number : kProjectionOrder)
    {
        const ProgramRecord* record = sharedProgram(number);
        if (record == nullptr)
            continue;
        gGL.glUseProgram(record->program);
        gGL.glUniformMatrix4fv(record->projectionMatrix, 1, GL_FALSE, mProjection.data());
    }
    gGL.glUseProgram(0);
}

void CGLRenderer::present()
{
    if (!contextExists())
        return;
    glFlush();
    swapSurface(mDc);
    mViewportSizeChanged = false;
}

void CGLRenderer::makeCurrent()
{
    if (contextExists())
        makeContextCurrent(mDc, sharedContext());
}

void CGLRenderer::stopUsingPrograms()
{
    if (contextExists())
        gGL.glUseProgram(0);
}

void CGLRenderer::setScissor(int x, int y, int width, int height)
{
    if (!contextExists())
        return;
    if (width == 0 && height == 0)
    {
        glDisable(GL_SCISSOR_TEST);
        return;
    }
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, static_cast<GLint>(mViewportHeight) - y - height, width, height);
}

std::unique_ptr<GLTexture> CGLRenderer::createTexture(const uint8_t* pixels, int width, int height)
{
    if (!contextExists())
        return nullptr;
    makeCurrent();
    return makeTexture(pixels, width, height, GL_CLAMP_TO_EDGE);
}

void CGLRenderer::reuploadTexture(const GLTexture& texture)
{
    if (!contextExists())
        return;
    makeCurrent();
    uploadTexture(texture);
}

void CGLRenderer::readBackTexture(GLTexture& texture, int x, int y)
{
    if (!contextExists())
        return;
    glFlush();
    glBindTexture(GL_TEXTURE_2D, texture.name);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, x, static_cast<GLint>(mViewportHeight) - y, texture.width,
                        texture.height);
    texture.pixels.resize(static_cast<size_t>(texture.width) * static_cast<size_t>(texture.height) * 4);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texture.pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
}

void CGLRenderer::powerOfTwoSize(int width, int height, int& textureWidth, int& textureHeight)
{
    GLint maximumSide = kMaximumSideWithoutContext;
    if (sharedContext() != nullptr)
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maximumSide);
    textureWidth = powerOfTwoSide(width, maximumSide);
    textureHeight = powerOfTwoSide(height, maximumSide);
}

} // namespace velmoran::platform
