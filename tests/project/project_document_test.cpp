#include "app/project/file_url.h"
#include "app/project/project_json.h"
#include "core/image/random.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/decode_error.h"
#include "core/text/loc.h"
#include "tests/support/json_mutator.h"
#include "tests/support/rolls.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tamlo::test {
namespace {

using Json = nlohmann::json;

class ProjectDocumentTest : public testing::Test {
protected:
    ProjectDocumentTest() { Loc::setOverride(Loc::Lang::en); }
    ~ProjectDocumentTest() override { Loc::setOverride(std::nullopt); }

    Project decoded(const Json& json) const { return Project::decode(json.dump(), store_); }
    Project decoded(const std::string& text) const { return Project::decode(text, store_); }
    std::string faultOf(const Json& json) const
    {
        try {
            decoded(json);
        } catch (const DecodeError& error) {
            return error.path();
        }
        return "none";
    }
    /// The smallest frame there is.
    static Json bare(const std::string& name = "a.nef")
    {
        return {{"url", "file:///p/" + name}, {"mark", "none"}, {"orient", Json::object()}};
    }
    static Json withFrame(Json frame) { return {{"frames", {std::move(frame)}}}; }
    static Json process(const Json& options = Json::object()) { return {{"options", options}}; }

    ProfileStore store_;
};

TEST_F(ProjectDocumentTest, WhatIsWrittenIsReadAgain)
{
    Project project = rollOf(60);
    project.filter = GridFilter::hideRejected;
    project.sortMode = SortMode::manual;
    project.lastExportSet = ExportSet::notRejected;
    project.cropGate = "none";
    const std::string text = project.encoded();
    EXPECT_EQ(decoded(text), project);
    EXPECT_EQ(decoded(text).encoded(), text) << "an idle project's bytes stay the same";
    const Json json = Json::parse(text);
    EXPECT_EQ(json["frames"][0]["url"], "file:///photos/%D0%A0%D0%BE%D0%BB%D0%BB%200/IMG_1000.NEF");
    EXPECT_FALSE(json["frames"][0].contains("process")) << "an original has no process";
    EXPECT_FALSE(json["frames"][1].contains("crop")) << "an absent value writes no key";
    EXPECT_EQ(json["frames"][7]["shot"], Json::object()) << "read, and nothing was found";
    EXPECT_EQ(json["frames"][0]["fingerprint"]["hash"].dump(), "17241709254077376921");
    EXPECT_EQ(text.find("\\/"), std::string::npos);
}

TEST_F(ProjectDocumentTest, AFrameKeepsTheBytesOfItsPath)
{
    const std::string paths[] = {"/a b/ü%20#?.nef", "/not\xFF\xFEutf8", "/line\nfeed", "/-o", "/x;y&z=1"};
    for (const std::string& path : paths) {
        Project project;
        Frame frame = frameNumber(0);
        frame.url = path;
        project.frames.append(frame);
        EXPECT_EQ(decoded(project.encoded()).frames[0].url, path);
    }
    for (const char* no :
         {"http://a/b", "file:", "file://other/a", "file:///%zz", "file:///a%0", "/plain", "file:///a%00b"})
        EXPECT_FALSE(pathOfFileURL(no)) << no;
    EXPECT_EQ(pathOfFileURL("file://localhost/a%2Fb"), "/a/b");
}

TEST_F(ProjectDocumentTest, AbsentAndUnknownValuesFallBack)
{
    const Project project = decoded(Json{{"filter", "newer"}, {"sortMode", "newer"}, {"lastExportSet", "x"}});
    EXPECT_EQ(project, Project::untitled());
    EXPECT_EQ(project.name, "Untitled");
    Json frame = bare();
    frame["mark"] = "starred";
    frame["orient"] = {{"rot", -1}, {"unknown", 1}};
    const Frame read = decoded(withFrame(frame)).frames[0];
    EXPECT_EQ(read.mark, Mark::none);
    EXPECT_EQ(read.orient, (Orient{3, false}));
    EXPECT_EQ(read.seed, FrameSeed::crc32("a.nef")) << "another id at each reading, the same grain";
    frame["id"] = "e621e1f8-c36c-495a-93fc-0c247a3e6e5f";
    const Frame named = decoded(withFrame(frame)).frames[0];
    EXPECT_EQ(named.id.text(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    EXPECT_EQ(named.seed, std::nullopt);
    EXPECT_EQ(named.effectiveSeed(), FrameSeed::crc32("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"));
    const Project twins = decoded(Json{{"frames", {frame, frame}}});
    EXPECT_NE(twins.frames[0].id, twins.frames[1].id);
    EXPECT_EQ(decoded(Json{{"crop_gate", "half"}}).cropGate, "full");
    EXPECT_EQ(decoded(Json{{"crop_gate", "none"}}).cropGate, "none");
}

TEST_F(ProjectDocumentTest, AWrongKindOfValueIsNamed)
{
    struct Case {
        Json patch;
        const char* path;
    };
    const Case cases[] = {{{{"url", "http://x"}}, "frames[0].url"},
                          {{{"url", nullptr}}, "frames[0].url"},
                          {{{"mark", 3}}, "frames[0].mark"},
                          {{{"orient", nullptr}}, "frames[0].orient"},
                          {{{"id", "x"}}, "frames[0].id"},
                          {{{"seed", -1}}, "frames[0].seed"},
                          {{{"seed", 4294967296}}, "frames[0].seed"},
                          {{{"fingerprint", {{"size", 1}, {"hash", 1e19}}}}, "frames[0].fingerprint.hash"},
                          {{{"process", process({{"grade", "3"}})}}, "frames[0].process.options.grade"},
                          {{{"process", {{"presetName", 1}}}}, "frames[0].process.presetName"},
                          {{{"crop", {{"x", 0}}}}, "frames[0].crop.y"}};
    for (const Case& c : cases) {
        Json frame = bare();
        frame.update(c.patch);
        EXPECT_EQ(faultOf(withFrame(frame)), c.path);
    }
    EXPECT_EQ(faultOf(Json{{"frames", 1}}), "frames");
    EXPECT_EQ(faultOf(Json::array()), "");
}

TEST_F(ProjectDocumentTest, OptionsComeBackAsTheyWere)
{
    Json frame = bare();
    frame["process"] = Json::object();
    ProcessSettings early = ProcessSettings::fresh();
    early.options.srcLights = 0; // made before a display picture had lights
    EXPECT_EQ(*decoded(withFrame(frame)).frames[0].process, early);
    frame["process"] =
        process({{"printCm", 20}, {"rotate", 90}, {"crop", {{"x", 0}, {"y", 0}, {"w", 1}, {"h", 1}}}});
    frame["process"]["socialCrop45"] = true;
    ProcessSettings expected;
    expected.options.printCm = 20;
    expected.socialCrop45 = true;
    EXPECT_EQ(*decoded(withFrame(frame)).frames[0].process, expected)
        << "a missing sheet size is none, and geometry is the frame's";
    Project project = rollOf(2);
    ProcessSettings odd = expected;
    odd.options.format.reset();
    odd.options.sheetCm.reset();
    odd.options.grade = 99;
    project.frames.edit(0).process = odd;
    EXPECT_EQ(*decoded(project.encoded()).frames[0].process, odd) << "out of range, and absent on purpose";
}

TEST_F(ProjectDocumentTest, OlderFilesGiveEachFrameItsProcess)
{
    const std::string ids[] = {Uuid::random().text(), Uuid::random().text(), Uuid::random().text()};
    Json frames = Json::array();
    for (const std::string& id : ids) {
        frames.push_back(bare());
        frames.back()["id"] = id;
    }
    frames[0]["process"] = {{"stock", "own"}};
    std::string lower = ids[1];
    for (char& c : lower) c = static_cast<char>(std::tolower(c));
    const Json prints = {{{"frameID", ids[0]}, {"process", {{"stock", "print"}}}, {"exportedAt", 1}},
                         {{"frameID", lower}, {"process", {{"stock", "print"}}}, {"exportedName", "b.jpg"}},
                         {{"frameID", ids[1]}, {"process", {{"stock", "second"}}}},
                         {{"frameID", ids[2]}, {"exportedAt", 5}}};
    const Json json{
        {"frames", frames}, {"prints", prints}, {"process", {{"stock", "roll"}}}, {"wbMode", "asshot"}};
    const Project project = decoded(json);
    EXPECT_EQ(project.frames[0].process->stock, "own");
    EXPECT_EQ(project.frames[0].exportedAt, std::nullopt);
    EXPECT_EQ(project.frames[1].process->stock, "print");
    EXPECT_EQ(project.frames[1].exportedName, "b.jpg");
    EXPECT_EQ(project.frames[2].process->stock, "roll");
    EXPECT_EQ(project.frames[2].exportedAt, std::nullopt) << "a print without a process gives nothing";
    for (const Frame& frame : project.frames) EXPECT_EQ(frame.process->options.wbMode, "asshot");
    const Json again = Json::parse(project.encoded());
    for (const char* key : {"prints", "process", "wbMode"}) EXPECT_FALSE(again.contains(key)) << key;
    EXPECT_EQ(decoded(again), project);
    EXPECT_FALSE(decoded(Json{{"frames", {bare()}}, {"wbMode", "asshot"}}).frames[0].process);
}

TEST_F(ProjectDocumentTest, AScreensSizeBecomesCloseness)
{
    struct Case {
        double sizeIn, zoomBefore, zoomAfter;
        bool gone;
    };
    const Case cases[] = {{2, 1, 10, true},   {30, 1, 1, true}, {10.5, 1, 2, true},
                          {10.5, 3, 3, true}, {0, 1, 1, false}, {-1, 1, 1, false}};
    for (const Case& c : cases) {
        Json frame = bare();
        frame["process"] = process({{"crt_size_in", c.sizeIn}, {"crt_zoom", c.zoomBefore}});
        frame["process"]["paper"] = "color_scan"; // without a tube: 21 inches count
        const ProcessSettings read = *decoded(withFrame(frame)).frames[0].process;
        EXPECT_EQ(read.options.crtZoom, c.zoomAfter) << c.sizeIn;
        EXPECT_EQ(!read.options.crtSizeIn, c.gone) << c.sizeIn;
    }
}

TEST_F(ProjectDocumentTest, SetsOfFramesFollowTheMarks)
{
    Project project = rollOf(9); // marks none, selected, rejected, thrice
    EXPECT_EQ(project.count(ExportSet::selected), 3u);
    EXPECT_EQ(project.exportFrames(ExportSet::notRejected).size(), 6u);
    EXPECT_EQ(project.counts().rejected, 3u);
    EXPECT_EQ(project.framesWithoutProcess(), 2u);
    project.filter = GridFilter::hideRejected;
    EXPECT_EQ(project.visibleFrames().size(), 6u);
    EXPECT_EQ(project.visibleFrames()[2]->id, project.frames[3].id);
    EXPECT_EQ(project.label(project.frames[8].id), "09");
    EXPECT_EQ(Project::label(std::size_t{99}), "100");
    EXPECT_EQ(project.label(Uuid()), "");
}

TEST_F(ProjectDocumentTest, ACopyIsUntouchedByEdits)
{
    Project project = rollOf(5);
    const Project before = project;
    const FrameRef shared = before.frames.ref(1);
    project.frames.edit(2).mark = Mark::none;
    EXPECT_EQ(project.frames.ref(1), shared) << "frames are shared until changed";
    EXPECT_NE(project, before);
    EXPECT_EQ(before.frames[2].mark, Mark::rejected);
    project.frames.arrange({4, 0});
    EXPECT_EQ(project.frames.size(), 2u);
    EXPECT_EQ(project.frames[0].id, before.frames[4].id);
}

TEST_F(ProjectDocumentTest, EveryKeyStandsInTheDescriptionOfTheFormat)
{
    std::ifstream file(TAMLO_PROJECT_FORMAT);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::vector<FieldDoc> fields;
    describeFields<Project>("", fields);
    describeFields<Frame>("", fields);
    EXPECT_GT(fields.size(), 40u);
    for (const FieldDoc& field : fields) {
        const std::string key = field.path.substr(field.path.rfind('.') + 1);
        EXPECT_NE(text.find('`' + key + '`'), std::string::npos) << field.path;
    }
}

// TAMLO_MUTATIONS sets how many damaged documents are tried, TAMLO_MUTATION_SEED where they begin.
TEST_F(ProjectDocumentTest, DamagedDocumentsAreReadOrRefused)
{
    const auto setting = [](const char* name, std::uint64_t usual) {
        const char* text = std::getenv(name);
        return text ? std::strtoull(text, nullptr, 10) : usual;
    };
    const Json legacy{{"frames", {bare()}},
                      {"process", process({{"crtSizeIn", 3}})},
                      {"wbMode", "asshot"},
                      {"prints", Json::array()}};
    const std::vector<std::string> corpus{rollOf(2).encoded(), rollOf(5).encoded(), legacy.dump()};
    const std::uint64_t first = setting("TAMLO_MUTATION_SEED", 1), count = setting("TAMLO_MUTATIONS", 1000);
    std::uint64_t passed = 0;
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        const std::string text = JsonMutator(seed, corpus).next();
        try {
            const Project project = decoded(text);
            EXPECT_EQ(decoded(project.encoded()), project) << "case " << seed;
            ++passed;
        } catch (const DecodeError& error) {
            EXPECT_STRNE(error.what(), "");
        } catch (const std::exception& error) {
            ADD_FAILURE() << "case " << seed << ": " << error.what();
        }
    }
    EXPECT_GT(passed, count / 10);
}

} // namespace
} // namespace tamlo::test
