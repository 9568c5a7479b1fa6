// The user's recipes and profiles through the session: what becomes of their files, of the history and of the
// frames that use them.
#include "tests/shell/session.h"

#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/json_value.h"

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

/// Answers when it is told to, and keeps what it was asked.
struct PatientQuestions : HeadlessQuestions {
    void idTaken(const QuestionText& text, bool mayReplace, Answer<PresetConflict> answer) override
    {
        note = text.note;
        replaceable = mayReplace;
        waiting.push_back(std::make_unique<Answer<PresetConflict>>(std::move(answer)));
    }
    void deleteProfile(const QuestionText& text, Answer<bool> answer) override
    {
        note = text.note;
        answer(true);
    }
    void give(PresetConflict choice)
    {
        const auto answer = std::move(waiting.front());
        waiting.erase(waiting.begin());
        (*answer)(choice);
    }
    std::string note;
    bool replaceable = false;
    std::vector<std::unique_ptr<Answer<PresetConflict>>> waiting;
};

class CatalogueTest : public SessionTest {
protected:
    CatalogueTest()
    {
        open(3);
        model_.selection.openFrame(roll()[1].id);
        turn(4.5);
    }
    void turn(double grade)
    {
        ProcessSettings to = model_.rack.rackSettings();
        to.options.grade = grade;
        model_.endGesture();
        model_.rack.setRackSettings(to);
    }
    fs::path presets() const { return userFolder_.path() / "presets"; }
    JSONValue fileOf(const std::string& id) const
    {
        return JSONValue::parse(UserFiles::read(presets() / (id + ".tpreset")));
    }
    bool isListed(const std::string& id) const
    {
        return std::ranges::any_of(model_.lists.all().presetInfos,
                                   [&](const PresetInfo& info) { return info.id == id; });
    }
    fs::path elsewhere(const std::string& name, const JSONValue& json) const
    {
        const fs::path file = userFolder_.path() / "out" / name;
        UserFiles::write(file, json.dump());
        return file;
    }
    /// A film of the user's own, in use by frame 1.
    void useOwnFilm()
    {
        store_.saveUserProfile(ProfileKind::films, "mine", store_.data(ProfileKind::films, "trix400"));
        model_.lists.rebuildLists();
        model_.rack.change(ids({1}), [](ProcessSettings& process) { process.stock = "mine"; });
    }

    PatientQuestions patient_;
    std::size_t before_ = 0;
};

TEST_F(CatalogueTest, APresetIsKeptBroughtUpToDateNamedCopiedAndThrownAway)
{
    const auto back = [&] {
        const std::string name = topName();
        EXPECT_TRUE(model_.undo());
        EXPECT_EQ(model_.status(), "Undone: " + name);
    };
    questions_.nameChoice = "  My Look.json ";
    model_.presetFiles.savePresetPanel();
    const std::string id = "my_look.json";
    EXPECT_EQ(model_.status(), "Preset saved: my_look.json.tpreset");
    EXPECT_EQ(topName(), "Save Preset “My Look.json”");
    EXPECT_EQ(fileOf(id).at("opts").at("grade"), 4.5);
    EXPECT_TRUE(isListed(id));
    back();
    EXPECT_FALSE(isListed(id));
    model_.redo();

    turn(2);
    JSONValue json = fileOf(id);
    json["opts"]["of_tomorrow"] = 7;
    json["notes"] = "mine";
    UserFiles::write(presets() / (id + ".tpreset"), json.dump());
    model_.presetFiles.updatePresetFromCurrent(id);
    EXPECT_EQ(topName(), "Update Preset “My Look.json”");
    EXPECT_FALSE(fileOf(id).at("opts").contains("grade")) << "the usual grade is not spoken of";
    EXPECT_EQ(fileOf(id).at("opts").at("of_tomorrow"), 7);
    EXPECT_EQ(fileOf(id).at("notes"), "mine");
    back();
    EXPECT_EQ(fileOf(id).at("opts").at("grade"), 4.5);

    questions_.nameChoice = "Other";
    model_.presetFiles.renamePresetPanel(id);
    EXPECT_EQ(model_.lists.presetTitled("Other")->id, id);
    const auto copy = model_.presetFiles.duplicatePreset(id);
    EXPECT_EQ(model_.lists.presetTitled("Other (copy)")->id, *copy);
    back();
    EXPECT_FALSE(isListed(*copy));

    model_.presetFiles.deletePreset(id);
    EXPECT_TRUE(isListed(id)) << "not without an answer";
    questions_.deleteFromCatalogue = true;
    model_.presetFiles.deletePreset(id);
    EXPECT_FALSE(isListed(id));
    EXPECT_EQ(model_.status(), "The preset “Other” has moved to the program's trash (Ctrl+Z brings it back)");
    fs::remove_all(userFolder_.path() / "trash"); // somebody empties it
    back();
    EXPECT_TRUE(isListed(id));

    const fs::path file = *model_.presetFiles.exportPreset(id, userFolder_.path());
    EXPECT_EQ(JSONValue::parse(UserFiles::read(file)), fileOf(id));
    model_.presetFiles.deletePreset("tintype");
    EXPECT_EQ(model_.status(), "The preset is hidden from the list");
    EXPECT_FALSE(isListed("tintype"));
    back();
    EXPECT_TRUE(isListed("tintype"));
}

