// The trigger editor's boxes against the files they load and write.
#include <gtest/gtest.h>

#include "support/trigger_fixture.h"

namespace kelpa::test {
namespace {

TEST(TriggerEditor, TemplateSavesLoadsAndSavesAgainAsTheOldEditorDid) {
    TriggerFixture t;
    std::filesystem::create_directories(t.fp.folder.path() / "triggers");
    std::filesystem::create_directories(t.fp.folder.path() / "gtriggers");
    TriggerEditor& e = t.c.triggerEditor;
    e.brefresh2_Click();
    e.btnTRGNew_Click();
    e.txtTRGLabel = "fight.trigger";
    ASSERT_EQ(e.btnTRGSave_Click(), "");
    EXPECT_EQ(t.fp.folder.read("triggers/fight.trigger"),
              "flag1=1\r\npattern1=?\r\naction=#nop\r\npattern1=?\r\naction=#nop\r\n");
    EXPECT_EQ(t.c.triggers.TriggerCount(), 2);  // in the tables at once
    EXPECT_TRUE(e.TList.empty());               // the list waits for Refresh

    t.trigger("fight.trigger", "; note\r\npattern1=x\r\nAction=go\r\nFLAG2=3\r\nbad=1\r\nsay=no");
    e.brefresh2_Click();
    ASSERT_EQ(e.TList, std::vector<std::string>{"fight.trigger"});
    e.listIndex = 0;
    ASSERT_EQ(e.TList_DblClick(), "");
    EXPECT_EQ(e.txtTRGLabel, "fight.trigger");
    EXPECT_EQ(e.TxtTrgFlags, "FLAG2=3\r\n");
    EXPECT_EQ(e.txtTRGBody, "pattern1=x\r\nAction=go\r\n");
    e.Option1_Click(1);  // a save now copies the trigger to the global folder
    EXPECT_EQ(e.txtTRGLabel, "fight.trigger");
    ASSERT_EQ(e.btnTRGSave_Click(), "");
    EXPECT_EQ(t.fp.folder.read("gtriggers/fight.trigger"), "FLAG2=3\r\n\r\npattern1=x\r\nAction=go\r\n\r\n");
    ASSERT_EQ(t.c.triggers.GlobalTriggerCount(), 2);  // the blank line makes an empty first part
    EXPECT_EQ(t.c.triggers.GlobalTriggerTable[1].Action, "go");

    e.listIndex = -1;
    EXPECT_EQ(e.TList_DblClick(), "");
    EXPECT_EQ(e.txtTRGLabel + e.TxtTrgFlags + e.txtTRGBody, "");
}

TEST(TriggerEditor, FailedSavesAndDeletesSayWhyAndKeepTheBoxes) {
    TriggerFixture t;
    TriggerEditor& e = t.c.triggerEditor;
    e.btnTRGNew_Click();
    e.txtTRGLabel = "a.trigger";
    EXPECT_NE(e.btnTRGSave_Click(), "") << "no folder";
    std::filesystem::create_directories(t.fp.folder.path() / "triggers");
    e.txtTRGLabel = std::string(300, 'n') + ".trigger";
    EXPECT_NE(e.btnTRGSave_Click().find("File name too long"), std::string::npos);
    e.txtTRGLabel = "../escape.trigger";
    EXPECT_EQ(e.btnTRGSave_Click(), "Cannot save the trigger: \"../escape.trigger\" is not a file name.");
    EXPECT_EQ(e.TxtTrgFlags, "flag1=1");
    EXPECT_TRUE(std::filesystem::is_empty(t.fp.folder.path() / "triggers"));  // no temporary file left

    e.txtTRGLabel = "a.trigger";
    ASSERT_EQ(e.btnTRGSave_Click(), "");
    auto yes = [](const std::string&, const std::string&) { return true; };
    EXPECT_EQ(e.btnTRGDelete_Click(yes), "");
    EXPECT_EQ(t.c.triggers.TriggerCount(), 2);  // still active until a reload
    e.txtTRGLabel = "a.trigger";
    e.txtTRGBody = "kept";
    EXPECT_EQ(e.btnTRGDelete_Click(yes),
              "Cannot delete the trigger " + t.fp.files.absolute("triggers/a.trigger") + ": there is no such file.");
    EXPECT_EQ(e.txtTRGBody, "kept");
    e.Reload_Click();
    EXPECT_EQ(t.c.triggers.TriggerCount(), 0);
}

}  // namespace
}  // namespace kelpa::test
