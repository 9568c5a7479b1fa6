#include "app/project/settings_clipboard.h"
#include "app/shell/format_follow.h"
#include "app/shell/knob_changes.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "tests/shell/session.h"

#include <algorithm>
#include <random>
#include <set>

namespace tamlo::test {
namespace {

class EditsTest : public SessionTest {
protected:
    static Rack::Change grade(double value)
    {
        return [value](ProcessSettings& settings) { settings.options.grade = value; };
    }
    double gradeOf(std::size_t place) const { return roll()[place].process->options.grade; }
};

TEST_F(EditsTest, OneStepForManyAndNoneForNothing)
{
    open(10);
    EXPECT_EQ(model_.rack.change(all(), grade(4.5)), 10u);
    EXPECT_EQ(steps(), 1u);
    EXPECT_EQ(topName(), "grade (10)");
    EXPECT_EQ(views_.rendered, 10u);
    for (const Frame& frame : roll()) EXPECT_EQ(frame.exportedAt, std::nullopt) << "out of date";
    EXPECT_EQ(model_.rack.change(all(), grade(4.5)), 0u);
    EXPECT_EQ(model_.rack.change({}, grade(1)), 0u);
    EXPECT_EQ(model_.rack.change({Uuid::random()}, grade(1)), 0u);
    EXPECT_EQ(steps(), 1u);
    EXPECT_TRUE(model_.undo());
    EXPECT_EQ(model_.status(), "Undone: grade (10)");
    EXPECT_FALSE(roll()[0].process) << "an original again";
    EXPECT_EQ(roll()[1].exportedName, "a.jpg");
    EXPECT_TRUE(roll()[1].exportedAt);
}

TEST_F(EditsTest, FramesWithANumberOnTheirEdgeFollowTheirPlace)
{
    open(6);
    model_.rack.change({roll()[1].id, roll()[4].id}, [](ProcessSettings& s) { s.options.framePrint = true; });
    views_.rendered = 0;
    model_.removal.remove({roll()[2].id}, false);
    EXPECT_EQ(views_.rendered, 1u) << "the one behind the gap";
}

TEST_F(EditsTest, FramesThatShareAProcessGoOnSharingIt)
{
    open(4);
    ASSERT_TRUE(model_.copying.paste(model_.copying.settingsEnvelope(roll()[1].id), all()));
    model_.rack.change(all(), grade(1));
    for (const std::size_t i : {2, 3}) EXPECT_EQ(&*roll()[i].process, &*roll()[0].process);
}

TEST_F(EditsTest, ADragIsOneStepAndAnotherFrameIsAnother)
{
    open(6);
    model_.selection.openFrame(roll()[1].id);
    for (int i = 1; i <= 20; ++i, loop_.advance(0.1)) {
        ProcessSettings settings = model_.rack.rackSettings();
        settings.options.grade = 2 + 0.1 * i + 0.003;
        model_.rack.setRackSettings(settings);
    }
    EXPECT_EQ(steps(), 1u);
    EXPECT_EQ(topName(), "grade");
    EXPECT_TRUE(roll()[1].process->modified) << "it has a recipe's name";
    model_.selection.openFrame(roll()[2].id);
    ProcessSettings settings = model_.rack.rackSettings();
    settings.options.grade = 0.5;
    model_.rack.setRackSettings(settings);
    EXPECT_EQ(steps(), 2u);
    model_.selection.openFrame(roll()[0].id);
    model_.rack.setRackSettings(ProcessSettings::fresh());
    EXPECT_EQ(steps(), 2u) << "a fresh process is what an original shows";
    settings = ProcessSettings::fresh();
    settings.stock = "trix400";
    model_.rack.setRackSettings(settings);
    EXPECT_EQ(topName(), "Start Printing");
}

TEST_F(EditsTest, AnUndoLeavesWhatIsNoStep)
{
    open(6);
    const FrameID id = roll()[1].id, removed = roll()[5].id;
    model_.rack.change({id}, grade(5));
    model_.removal.remove({removed}, false);
    model_.amendProject([&](Project& project) {
        Frame& frame = project.frames.edit(1);
        frame.url = "/found/again.NEF";
        frame.exportedAt = Date{1};
        project.frames.edit(2).exportedAt = Date{2};
        project.filter = GridFilter::hideRejected;
        project.name = "Renamed";
    });
    while (model_.undo()) {}
    EXPECT_EQ(views_.loaded, 1u) << "the removed frame";
    EXPECT_EQ(roll()[5].id, removed);
    EXPECT_EQ(roll()[1].url, "/found/again.NEF");
    EXPECT_NE(roll()[1].exportedAt, Date{1}) << "of another picture";
    EXPECT_EQ(roll()[2].exportedAt, Date{2});
    EXPECT_EQ(model_.project().filter, GridFilter::hideRejected);
    EXPECT_EQ(model_.project().name, "Renamed");
    while (model_.redo()) {}
    EXPECT_EQ(roll().size(), 5u);
    EXPECT_EQ(gradeOf(1), 5);
}

TEST_F(EditsTest, MarksToggleAndMoveTheCursor)
{
    open(6); // none, selected, rejected, twice
    model_.marks.setMark(roll()[1].id, Mark::selected);
    EXPECT_EQ(roll()[1].mark, Mark::none) << "pressed twice";
    model_.selection.select(ids({0, 1, 2}));
    model_.marks.markCurrent(Mark::rejected);
    EXPECT_EQ(topName(), "Reject (3)");
    model_.marks.markCurrent(Mark::rejected);
    for (std::size_t i : {0, 1, 2}) EXPECT_EQ(roll()[i].mark, Mark::none);
    model_.selection.setFilter(GridFilter::hideRejected);
    model_.selection.select(ids({4}));
    model_.marks.markCurrent(Mark::rejected);
    EXPECT_EQ(model_.selection.cursor(), roll()[3].id) << "nothing visible after it";
    model_.selection.setFilter(GridFilter::selected);
    EXPECT_EQ(model_.selection.cursor(), std::nullopt);
    EXPECT_TRUE(model_.selection.actionTargets().empty());
}

TEST_F(EditsTest, TurnsAreThoseOfTheScreen)
{
    using Action = OrientAction;
    for (int rot = 0; rot < 4; ++rot)
        for (const bool mirror : {false, true}) {
            const Orient from{rot, mirror};
            EXPECT_EQ(oriented(oriented(from, Action::right), Action::left), from);
            EXPECT_EQ(oriented(oriented(from, Action::flipH), Action::flipH), from);
            EXPECT_EQ(oriented(oriented(from, Action::flipV), Action::flipV), from);
            const Orient half = oriented(oriented(from, Action::right), Action::right);
            EXPECT_EQ(oriented(oriented(from, Action::flipH), Action::flipV), half);
            EXPECT_EQ(oriented(oriented(from, Action::right), Action::flipH),
                      oriented(oriented(from, Action::flipH), Action::left));
        }
    open(8);
    model_.turns.orient(all(), Action::reset);
    EXPECT_EQ(steps(), 1u);
    EXPECT_EQ(topName(), "Turn (8)");
    EXPECT_EQ(roll()[7].exportedAt, std::nullopt);
}

TEST_F(EditsTest, PastingBringsNoGeometryAndSparesWhatIsEqual)
{
    open(8);
    const std::string envelope = model_.copying.settingsEnvelope(roll()[1].id);
    const auto pasted = model_.copying.paste(envelope, ids({1, 3, 6}));
    ASSERT_TRUE(pasted);
    EXPECT_EQ(pasted->frames, 2u) << "the first has it already";
    EXPECT_TRUE(roll()[1].exportedAt);
    EXPECT_EQ(roll()[6].process, roll()[1].process);
    EXPECT_EQ(roll()[6].crop, rollOf(8).frames[6].crop);
    EXPECT_EQ(model_.status(), "Settings pasted into 3 frames");
    EXPECT_EQ(model_.copying.paste(envelope, ids({1, 3, 6}))->frames, 0u);
    EXPECT_EQ(steps(), 1u);
    EXPECT_FALSE(model_.copying.paste("{}", all()));

    model_.selection.openFrame(roll()[3].id);
    model_.copying.copySettings();
    EXPECT_TRUE(clipboard_.data(std::string(SettingsClipboard::kType)));
    model_.selection.openFrame(roll()[0].id);
    EXPECT_TRUE(model_.copying.hasSettings());
    model_.copying.pasteSettings();
    EXPECT_EQ(roll()[0].process, roll()[3].process);
}

TEST_F(EditsTest, ABlockTouchesItsBlockAlone)
{
    open(8);
    model_.rack.change(ids({1}), [](ProcessSettings& settings) {
        settings.options.grade = 4;
        settings.options.push = 1;
        settings.paper = "bw_neutral";
    });
    const ProcessSettings before = *roll()[3].process;
    const std::string envelope = model_.copying.blockEnvelope(roll()[1].id, "PRINTING", {PresetBlock::print});
    ASSERT_TRUE(model_.copying.paste(envelope, ids({0, 3})));
    EXPECT_EQ(gradeOf(3), 4);
    EXPECT_EQ(roll()[3].process->paper, "bw_neutral");
    EXPECT_EQ(roll()[3].process->options.push, before.options.push);
    EXPECT_EQ(roll()[3].process->stock, before.stock);
    EXPECT_EQ(roll()[3].process->presetName, "The PRINTING block");
    EXPECT_EQ(roll()[0].process->stock, ProcessSettings::fresh().stock);
    model_.rack.resetBlock(ids({0, 3, 5}), "PRINTING", {PresetBlock::print});
    EXPECT_EQ(roll()[3].process->options.sheetCm, 30);
    EXPECT_TRUE(roll()[3].process->modified);
    EXPECT_FALSE(roll()[5].process) << "an original has no block";
}

TEST_F(EditsTest, ApplyingToAllAsksWhereOthersHaveTheirOwn)
{
    open(12);
    model_.spreading.applyToAll(roll()[0].id);
    model_.spreading.applyToAll(roll()[1].id);
    EXPECT_EQ(questions_.cancelled, 1u);
    EXPECT_EQ(steps(), 0u) << "an original has nothing to give, and no answer cancels";
    questions_.applyChoice = ApplyTo::onlyEmpty;
    model_.spreading.applyToAll(roll()[1].id);
    EXPECT_EQ(roll()[0].process, roll()[1].process);
    EXPECT_NE(roll()[2].process, roll()[1].process);
    questions_.applyChoice = ApplyTo::every;
    model_.spreading.applyToAll(roll()[1].id);
    for (const Frame& frame : roll()) EXPECT_EQ(frame.process, roll()[1].process);
    model_.undo();
    EXPECT_NE(roll()[2].process, roll()[1].process);
    model_.removal.remove(all(), true);
    EXPECT_EQ(roll().size(), 12u);
    EXPECT_EQ(questions_.cancelled, 2u);
}

TEST_F(EditsTest, AFilmBringsItsFormatsAndAWindowsCropFollows)
{
    ProcessSettings from = ProcessSettings::fresh(), to = from;
    to.stock = "collodion_wet";
    EXPECT_EQ(formatFittingStock(from, to, store_).options.format, FilmFormat::plate);
    to.stock = "portra400";
    from.options.format = to.options.format = FilmFormat::half;
    EXPECT_EQ(formatFittingStock(from, to, store_).options.format, FilmFormat::f135);
    EXPECT_EQ(formatFittingStock(from, to, store_).options.frameSize, "half");

    open(3);
    const auto setCrop = [&](Crop crop) {
        model_.amendProject([&](Project& project) {
            project.frames.edit(1).crop = crop;
            project.frames.edit(1).process = ProcessSettings::fresh();
        });
        model_.rack.change(ids({1}), [](ProcessSettings& settings) {
            settings.options.format = FilmFormat::f120;
            settings.options.frameSize = "6x6";
        });
        return *roll()[1].crop;
    };
    const Crop window{0.25, 0.25, 0.5, 0.5, 0}; // 3:2 of a 3:2 source, as a 135 frame
    const Crop square = setCrop(window);
    EXPECT_NEAR(square.w * 6000, square.h * 4000, 1);
    for (const Crop own : {Crop{0.25, 0.25, 0.5, 0.5, 2}, Crop{0.1, 0.1, 0.3, 0.8, 0}})
        EXPECT_EQ(setCrop(own), own) << "made by hand";

    // A knob also brings in one that leaves the picture; what is done to many frames does not.
    const Crop beyond{0.7, 0.1, 0.5, 0.3, 0};
    EXPECT_EQ(setCrop(beyond), beyond);
    model_.amendProject([&](Project& project) {
        project.frames.edit(1).crop = beyond;
        project.frames.edit(1).process = ProcessSettings::fresh();
        project.frames.edit(1).exportedAt = Date{1};
        project.frames.edit(2).exportedAt = Date{1};
    });
    EXPECT_TRUE(model_.editProject({"gate"}, [](Project& project) { project.cropGate = "none"; }));
    EXPECT_EQ(roll()[1].exportedAt, std::nullopt) << "a cropped frame looks different now";
    EXPECT_TRUE(roll()[2].crop || roll()[2].exportedAt);
    model_.undo();
    model_.selection.openFrame(roll()[1].id);
    ProcessSettings settings = model_.rack.rackSettings();
    settings.options.format = FilmFormat::f120;
    settings.options.frameSize = "6x6";
    model_.rack.setRackSettings(settings);
    EXPECT_LE(roll()[1].crop->x + roll()[1].crop->w, 1);
    EXPECT_NEAR(roll()[1].crop->w * 6000, roll()[1].crop->h * 4000, 1);
}

TEST_F(EditsTest, EveryKnobHasItsNameAndOneOptionOnly)
{
    std::set<std::string> keys;
    for (const OptionRow& row : optionTable()) {
        RenderOptions a, b;
        if (row.type == OptionType::number || row.type == OptionType::integer)
            row.read(b, 7, JsonPath{});
        else if (row.type == OptionType::boolean) {
            nlohmann::json value;
            row.write(a, value);
            row.read(b, value.is_boolean() ? !value.get<bool>() : true, JsonPath{});
        } else if (row.type == OptionType::text)
            row.read(b, row.allowed.empty() ? "x" : std::string(row.allowed.back()), JsonPath{});
        const auto diffs = knobDiffs(a, b);
        ASSERT_LE(diffs.size(), 1u) << row.key;
        if (diffs.empty()) continue;
        EXPECT_NE(diffs[0].name, "knob." + diffs[0].key);
        if (std::string(row.key) != "frame_size") {
            EXPECT_TRUE(keys.insert(diffs[0].key).second) << row.key;
        }
    }
    EXPECT_EQ(keys.size(), 78u);
}

TEST_F(EditsTest, DiscsOfASoftFocusLensHaveNames)
{
    ProcessSettings a, b;
    a.lens = b.lens = "imagon";
    b.options.glowMult = 0.6;
    b.options.glowRadiusMult = 0.8;
    EXPECT_EQ(changeOf(a, b, store_), (KnobChange{"disc", "H 9.5 disc"}));
    b.options.glowMult = 0.61;
    EXPECT_EQ(changeOf(a, b, store_).key, "glowMult");
    b = a;
    b.options.stop = 1;
    EXPECT_EQ(changeOf(a, b, store_).key, "stop") << "the disc is the same";
    b.lens = "petzval1900";
    EXPECT_EQ(changeOf(a, b, store_).key, "lens");
}

// Any run of edits comes back to the first bytes, and forward to the last.
TEST_F(EditsTest, UndoingEverythingGivesTheFirstBytes)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        open(random() % 12);
        const std::string first = model_.project().encoded();
        for (int i = 0; i < 60; ++i, loop_.advance(0.2)) {
            std::vector<FrameID> targets = all();
            std::ranges::shuffle(targets, random);
            targets.resize(targets.empty() ? 0 : 1 + random() % targets.size());
            const auto value = static_cast<double>(random() % 5);
            questions_.applyChoice = random() % 2 ? ApplyTo::every : ApplyTo::onlyEmpty;
            switch (random() % 9) {
            case 0:
                model_.marks.assign(targets, static_cast<Mark>(random() % 3));
                break;
            case 1:
                model_.turns.orient(targets, static_cast<OrientAction>(random() % 5));
                break;
            case 2:
                model_.rack.resetSettings(targets);
                break;
            case 3:
                if (targets.size() > 2) targets.resize(1);
                model_.removal.remove(targets, false);
                break;
            case 4:
                if (!targets.empty()) model_.spreading.applyToAll(targets.front());
                break;
            case 5:
                if (!targets.empty()) model_.selection.openFrame(targets.front());
                break;
            case 6: {
                ProcessSettings settings = model_.rack.rackSettings();
                settings.options.grade = value;
                model_.rack.setRackSettings(settings);
                break;
            }
            case 7:
                model_.undo();
                break;
            default:
                model_.rack.change(targets, grade(value));
            }
            const auto visible = model_.selection.visibleIDs();
            for (const FrameID& id : model_.selection.selected())
                ASSERT_NE(std::ranges::find(visible, id), visible.end());
            if (model_.selection.cursor()) {
                ASSERT_TRUE(model_.project().frame(*model_.selection.cursor()));
            }
        }
        while (model_.redo()) {}
        const std::string last = model_.project().encoded();
        while (model_.undo()) {}
        EXPECT_EQ(model_.project().encoded(), first) << seed;
        while (model_.redo()) {}
        EXPECT_EQ(model_.project().encoded(), last) << seed;
    }
}

} // namespace
} // namespace tamlo::test
