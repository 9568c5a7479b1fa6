// What exported files are called, which folders are remembered, how long a run still takes.
#include "app/export/export_folders.h"
#include "app/export/export_plan.h"
#include "app/export/export_task.h"
#include "app/export/photographs.h"
#include "core/text/loc.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using ExportNaming::Mode;

TEST(ExportNaming, NamesFollowTheTable)
{
    const std::string longest(300, 'x'), cyrillic = [] {
        std::string s;
        for (int i = 0; i < 200; ++i) s += "Ж";
        return s;
    }();
    const struct {
        ExportNaming::Name name;
        std::string expected;
    } cases[] = {
        {{Mode::source, "A", 1, 12, "", "jpg"}, "A.jpg"},
        {{Mode::tamlo, "A.b", 1, 12, "", "tif"}, "A.b_tamlo.tif"},
        {{Mode::numberSource, "A", 7, 12, "", "png"}, "007_A.png"},
        {{Mode::number, "A", 12, 12, "", "jpg"}, "012.jpg"},
        {{Mode::number, "A", 1, 1234, "", "jpg"}, "0001.jpg"},
        {{Mode::number, "A", -3, 1, "", "jpg"}, "000.jpg"},
        {{Mode::custom, "A", 1, 12, "Berlin 2026", "jpg"}, "Berlin 2026_001.jpg"},
        {{Mode::custom, "A", 1, 12, "...", "jpg"}, "tamlo_001.jpg"},
        {{Mode::name, "A", 1, 1, "  x.  ", "jpg"}, "x.jpg"},
        {{Mode::tamlo, longest, 1, 1, "", "jpg"}, std::string(234, 'x') + "_tamlo.jpg"},
        {{Mode::source, cyrillic, 1, 1, "", "jpg"}, cyrillic.substr(0, 240) + ".jpg"},
    };
    for (const auto& one : cases) EXPECT_EQ(ExportNaming::fileName(one.name), one.expected);
    EXPECT_THROW(ExportNaming::fileName({Mode::name, "A", 1, 2, "x", "jpg"}), NamingError);
    for (const auto& [text, stem] :
         std::initializer_list<std::pair<std::string, std::string>>{{"...", "tamlo"},
                                                                    {"a/b:c", "a_b_c"},
                                                                    {"  x.  ", "x"},
                                                                    {"x .", "x "},
                                                                    {"\n\x01q\"", "__q_"},
                                                                    {" ", "tamlo"}})
        EXPECT_EQ(ExportNaming::customStem(text), stem);
    for (int mode = 0; mode < 6; ++mode)
        EXPECT_EQ(ExportNaming::fromText(ExportNaming::rawText(static_cast<Mode>(mode))),
                  static_cast<Mode>(mode));
    EXPECT_FALSE(ExportNaming::fromText("else"));
}

TEST(ExportNaming, AFreeNameIsTheNextOne)
{
    const std::set<fs::path> disk{"/d/A.jpg", "/d/A 2.jpg", "/d/social/B_social.jpg"};
    const auto exists = [&](const fs::path& file) { return disk.contains(file); };
    EXPECT_EQ(ExportNaming::freeName("/d/A.jpg", {}, exists), "/d/A 3.jpg");
    EXPECT_EQ(ExportNaming::freeName("/d/B.jpg", {}, exists), "/d/B 2.jpg");
    EXPECT_EQ(ExportNaming::freeName("/d/C.jpg", {"/d/C.jpg"}, exists), "/d/C 2.jpg");
    EXPECT_EQ(ExportNaming::freeName("/d/D.jpg", {}, exists), "/d/D.jpg");
    EXPECT_TRUE(
        ExportNaming::isTaken("/d/./x/../A.jpg", {"/d/A.jpg"}, [](const fs::path&) { return false; }));
}

TEST(ExportPlan, ARunNamesItsFramesOnceAndForAll)
{
    Project project;
    for (const char* url : {"/1/A.NEF", "/2/A.JPG", "/1/B.NEF", "/3/A.jpg", "/1/A 2.NEF"}) {
        Frame frame;
        frame.id = Uuid::random();
        frame.url = url;
        project.frames.append(frame);
    }
    ExportDraft draft;
    draft.naming = Mode::source;
    draft.setIndex = static_cast<int>(ExportSet::all);
    const auto jobs = ExportPlan::jobs(project, draft, draft.frames(project), "/out");
    std::vector<std::string> names;
    for (const ExportJob& job : jobs) names.push_back(job.target.filename().string());
    EXPECT_EQ(names, (std::vector<std::string>{"A.jpg", "A 2.jpg", "B.jpg", "A 3.jpg", "A 2 2.jpg"}));
    const auto part = ExportPlan::shard(jobs, 2, 3);
    ASSERT_EQ(part.size(), 2u);
    EXPECT_EQ(part[0].target, "/out/A 2.jpg");
    EXPECT_EQ(part[1].target, "/out/A 2 2.jpg");
    EXPECT_EQ(part[1].place, 5u);
}

