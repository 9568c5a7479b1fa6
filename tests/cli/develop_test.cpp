// tamlo develop from file to file, with good input and with everything that can be wrong with it.
#include "core/image/rgb_image.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <sstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSamples = TAMLO_SAMPLES;
const fs::path kPicture = kSamples / "color" / "fig-srgb.jpg";
const fs::path kRaw = kSamples / "raw" / "bayer-orientation6.dng";

class DevelopTest : public ::testing::Test {
protected:
    RunResult run(const std::vector<std::string>& arguments, RunSettings settings = {}) const
    {
        settings.folder = scratch_.path();
        std::vector<std::string> all{"develop"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return runTamlo(all, settings);
    }

    /// What must hold after a run that wrote nothing.
    void expectFailure(const RunResult& result, const std::string& says) const
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        ASSERT_EQ(result.messages().size(), 1u) << result.err;
        EXPECT_NE(result.messages()[0].find(says), std::string::npos) << result.err;
        EXPECT_TRUE(scratch_.listing().empty());
    }

    static Size sizeOf(const fs::path& file) { return ImageLoader::loadEncodedAsLinear(file).size(); }

    ScratchFolder scratch_;
    ScratchFolder sources_;
};

TEST_F(DevelopTest, WritesAndNamesTheFile)
{
    const RunResult result = run({kPicture.string(), "--long", "90"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "fig-srgb-tamlo.jpg\n");
    EXPECT_TRUE(result.messages().empty());
    EXPECT_EQ(scratch_.listing(), std::vector<std::string>{"fig-srgb-tamlo.jpg"});
    EXPECT_EQ(sizeOf(scratch_ / "fig-srgb-tamlo.jpg"), (Size{90, 61}));
}

TEST_F(DevelopTest, EveryFormatAndARawFile)
{
    for (const std::string name : {"b.JPG", "c.jpeg", "d.png", "deep/er/e.tif", "f.tiff"}) {
        SCOPED_TRACE(name);
        const RunResult result = run({kRaw.string(), "-o", name, "--long", "60"});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out, name + "\n");
        EXPECT_EQ(sizeOf(scratch_ / name), (Size{40, 60}));
    }
}

TEST_F(DevelopTest, SettingsReachThePicture)
{
    writeFile(sources_ / "o.json", R"({"printEv": 1, "seed": 7})");
    const std::vector<std::vector<std::string>> variants{
        {},
        {"--set", "print_ev=1", "seed=7"},
        {"--set", "print_ev=1", "mirror=true"},
        {"--options", (sources_ / "o.json").string(), "--set", "print_ev=0.5"},
        {"--film", "velvia50"},
        {"--paper", "color_scan"},
        {"--quality", "50"}};
    std::vector<std::string> files;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        std::vector<std::string> arguments{kPicture.string(), "--long", "48", "-o",
                                           std::to_string(i) + ".jpg"};
        arguments.insert(arguments.end(), variants[i].begin(), variants[i].end());
        const RunResult result = run(arguments);
        ASSERT_EQ(result.status, 0) << result.err;
        files.push_back(readFile(scratch_ / (std::to_string(i) + ".jpg")));
        for (std::size_t earlier = 0; earlier < i; ++earlier) EXPECT_TRUE(files[i] != files[earlier]) << i;
    }
    const RunResult again = run(
        {kPicture.string(), "--long", "48", "-o", "again.jpg", "--options", (sources_ / "o.json").string()});
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_TRUE(readFile(scratch_ / "again.jpg") == files[1]) << "the older spelling of a key, from a file";
}

