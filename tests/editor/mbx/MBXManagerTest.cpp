#include "editor/mbx/MBXManager.h"
#include "editor/mbx/MBXDialogue.h"
#include "editor/mbx/MBXMessage.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace Steinberg::Vst::Velmoran;

namespace
{

struct RecordingEditor : MBXEditorListener
{
    void messageBoxShown(bool shown) override { calls.push_back(shown); }
    std::vector<bool> calls;
};

using Calls = std::vector<bool>;

// The presenters are plain functions: what they see and do goes through these.
std::function<int(const MBXObject&)> gWhilePresented;
std::vector<std::string> gPresented;

int recordingPresenter(const MBXObject& box)
{
    gPresented.push_back(box.title() + "|" + box.text());
    return gWhilePresented ? gWhilePresented(box) : 5;
}

class Manager : public ::testing::Test
{
protected:
    void SetUp() override
    {
        gWhilePresented = nullptr;
        gPresented.clear();
        manager.setPresenter(recordingPresenter);
        manager.editorOpened(&first);
    }

    void TearDown() override
    {
        manager.editorClosed(&first);
        manager.editorClosed(&second);
        manager.setPresenter(nullptr);
        manager.setWindowPresenter(nullptr);
    }

    MBXManager& manager = MBXManager::instance();
    RecordingEditor first;
    RecordingEditor second;
    MBXMessage box{"Title", "Text"};
};

TEST_F(Manager, EditorsAreGreyedWhileTheBoxIsUpAndCountedOnce)
{
    manager.editorOpened(&first);
    manager.editorOpened(&second);
    EXPECT_EQ(manager.openEditorCount(), 2);
    gWhilePresented = [this](const MBXObject&)
    {
        EXPECT_EQ(first.calls, Calls{true});
        EXPECT_EQ(second.calls, Calls{true});
        return 3;
    };
    EXPECT_EQ(box.run(), 3);
    EXPECT_EQ(first.calls, (Calls{true, false}));
    EXPECT_EQ(second.calls, (Calls{true, false}));
    manager.editorClosed(&second);
    manager.editorClosed(&second);
    EXPECT_EQ(manager.openEditorCount(), 1);
}

TEST_F(Manager, EditorsOpenedOrClosedWhileTheBoxIsUpAreToldOnlyWhileOpen)
{
    gWhilePresented = [this](const MBXObject&)
    {
        manager.editorClosed(&first);
        manager.editorOpened(&second);
        return 0;
    };
    manager.show(box);
    EXPECT_EQ(first.calls, Calls{true});
    EXPECT_EQ(second.calls, (Calls{true, false}));
}

TEST_F(Manager, BoxOverABoxKeepsTheEditorsGreyUntilTheLastCloses)
{
    MBXErrorMessage inner("Inner", "Text");
    gWhilePresented = [this, &inner](const MBXObject& shown)
    { return &shown == &box ? manager.show(inner) : 9; };
    EXPECT_EQ(manager.show(box), 9);
    EXPECT_EQ(first.calls, (Calls{true, false}));
    EXPECT_EQ(gPresented, (std::vector<std::string>{"Title|Text", "Inner|Text"}));
}

TEST_F(Manager, NullPresenterRestoresTheWindowOrElseTheDefaultButton)
{
    EXPECT_EQ(manager.setPresenter(nullptr), &recordingPresenter);
    MBXDialogue dialogue("Reset?", "Sure?", MBXDialogueButtons::kYesNo);
    EXPECT_EQ(manager.show(dialogue), dialogue.defaultButton());
    manager.setWindowPresenter([](const MBXObject&) { return 7; });
    EXPECT_EQ(manager.show(dialogue), 7);
    EXPECT_EQ(manager.setPresenter(recordingPresenter), nullptr);
    EXPECT_EQ(manager.show(dialogue), 5);
}

} // namespace