TEST_F(CatalogueTest, AnUndoDestroysNothingAndTellsWhatItCouldNotDo)
{
    model_.presetFiles.savePreset("Look");
    const fs::path file = presets() / "look.tpreset";
    UserFiles::write(file, "{\"name\":\"of another program\"}");
    model_.undo();
    EXPECT_FALSE(fs::exists(file));
    std::size_t kept = 0;
    for (const auto& entry : fs::directory_iterator(userFolder_.path() / "trash" / "presets"))
        kept += UserFiles::read(entry.path()) == "{\"name\":\"of another program\"}";
    EXPECT_EQ(kept, 1u);

    fs::remove_all(presets());
    UserFiles::write(presets(), "a file where the folder was");
    EXPECT_TRUE(model_.redo());
    EXPECT_TRUE(model_.lastActionFailed());
    EXPECT_TRUE(model_.status().starts_with("Could not save the preset: ")) << model_.status();
    model_.presetFiles.savePreset("Another");
    EXPECT_TRUE(model_.lastActionFailed());
    EXPECT_EQ(topName(), "Save Preset “Look”") << "what failed is no step";
}

TEST_F(CatalogueTest, APresetWhoseNameIsTakenIsAskedAbout)
{
    model_.presetFiles.savePreset("Look");
    turn(1);
    model_.presetFiles.savePreset("Look");
    EXPECT_EQ(fileOf("look").at("opts").at("grade"), 4.5) << "nothing without an answer";
    questions_.conflictChoice = PresetConflict::copy;
    model_.presetFiles.savePreset("Look");
    EXPECT_EQ(fileOf("look_2").at("name"), "Look (2)");
    questions_.conflictChoice = PresetConflict::replace;
    model_.presetFiles.savePreset("Look");
    EXPECT_EQ(fileOf("look").at("opts").at("grade"), 1);
    model_.undo();
    EXPECT_EQ(fileOf("look").at("opts").at("grade"), 4.5);
}

TEST_F(CatalogueTest, ImportsAskOneAfterTheOtherAndAreOneStep)
{
    AppModel model{{loop_, store_, patient_, views_, clipboard_, volumes_, preferences_, &registry_, {}}};
    const auto files = [&] {
        JSONValue json = store_.presetDocument("tintype").json;
        std::vector<fs::path> out{elsewhere("tintype.tpreset", json)};
        json["id"] = "fresh";
        out.push_back(elsewhere("fresh.tpreset", json));
        json["id"] = "sinka";
        out.push_back(elsewhere("sinka.tpreset", json));
        json["opts"]["grade"] = "soft";
        out.push_back(elsewhere("broken.tpreset", json));
        return out;
    }();
    model.presetFiles.importPresets(files);
    EXPECT_TRUE(model.presetFiles.isImporting());
    EXPECT_FALSE(store_.presetEntry("fresh")) << "the first still asks";
    patient_.give(PresetConflict::copy);
    EXPECT_EQ(patient_.note,
              "A preset with the id “sinka” already exists. Replace it, add a copy, or cancel?");
    patient_.give(PresetConflict::cancel);
    EXPECT_FALSE(model.presetFiles.isImporting());
    EXPECT_EQ(model.status(), "Presets loaded: 2");
    ASSERT_EQ(model.presetFiles.notes().size(), 1u);
    EXPECT_TRUE(model.presetFiles.notes()[0].starts_with("broken.tpreset: ")) << model.presetFiles.notes()[0];
    EXPECT_TRUE(store_.presetEntry("tintype_2") && store_.presetEntry("fresh"));
    model.undo();
    EXPECT_FALSE(store_.presetEntry("tintype_2") || store_.presetEntry("fresh"));
    model.presetFiles.importPresets({files[3]});
    EXPECT_TRUE(model.lastActionFailed());
    model.presetFiles.importPresets({files[0]});
    EXPECT_TRUE(model.presetFiles.isImporting()); // and the session ends while it asks
}