TEST_F(DevelopTest, AFailedPictureDoesNotStopTheOthers)
{
    writeFile(sources_ / "bad.jpg", "no picture");
    const RunResult result = run({kPicture.string(), (sources_ / "bad.jpg").string(), kRaw.string(), "--long",
                                  "48", "--out-dir", "out"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "out/fig-srgb-tamlo.jpg\nout/bayer-orientation6-tamlo.jpg\n");
    ASSERT_FALSE(result.messages().empty());
    EXPECT_NE(result.messages().back().find("bad.jpg"), std::string::npos);
    EXPECT_TRUE(result.err.ends_with(result.messages().back() + "\n")); // named at the end
    EXPECT_EQ(scratch_.listing(), (std::vector<std::string>{"out", "out/bayer-orientation6-tamlo.jpg",
                                                            "out/fig-srgb-tamlo.jpg"}));
}

TEST_F(DevelopTest, BadPicturesGiveOneSentence)
{
    const auto cut = [&](const fs::path& sample, double share) {
        const std::string bytes = readFile(sample);
        return bytes.substr(0, static_cast<std::size_t>(static_cast<double>(bytes.size()) * share));
    };
    const std::vector<std::pair<std::string, std::string>> files{
        {"empty.jpg", ""},
        {"empty.dng", ""},
        {"text.png", "This is no picture.\n"},
        {"cut.png", cut(kSamples / "patterns" / "rgb8.png", 0.6)},
        {"cut.tif", cut(kSamples / "deep" / "creek-8bit.tif", 0.5)},
        {"cut.heic", cut(kSamples / "heic" / "dandelions-srgb.heic", 0.5)},
        {"cut.dng", cut(kRaw, 0.5)},
        {"head.jpg", cut(kPicture, 0.01)},
        {"cut.jpg", cut(kPicture, 0.5)},
        {"jpeg.nef", readFile(kPicture)},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        writeFile(sources_ / name, bytes);
        expectFailure(run({(sources_ / name).string(), "--long", "64"}), name);
    }
    expectFailure(run({(sources_ / "missing.jpg").string()}), "missing.jpg");
    fs::create_directory(sources_ / "folder.jpg");
    expectFailure(run({(sources_ / "folder.jpg").string()}), "there is no picture in the folder");
}

TEST_F(DevelopTest, AWrongExtensionOfAnEncodedPictureIsNoFault)
{
    fs::copy_file(kPicture, sources_ / "jpeg-inside.png");
    EXPECT_EQ(run({(sources_ / "jpeg-inside.png").string(), "--long", "48"}).status, 0);
}

TEST_F(DevelopTest, ThinPicturesComeThrough)
{
    for (const Size size : {Size{1, 1}, Size{30000, 1}, Size{1, 30000}}) {
        const std::string name = std::to_string(size.width) + "x" + std::to_string(size.height) + ".png";
        SCOPED_TRACE(name);
        ImageWriter::save(RGBImage(size.width, size.height, Vec3f{0.2f, 0.3f, 0.1f}),
                          (sources_ / name).string(), 95, std::nullopt);
        const RunResult result = run({(sources_ / name).string(), "--set", "master_cap=false", "-o", name});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(sizeOf(scratch_ / name), size);
    }
}

TEST_F(DevelopTest, BadOptionFilesGiveOneSentence)
{
    const std::vector<std::pair<std::string, std::string>> files{
        {"not json at all", "o.json"}, {"{\"grade\": 3", "o.json"},
        {"[1, 2]", "o.json"},          {"{\"grade\": \"hard\"}", "grade"},
        {"{\"crop\": 7}", "crop"},     {std::string("\0\xff\xfe", 3), "o.json"},
    };
    for (const auto& [text, says] : files) {
        SCOPED_TRACE(text);
        writeFile(sources_ / "o.json", text);
        expectFailure(run({kPicture.string(), "--options", (sources_ / "o.json").string()}), says);
    }
    expectFailure(run({kPicture.string(), "--options", (sources_ / "none.json").string()}), "none.json");
    expectFailure(run({kPicture.string(), "--options", sources_.path().string()}), "is a directory");
}

TEST_F(DevelopTest, BadProfilesGiveOneSentence)
{
    const std::vector<std::pair<std::string, std::string>> profiles{
        {"{", "Invalid profile"},
        {"{\"name\": \"No type\"}", "type"},
        {"{\"type\": 5}", "type"},
        {"{\"type\": \"color\", \"layers\": {\"r\": {}}}", "layers"},
    };
    RunSettings settings;
    settings.environment["TAMLO_PROFILES"] = sources_.path().string();
    fs::create_directories(sources_ / "films");
    for (const auto& [text, says] : profiles) {
        SCOPED_TRACE(text);
        writeFile(sources_ / "films" / "portra400.json", text);
        expectFailure(run({kPicture.string()}, settings), says);
    }
}

TEST_F(DevelopTest, AnOutputThatCannotBeWrittenLeavesNothing)
{
    writeFile(sources_ / "file", "");
    expectFailure(
        run({kPicture.string(), "--long", "64", "--out-dir", (sources_ / "file" / "deeper").string()}),
        "is not a folder");
    const RunResult tree = run({kPicture.string(), "--long", "64", "--out-dir", "no/such/tree"});
    EXPECT_EQ(tree.status, 2);
    EXPECT_NE(tree.err.find("the folder no/such/tree can't be made: there is no folder no/such"),
              std::string::npos);

    for (const char* name : {"full.jpg", "full.png", "full.tif"}) {
        SCOPED_TRACE(name);
        RunSettings full;
        full.fileSizeLimit = 4096; // far below the file, above what the program says
        expectFailure(run({kPicture.string(), "--long", "400", "-o", name}, full), name);
    }
}

TEST_F(DevelopTest, AFullDiskKeepsTheOlderFile)
{
    writeFile(scratch_ / "old.jpg", "an earlier picture");
    RunSettings full;
    full.fileSizeLimit = 4096;
    EXPECT_EQ(run({kPicture.string(), "--long", "400", "-o", "old.jpg"}, full).status, 1);
    EXPECT_EQ(scratch_.listing(), std::vector<std::string>{"old.jpg"});
    EXPECT_EQ(readFile(scratch_ / "old.jpg"), "an earlier picture");
}

TEST_F(DevelopTest, ARequestToEndLeavesNothing)
{
    RunSettings stop;
    stop.interruptAtPhase = "developing";
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        stop.signals = {signal};
        const RunResult result = run({kPicture.string(), kRaw.string(), "--out-dir", "out"}, stop);
        EXPECT_EQ(result.status, 130) << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(scratch_.listing().empty());
    }
    stop.signals = {SIGINT, SIGINT, SIGINT}; // two may arrive as one
    const int status = run({kPicture.string(), "--out-dir", "out"}, stop).status;
    EXPECT_TRUE(status == -SIGINT || status == 130) << status;
    EXPECT_TRUE(scratch_.listing().empty());
}

