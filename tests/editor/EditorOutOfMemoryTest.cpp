// The editor's calls from the host when memory runs out, under Wine: createView, attached (which
// synchronises the widgets), the controller's setters that feed the editor and the window's own
// messages. Allocations fail after a chosen number have succeeded; no exception may reach the host.

#include "EditorControllerFixture.h"

#include "plugin/PlugParameters.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

// The replacements below pair malloc with free throughout; the compiler cannot see that across the
// program and warns where it inlines one of them.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

namespace
{

// Allocations still allowed to succeed; negative without a limit.
std::atomic<long> gAllocationsLeft{-1};

} // namespace

void* operator new(std::size_t size)
{
    long left = gAllocationsLeft.load();
    while (left > 0 && !gAllocationsLeft.compare_exchange_weak(left, left - 1))
    {
    }
    if (left == 0)
        throw std::bad_alloc();
    if (void* memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;

// Lets `allowed` allocations succeed while it lives, then fails every further one.
class AllocationLimit
{
public:
    explicit AllocationLimit(long allowed) { gAllocationsLeft = allowed; }
    ~AllocationLimit() { gAllocationsLeft = -1; }
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
};

using EditorOutOfMemory =
    velmoran::test::EditorControllerFixture<velmoran::test::acceptBox, ::testing::TestWithParam<long>>;

// createView gives a view or none; attached opens the view or leaves it closed, and it opens later.
TEST_P(EditorOutOfMemory, CreateViewAndAttachedThrowNothingAndTheViewOpensLater)
{
    IPlugView* made = nullptr;
    {
        AllocationLimit limit(GetParam());
        EXPECT_NO_THROW(made = controller->createView(ViewType::kEditor));
    }
    if (made != nullptr)
        made->release();
    IPtr<CPlugEditorView> view = createView();
    ASSERT_TRUE(view);
    {
        AllocationLimit limit(GetParam());
        EXPECT_NO_THROW(attach(view));
    }
    view->removed();
    ASSERT_EQ(attach(view), kResultOk);
    EXPECT_TRUE(view->isOpen());
    view->removed();
}

TEST_P(EditorOutOfMemory, SettersAndWindowMessagesFeedingTheEditorThrowNothing)
{
    IPtr<CPlugEditorView> view = createView();
    ASSERT_EQ(attach(view), kResultOk);
    HWND window = windowOf(*view);
    {
        AllocationLimit limit(GetParam());
        EXPECT_NO_THROW(controller->setParamNormalized(gainTag(3), 0.8));
        EXPECT_NO_THROW(controller->setParamNormalized(kOutputGainTag, 0.3));
        EXPECT_NO_THROW(controller->setParamNormalized(kEqTag, 0.0));
        EXPECT_NO_THROW(SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 200)));
        EXPECT_NO_THROW(SendMessageA(window, WM_LBUTTONUP, 0, MAKELPARAM(200, 200)));
    }
    view->removed();
}

INSTANTIATE_TEST_SUITE_P(AfterSomeAllocations, EditorOutOfMemory,
                         ::testing::Values(0L, 1L, 2L, 5L, 20L, 100L, 1000L, 10000L));

} // namespace
