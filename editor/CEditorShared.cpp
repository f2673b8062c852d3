#include "CEditorShared.h"

#include "platform/render/CGLRenderer.h"
#include "platform/render/TextureLoader.h"
#include "platform/render/images/ImageLoader.h"
#include "resources/ResourceIds.h"

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

CEditorShared* gShared = nullptr;

// The software images (ids from 250) belong to panels composed in memory, not to the screen.
constexpr int kFirstSoftwareImage = velmoran::resources::kPanelShading;

} // namespace

void CEditorShared::acquire()
{
    if (gShared == nullptr)
        gShared = new CEditorShared();
    ++gShared->mReferences;
}

void CEditorShared::release()
{
    if (gShared == nullptr)
        return;
    if (--gShared->mReferences <= 0)
    {
        delete gShared;
        gShared = nullptr;
    }
}

CEditorShared* CEditorShared::instance()
{
    return gShared;
}

int CEditorShared::references()
{
    return gShared != nullptr ? gShared->mReferences : 0;
}

void CEditorShared::openImages(velmoran::platform::CGLRenderer& renderer)
{
    if (mImageUsers++ > 0)
        return;
    for (const velmoran::resources::ImageResource& resource : velmoran::resources::kArtworkImages)
    {
        if (resource.id >= kFirstSoftwareImage)
            continue;
        const auto strip = velmoran::platform::loadImage(resource.id);
        auto texture = velmoran::platform::loadTexture(renderer, resource.id, resource.frames);
        if (!strip || !texture)
            continue;
        EditorImage& image = mImages[resource.id];
        image.texture = std::move(texture);
        image.frameWidth = strip->width;
        image.frameHeight = strip->height / resource.frames;
        image.frameCount = resource.frames;
    }
}

void CEditorShared::closeImages()
{
    if (mImageUsers == 0 || --mImageUsers > 0)
        return;
    mImages.clear();
}

const EditorImage* CEditorShared::image(int id) const
{
    const auto found = mImages.find(id);
    return found != mImages.end() ? &found->second : nullptr;
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