TEST_F(CatalogueTest, AHalfBrokenPresetIsToldAndChangesNothing)
{
    UserFiles::write(presets() / "half.tpreset", "{\"format\":4,\"id\":\"half\",\"opts\":{\"grade\":");
    JSONValue json = store_.presetDocument("tintype").json;
    json["stock"] = "gone";
    UserFiles::write(presets() / "lost.tpreset", json.dump());
    model_.lists.refreshPresets();
    before_ = steps();
    for (const char* id : {"half", "lost", "nowhere"}) {
        model_.presets.applyPreset(id);
        EXPECT_TRUE(model_.lastActionFailed()) << id;
        EXPECT_FALSE(model_.status().empty());
        EXPECT_FALSE(isListed(id)) << id;
    }
    EXPECT_EQ(steps(), before_);
    model_.presets.applyPreset("tintype", {PresetBlock::film});
    EXPECT_EQ(model_.selection.currentProcess().stock, "collodion_wet");
    EXPECT_NE(model_.selection.currentProcess().paper, "ferrotype");
    EXPECT_TRUE(topName().starts_with("Apply Preset “Tintype”")) << topName();
    EXPECT_EQ(model_.lists.presetTitled(*model_.selection.currentProcess().presetName)->id, "tintype")
        << "a process remembers a name that is of no language";
    questions_.deleteFromCatalogue = true;
    model_.presetFiles.deletePreset("half");
    EXPECT_FALSE(store_.presetEntry("half")) << "it can be thrown away all the same";
}

TEST_F(CatalogueTest, AProfileThatGoesTakesNoEditWithIt)
{
    useOwnFilm();
    model_.presetFiles.savePreset("With mine");
    AppModel::FrameIDs one = ids({1});
    questions_.deleteFromCatalogue = true;
    EXPECT_EQ(model_.profileFiles.framesUsing(ProfileKind::films, "mine"), 1u);
    model_.profileFiles.deleteProfile(ProfileKind::films, "mine");
    EXPECT_EQ(model_.profileFiles.deletedProfiles().size(), 1u);
    EXPECT_EQ(roll()[1].process->stock, "mine");
    turn(3); // the knob still turns, and the history goes both ways
    EXPECT_EQ(roll()[1].process->options.grade, 3);
    model_.turns.orient(one, OrientAction::right);
    model_.cropping.setCrop(one[0], Crop{0.1, 0.1, 0.5, 0.5, 0});
    model_.copying.copySettings();
    model_.selection.step(1);
    model_.copying.pasteSettings();
    EXPECT_EQ(roll()[2].process->stock, "mine");
    model_.undoTo(0);
    model_.undoTo(99);
    EXPECT_EQ(roll()[2].process->stock, "mine");

    store_.saveUserProfile(ProfileKind::films, "mine", store_.data(ProfileKind::films, "hp5"));
    model_.profileFiles.restoreLastDeletedProfile();
    EXPECT_TRUE(store_.offers(ProfileKind::films, "mine_2")) << "the newer one stays";
    EXPECT_TRUE(model_.profileFiles.deletedProfiles().empty());
    model_.profileFiles.deleteProfile(ProfileKind::films, "portra400");
    EXPECT_TRUE(model_.lastActionFailed()) << "the program's own stay";
}

TEST_F(CatalogueTest, AProfileComesInUnderAFreeName)
{
    useOwnFilm();
    AppModel model{{loop_, store_, patient_, views_, clipboard_, volumes_, preferences_, &registry_, {}}};
    model.saver.adopt(model_.project());
    model_.presetFiles.savePreset("With mine");
    model.profileFiles.deleteProfile(ProfileKind::films, "mine");
    EXPECT_TRUE(patient_.note.starts_with("1 frame of the roll is printed with it")) << patient_.note;
    EXPECT_NE(patient_.note.find("with_mine"), std::string::npos) << patient_.note;
    model.profileFiles.restoreLastDeletedProfile();

    const JSONValue film = JSONValue::parse(store_.data(ProfileKind::films, "hp5"));
    const fs::path builtin = elsewhere("trix400.tprofile", film), mine = elsewhere("mine.tprofile", film);
    model.profileFiles.importProfile(builtin);
    EXPECT_FALSE(patient_.replaceable);
    patient_.give(PresetConflict::copy);
    EXPECT_TRUE(store_.offers(ProfileKind::films, "trix400_2"));
    model.profileFiles.importProfile(mine);
    EXPECT_TRUE(patient_.replaceable);
    patient_.give(PresetConflict::replace);
    EXPECT_EQ(model.profileFiles.deletedProfiles().size(), 1u) << "what was replaced can be brought back";
    JSONValue bad = film;
    bad["type"] = "soup";
    bad.erase("grain");
    const std::string status = model.status();
    model.profileFiles.importProfile(elsewhere("bad.tprofile", bad));
    EXPECT_FALSE(model.profileFiles.messages().empty());
    EXPECT_TRUE(model.lastActionFailed());
    EXPECT_EQ(model.profileFiles.duplicateProfile(ProfileKind::papers, "bw_neutral"), "bw_neutral_copy");
}

} // namespace
} // namespace tamlo::test