// A folder of a day's shots: its RAW and JPEG pairs both come out, what is no picture and earlier prints are
// passed over, and each picture has its line in one of three forms.
TEST_F(DevelopTest, TakesAFolderAndTellsOfEachPicture)
{
    fs::copy_file(kRaw, sources_ / "shot.dng");
    fs::copy_file(kPicture, sources_ / "shot.jpg");
    fs::copy_file(kSamples / "patterns" / "rgb8.png", sources_ / "10.png");
    fs::copy_file(kSamples / "patterns" / "rgb8.png", sources_ / "9.png");
    writeFile(sources_ / "notes.txt", "no picture");
    writeFile(sources_ / ".hidden.jpg", "no picture");
    const std::string folder = sources_.path().string();
    const RunResult first = run({folder, "--long", "32", "--out-dir", folder});
    ASSERT_EQ(first.status, 0) << first.err;
    const std::string names = folder + "/9-tamlo.jpg\n" + folder + "/10-tamlo.jpg\n" + folder +
                              "/shot-tamlo.jpg\n" + folder + "/shot-tamlo-jpg.jpg\n";
    EXPECT_EQ(first.out, names);
    EXPECT_EQ(std::count(first.err.begin(), first.err.end(), '\n'), 4) << first.err;
    EXPECT_NE(first.err.find("[2/4] developing 10.png\n"), std::string::npos);

    fs::remove(sources_ / "10-tamlo.jpg");
    writeFile(sources_ / "bad.jpg", "no picture");
    const RunResult second =
        run({folder, "--long", "32", "--out-dir", folder, "--skip-existing", "--json", "--quiet"});
    EXPECT_EQ(second.status, 1);
    std::vector<nlohmann::json> events;
    std::istringstream lines(second.out);
    for (std::string line; std::getline(lines, line);) events.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(events.size(), 6u) << second.out;
    const char* kinds[] = {"skipped", "frame", "failed", "skipped", "skipped", "done"};
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].at("event"), kinds[i]);
        EXPECT_EQ(events[i].at("total"), 5);
        EXPECT_GE(events[i].at("seconds").get<double>(), 0.0);
        if (i < 5) {
            EXPECT_EQ(events[i].at("n"), i + 1);
        }
    }
    EXPECT_EQ(events[1].at("file"), folder + "/10-tamlo.jpg");
    EXPECT_NE(events[2].at("error").get<std::string>().find("bad.jpg"), std::string::npos);
    EXPECT_EQ(events[5].at("n"), 1);
    EXPECT_EQ(second.messages().size(), 2u) << second.err; // how many failed, and why
    EXPECT_EQ(std::count(second.err.begin(), second.err.end(), '\n'), 2);
}