TEST(ExportDraft, ComesBackFromThePreferences)
{
    MapPreferences preferences;
    const Project project = rollOf(3);
    EXPECT_EQ(ExportDraft::load(preferences).naming, Mode::tamlo);
    preferences.values["lastExportHalf"] = "true";
    EXPECT_EQ(ExportDraft::load(preferences).scale, 0.5);
    ExportDraft draft = ExportDraft::of(project, preferences, project.frames[0].id, {});
    EXPECT_EQ(draft.nameText, "IMG_1000");
    draft.naming = Mode::name;
    draft.customText = "Ночь";
    draft.type = ExportDraft::Type::tif;
    draft.scale = 0.25;
    draft.social = true;
    draft.socialPx = 2048;
    draft.store(preferences);
    const ExportDraft back = ExportDraft::of(project, preferences, project.frames[0].id, {});
    EXPECT_EQ(back.naming, Mode::name);
    EXPECT_EQ(back.customText, "Ночь");
    EXPECT_EQ(back.ext(), "tif");
    EXPECT_EQ(back.scale, 0.25);
    EXPECT_EQ(back.socialPx, 2048);
    const ExportDraft batch = ExportDraft::of(project, preferences, std::nullopt, {project.frames[2].id});
    EXPECT_EQ(batch.naming, Mode::tamlo) << "a name is for a single frame";
    EXPECT_EQ(batch.setIndex, 0);
    preferences.values["lastExportNaming"] = "nonsense";
    EXPECT_EQ(ExportDraft::load(preferences).naming, Mode::tamlo);
}

TEST(ExportFolders, TheLastSevenStay)
{
    MapPreferences preferences;
    preferences.values["lastExportFolder"] = "/old";
    ExportFolders::List list = ExportFolders::load(preferences);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].name, "old");
    for (int i = 0; i < 8; ++i) list = ExportFolders::push(ExportFolder::at("/f/" + std::to_string(i)), list);
    list = ExportFolders::push(ExportFolder::at("/f/x/../3"), list);
    ASSERT_EQ(list.size(), 7u);
    EXPECT_EQ(list[0].path, "/f/x/../3");
    EXPECT_EQ(list[1].path, "/f/7");
    EXPECT_EQ(list[6].path, "/f/1");
    list[1].bookmark = "b";
    ExportFolders::store(list, preferences);
    EXPECT_EQ(ExportFolders::load(preferences), list);
    preferences.values = {{"lastExportFolders", "broken"}};
    EXPECT_TRUE(ExportFolders::load(preferences).empty());

    EXPECT_EQ(ExportFolders::shortPath("/home/a/prints", 20, "/home/a"), "~/prints");
    EXPECT_EQ(ExportFolders::shortPath("/home/ab/prints", 20, "/home/a"), "/home/ab/prints");
    EXPECT_EQ(ExportFolders::shortPath("/home/a/2026/Печать/лето", 13, "/home/a"), "…/Печать/лето");
    EXPECT_EQ(ExportFolders::shortPath("/home/a/2026/Печать/лето", 12, "/home/a"), "…/лето");
    EXPECT_EQ(ExportFolders::shortPath("/a/verylongname", 4, ""), "…/verylongname");
}

TEST(ExportTask, TellsHowLongItTakes)
{
    Loc::setOverride(Loc::Lang::en);
    ExportTask task;
    task.total = 12;
    task.frameFraction = 0.9;
    EXPECT_EQ(task.caption(30), "1 of 12") << "a first frame gives no estimate";
    task.done = 2;
    task.frameTimes = {10, 11};
    EXPECT_EQ(task.caption(30), "3 of 12 · ~1:45");
    ExportTask one;
    one.total = 1;
    one.frameFraction = 0.25;
    EXPECT_EQ(one.singleSeconds(20), 60.0);
    EXPECT_EQ(one.singleSeconds(0.5), std::nullopt);
    EXPECT_EQ(one.caption(20), "1 of 1 · ~1:00");
    one.cancelling = true;
    EXPECT_EQ(one.caption(20), "Stopping after this frame…");
    Loc::setOverride(std::nullopt);
}

TEST(Photographs, AreKnownUnderAnyName)
{
    const ScratchFolder scratch;
    writeFile(scratch / "a.jpg", "a");
    writeFile(scratch / "else.jpg", "e");
    fs::create_symlink("a.jpg", scratch / "link.jpg");
    fs::create_hard_link(scratch / "a.jpg", scratch / "hard.jpg");
    fs::create_directory_symlink(scratch.path(), scratch / "folder");
    Roll roll;
    for (const char* name : {"a.jpg", "gone.jpg"}) {
        Frame frame;
        frame.url = (scratch / name).string();
        roll.append(frame);
    }
    const Photographs photographs(roll);
    for (const char* name : {"a.jpg", "link.jpg", "hard.jpg", "folder/a.jpg", "folder/gone.jpg", "gone.jpg"})
        EXPECT_TRUE(photographs.contains(scratch / name)) << name;
    for (const char* name : {"else.jpg", "new.jpg"})
        EXPECT_FALSE(photographs.contains(scratch / name)) << name;
}

} // namespace
} // namespace tamlo::test
