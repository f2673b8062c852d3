#pragma once

#include "platform/render/GLTexture.h"

#include <map>
#include <memory>

namespace velmoran::platform
{
class CGLRenderer;
}

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

// One stored image as the editors draw it: its packed texture and the size of one frame.
struct EditorImage
{
    std::unique_ptr<velmoran::platform::GLTexture> texture;
    int frameWidth = 0;  // pixels
    int frameHeight = 0; // pixels
    int frameCount = 1;
};

// What all editors of the module share: the images of the equaliser screen, loaded into the
// shared OpenGL context by the first editor that opens and freed when the last one closes. The
// object itself lives from module load to unload, counted by the module entry and by every
// controller. UI thread only.
class CEditorShared
{
public:
    // Takes a reference on the module-wide object, making it first if there is none.
    static void acquire();
    // Drops a reference; the object is freed and forgotten at zero.
    static void release();
    // The module-wide object, null outside acquire..release.
    static CEditorShared* instance();
    // Number of references held.
    static int references();

    // An editor opened on this renderer: the images are loaded if it is the first.
    void openImages(velmoran::platform::CGLRenderer& renderer);
    // An editor closed: the images are freed if it was the last. The shared context must still
    // exist (made current by the caller's renderer).
    void closeImages();
    // The image `id` loaded as `frameCount` frames, null while no editor is open or if it is missing.
    const EditorImage* image(int id) const;
    // Number of open editors using the images, and of images loaded.
    int imageUsers() const { return mImageUsers; }
    int loadedImages() const { return static_cast<int>(mImages.size()); }

private:
    CEditorShared() = default;

    int mReferences = 0;
    int mImageUsers = 0;
    std::map<int, EditorImage> mImages;
};

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