TEST_F(DevelopTest, NamesPicturesByAPatternAndStandardOutput)
{
    const auto named = [&](const std::string& pattern) {
        return run({kPicture.string(), "--long", "32", "--film", "Tri-X", "--name", pattern});
    };
    EXPECT_EQ(named("{stem}-{film}_{paper}.{ext}").out, "fig-srgb-trix400_bw_neutral.jpg\n");
    EXPECT_EQ(named("{folder}.{n}.{source}.png").out, "color.1.jpg.png\n");
    for (const auto& [pattern, says] : std::vector<std::pair<std::string, std::string>>{
             {"{flim}.jpg", "no field {flim}; there are {stem}"},
             {"{stem", "no field {stem"},
             {"../{stem}.jpg", "“../fig-srgb.jpg”, which is no name of a file in the folder"},
             {"a/{stem}.jpg", "no name of a file"},
             {"{stem}.webp", "use jpg/png/tif"}}) {
        const RunResult result = named(pattern);
        EXPECT_EQ(result.status, 2) << pattern;
        EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
    }
    EXPECT_EQ(scratch_.listing(),
              (std::vector<std::string>{"color.1.jpg.png", "fig-srgb-trix400_bw_neutral.jpg"}));

    const RunResult piped = run({kPicture.string(), "--long", "32", "--film", "Tri-X", "-o", "-"});
    EXPECT_EQ(piped.status, 0);
    EXPECT_TRUE(piped.out == readFile(scratch_ / "fig-srgb-trix400_bw_neutral.jpg"));
    EXPECT_EQ(run({kPicture.string(), kRaw.string(), "-o", "-"}).status, 2);
    EXPECT_EQ(run({kPicture.string(), "-o", "-", "--json"}).status, 2);
}

// --long is a side of what comes out, whatever a crop, a frame or a card takes away.
TEST_F(DevelopTest, TheLongSideIsThatOfTheFinishedPicture)
{
    struct Case {
        std::vector<std::string> arguments;
        Size size;
    };
    const Case cases[] = {{{}, {60, 41}},
                          {{"--crop", "0.25,0.25,0.5,0.5"}, {60, 41}},
                          {{"--crop", "0.1,0.1,0.2,0.8", "--rotate", "90"}, {60, 22}},
                          {{"--border", "0.2"}, {60, 46}},
                          {{"--format", "120", "--frame-size", "6x6"}, {60, 60}},
                          {{"--format", "120", "--frame-size", "6x7"}, {60, 48}},
                          {{"--format", "120", "--frame-size", "6x6", "--fit", "inside"}, {60, 41}},
                          {{"--frame-size", "xpan", "--fit", "crop"}, {60, 22}}};
    for (const Case& one : cases) {
        std::vector<std::string> arguments{kPicture.string(), "--long", "60", "-o", "out.png"};
        arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
        const RunResult result = run(arguments);
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(sizeOf(scratch_ / "out.png"), one.size) << one.arguments.back();
        EXPECT_EQ(result.err.find("wider"), std::string::npos);
    }
    const RunResult wide =
        run({kPicture.string(), "--long", "60", "-o", "out.png", "--format", "120", "--crop", "0,0.3,1,0.5"});
    EXPECT_NE(wide.err.find("mm of film, and a frame of 6x6 is 56 mm long"), std::string::npos) << wide.err;
}

// A table of stages on request: it books what ran, shares of one whole, and changes no byte of the picture.
TEST_F(DevelopTest, TellsWhereTheTimeGoes)
{
    ASSERT_EQ(run({kPicture, "-o", "plain.png"}).status, 0);
    RunSettings profiling;
    profiling.environment["TAMLO_PROFILE"] = "1";
    const RunResult profiled = run({kPicture, "-o", "profiled.png"}, profiling);
    ASSERT_EQ(profiled.status, 0);
    EXPECT_EQ(profiled.out, "profiled.png\n");
    EXPECT_TRUE(readFile(scratch_ / "plain.png") == readFile(scratch_ / "profiled.png"));

    double shares = 0.0;
    for (const char* stage :
         {"decoding", "lens", "halation", "curves", "adjacency", "grain", "print", "writing"}) {
        const std::size_t row = profiled.err.find(std::string("\n") + stage + " ");
        ASSERT_NE(row, std::string::npos) << stage << "\n" << profiled.err;
        const std::size_t percent = profiled.err.find('%', row);
        shares += std::stod(profiled.err.substr(profiled.err.rfind(' ', percent)));
    }
    EXPECT_GT(shares, 20.0);
    EXPECT_LT(shares, 101.0);
}

// The plan tells what the file will be, for pictures that lie on their side too.
TEST_F(DevelopTest, ThePlanIsTheSizeOfTheFile)
{
    const std::vector<fs::path> pictures{kPicture,
                                         kRaw,
                                         kSamples / "orientation" / "orientation-6.jpg",
                                         kSamples / "patterns" / "rgb8.png",
                                         kSamples / "deep" / "creek-8bit.tif",
                                         kSamples / "heic" / "dogs-rotated-irot.heic"};
    const std::vector<std::vector<std::string>> choices{
        {"--long", "70"},
        {"--long", "90", "--crop", "0.1,0.2,0.5,0.4,3", "--rotate", "90", "--mirror", "--border", "0.1"},
        {"--long", "120", "--scale", "0.5", "--format", "120", "--frame-size", "6x7", "--sheet-cm", "20",
         "--set", "mat=french", "table=linen"},
        {"--long", "80", "--film", "fp100c", "--print-cm", "12"}};
    RunSettings settings;
    settings.folder = scratch_.path();
    for (const fs::path& picture : pictures)
        for (const std::vector<std::string>& choice : choices) {
            SCOPED_TRACE(picture.string() + " " + choice.back());
            std::vector<std::string> developing{picture.string(), "-o", "out.png"};
            developing.insert(developing.end(), choice.begin(), choice.end());
            std::vector<std::string> planning{"plan", picture.string(), "--json"};
            planning.insert(planning.end(), choice.begin(), choice.end());

            const RunResult plan = runTamlo(planning, settings);
            ASSERT_EQ(plan.status, 0) << plan.err;
            for (const std::string& message : plan.messages())
                EXPECT_TRUE(message.starts_with("tamlo: note: "));
            ASSERT_EQ(run(developing).status, 0);
            const nlohmann::json one = nlohmann::json::parse(plan.out).at(0);
            EXPECT_EQ(sizeOf(scratch_ / "out.png"), (Size{one.at("width"), one.at("height")}));
        }
}

} // namespace
} // namespace tamlo::test
