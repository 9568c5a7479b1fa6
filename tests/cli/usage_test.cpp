// The command line itself: what it refuses before any picture is opened, what list and show answer, and the
// language in which it says so.
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kPicture = fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg";

/// The tests of this program read English, whatever locale and preferences the one who starts them has.
class NoLocale : public ::testing::Environment {
public:
    void SetUp() override
    {
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) unsetenv(name);
        setenv("TAMLO_USER_DIR", userRoot_.path().c_str(), 1);
    }

private:
    ScratchFolder userRoot_;
};
[[maybe_unused]] const ::testing::Environment* const kNoLocale =
    ::testing::AddGlobalTestEnvironment(new NoLocale);

/// Letters of U+0400 to U+047F.
bool hasCyrillic(const std::string& text)
{
    return text.find_first_of("\xD0\xD1") != std::string::npos;
}

/// A folder with a picture under several names and links.
class UsageTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"a.jpg", "sub/a.jpg", "a-tamlo.jpg"}) {
            fs::create_directories((scratch_ / name).parent_path());
            fs::copy_file(kPicture, scratch_ / name);
        }
        fs::create_symlink("a.jpg", scratch_ / "soft.jpg");
        fs::create_hard_link(scratch_ / "a.jpg", scratch_ / "hard.jpg");
        fs::create_directory_symlink("sub", scratch_ / "linked");
        fs::create_directory(scratch_ / "folder.jpg");
        before_ = scratch_.listing();
        bytes_ = readFile(scratch_ / "a.jpg");
    }

    RunResult run(const std::vector<std::string>& arguments, RunSettings settings = {}) const
    {
        settings.folder = scratch_.path();
        return runTamlo(arguments, settings);
    }

    RunResult runWithLocale(const std::string& locale, std::vector<std::string> arguments,
                            const std::vector<std::string>& more = {}) const
    {
        RunSettings settings;
        settings.environment["LANG"] = locale;
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments, settings);
    }

    ScratchFolder scratch_;
    std::vector<std::string> before_;
    std::string bytes_;
};

struct Refusal {
    std::vector<std::string> arguments;
    std::string says;
};

TEST_F(UsageTest, RefusesInOneSentenceAndTouchesNothing)
{
    const std::vector<Refusal> refusals{
        {{}, "a command is wanted"},
        {{"devlop", "a.jpg"}, "devlop"},
        {{"develop"}, "INPUT"},
        {{"develop", "a.jpg", "--grain"}, "--grain"},
        {{"develop", "a.jpg", "--quality", "0"}, "--quality"},
        {{"develop", "a.jpg", "--quality", "high"}, "--quality"},
        {{"develop", "a.jpg", "--long", "0"}, "--long"},
        {{"develop", "a.jpg", "--scale", "2"}, "--scale"},
        {{"develop", "a.jpg", "--rotate", "45"}, "--rotate 45"},
        {{"develop", "a.jpg", "--crop", "0,0,1"}, "--crop 0,0,1"},
        {{"plan", "a.jpg", "--border", "0.9"}, "--border 0.9"},
        {{"plan", "a.jpg", "--frame-size", "6x99"}, "6x9"},
        {{"plan"}, "INPUT"},
        {{"develop", "a.jpg", "--seed", "x"}, "--seed"},
        {{"develop", "a.jpg", "--film", "portra40"}, "did you mean portra400?"},
        {{"develop", "a.jpg", "--film", "../films/portra400"}, "there is no film"},
        {{"develop", "a.jpg", "--lens", "modernclaen"}, "did you mean modern_clean?"},
        {{"develop", "a.jpg", "--paper", "color_ra5"}, "did you mean color_ra4?"},
        {{"develop", "a.jpg", "--filter-cut", "red_92"}, "no filter “red_92”; did you mean red_29?"},
        {{"develop", "a.jpg", "--filter-diffusion", "promist_2"}, "did you mean promist_1?"},
        {{"develop", "a.jpg", "--filter-rays", "star_7"}, "did you mean star_"},
        {{"develop", "a.jpg", "--filter-grad", "grad_nd2_sot"}, "did you mean grad_nd2_soft?"},
        {{"develop", "a.jpg", "--set", "filter_rays=star_7"}, "did you mean star_"},
        {{"develop", "a.jpg", "--set", "filter=../filters/red_29"}, "there is no filter"},
        {{"develop", "a.jpg", "--filter-rays"}, "--filter-rays"},
        {{"develop", "a.jpg", "--filter-cut", "star_6"}, "it goes into filter_rays, not into filter_cut"},
        {{"develop", "a.jpg", "--set", "filter=grad_nd2_soft"}, "it goes into filter_grad, not into filter"},
        {{"develop", "a.jpg", "--lens", "portra400"}, "it is the name of a film"},
        {{"develop", "a.jpg", "--film", "Delta"}, "can be delta100, delta3200 or delta400; say which"},
        {{"develop", "a.jpg", "--film", "-"}, "there is no film"},
        {{"develop", "a.jpg", "--iso", "fast"}, "iso takes a film speed"},
        {{"develop", "a.jpg", "--iso", "0"}, "iso takes a film speed"},
        {{"develop", "a.jpg", "--film", "digital_negative", "--iso", "100"}, "has no speed of its own"},
        {{"develop", "a.jpg", "--exposure", "1/0"}, "number"},
        {{"develop", "a.jpg", "--set", "ev=1/2/3"}, "number"},
        {{"develop", "a.jpg", "--set", "ev=0,5,1"}, "number"},
        {{"develop", "a.jpg", "--set", "contrast=9"}, "from 0 to 5"},
        {{"develop", "a.jpg", "--set", "border"}, "key=value"},
        {{"develop", "a.jpg", "--set", "grad=1"}, "grade"},
        {{"develop", "a.jpg", "--set", "grade=soft"}, "number"},
        {{"develop", "a.jpg", "--set", "wb_mode=shot"}, "asshot"},
        {{"develop", "a.jpg", "--set", "mirror=true", "grade=soft"}, "number"},
        {{"develop", "a.jpg", "-o", "b.webp"}, "output extension .webp (use jpg/png/tif)"},
        {{"develop", "a.jpg", "-o", "b"}, "use jpg/png/tif"},
        {{"develop", "a.jpg", "-o", "folder.jpg"}, "is a folder"},
        {{"develop", "a.jpg", "sub/a.jpg", "-o", "b.jpg"}, "--out-dir"},
        {{"develop", "a.jpg", "-o", "b.jpg", "--out-dir", "d"}, "--out-dir"},
        {{"develop", "a.jpg", "sub/a.jpg"}, "both a.jpg and sub/a.jpg"},
        {{"develop", "a.jpg", "a.jpg", "--out-dir", "d"}, "both a.jpg and a.jpg"},
        {{"develop", "a.jpg", "-o", "a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "-o", "sub/../a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "-o", "soft.jpg"}, "is a source"},
        {{"develop", "soft.jpg", "-o", "a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "-o", "hard.jpg"}, "is a source"},
        {{"develop", "sub/a.jpg", "-o", "linked/a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "a-tamlo.jpg"}, "would be written over a-tamlo.jpg"},
        {{"list"}, "KIND"},
        {{"list", "moons"}, "films, lenses, papers, filters, presets and options"},
        {{"show", "film"}, "ID"},
        {{"show", "film", "portra4000"}, "did you mean portra400?"},
        {{"develop", "a.jpg", "--long", "0"}, "--long must be from 1 to 100000, not “0”"},
        {{"develop", "a.jpg", "--fit", "out"}, "--fit must be one of crop, inside, not “out”"},
        {{"develop", "a.jpg", "--seed", "x"}, "--seed takes a number, not “x”"},
        {{"develop", "a.jpg", "--sede", "1"}, "what should this be: --sede"},
        {{"help", "grde"}, "no command and no option “grde”; did you mean grade?"},
        {{"help", "develp"}, "did you mean develop?"},
        {{"completion", "tcsh"}, "bash, zsh and fish"},
    };
    for (const Refusal& refusal : refusals) {
        std::string line;
        for (const std::string& argument : refusal.arguments) line += argument + " ";
        SCOPED_TRACE(line);
        const RunResult result = run(refusal.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(refusal.says), std::string::npos) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
    EXPECT_EQ(scratch_.listing(), before_);
    EXPECT_EQ(readFile(scratch_ / "a.jpg"), bytes_);
}

TEST_F(UsageTest, HelpAndVersionAreResults)
{
    const std::vector<Refusal> answers{
        {{"--help"}, "develop"}, {{"develop", "--help"}, "--out-dir"}, {{"--version"}, "tamlo "}};
    for (const Refusal& answer : answers) {
        const RunResult result = run(answer.arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.out.find(answer.says), std::string::npos) << result.out;
        EXPECT_EQ(result.err, "");
    }
}

// What a photographer types means what the ids and keys mean: the same plan, and the same options behind it.
TEST_F(UsageTest, TakesNamesSynonymsAndNumbersAsPeopleWriteThem)
{
    const auto picture = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"develop", "a.jpg", "--long", "40", "-o", "out.png"});
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return readFile(scratch_ / "out.png");
    };
    const std::vector<std::vector<std::vector<std::string>>> alike{
        {{"--film", "trix400"}, {"--film", "Tri-X"}, {"--film", "tri-x 400"}, {"--film", "KODAK TRI-X"}},
        {{"--film", "agfacolor_b2"}, {"--film", "Agfacolor B2 (1940-е)"}, {"--film", "agfacolor b2 (1940S)"}},
        {{"--preset", "kodachrome_rain"}, {"--preset", "Kodachrome Rain"}},
        {{"--filter-cut", "red_29"}, {"--filter-cut", "Red #29"}, {"--set", "filter_cut=Красный #29"}},
        {{"--set", "ev=0.5", "grade=3"},
         {"--set", "exposure=0,5", "contrast=3"},
         {"--exposure", "+1/2", "--contrast", "3.0"},
         {"--set", "ev=½", "grade=2 2/2"},
         {"--set", "filter-cut-amount=1", "ev=+0.5", "grade=3"}},
        {{"--set", "ev=-1"}, {"--iso", "800"}, {"--set", "iso=800"}, {"--set", "ev=−1"}},
    };
    for (const auto& forms : alike) {
        const std::string first = picture(forms.front());
        for (const auto& form : forms) EXPECT_TRUE(picture(form) == first) << form.back();
    }
    const RunResult guessed = run({"plan", "a.jpg", "--film", "Portra"});
    EXPECT_EQ(guessed.status, 0);
    EXPECT_NE(guessed.err.find("taken as portra400; it could also be portra160 or portra800"),
              std::string::npos);
    EXPECT_EQ(run({"show", "film", "HP5"}).out, run({"show", "film", "hp5"}).out);
}

// One note for each thing that was asked for and can't be done, and none for what can.
TEST_F(UsageTest, NotesWhatCannotAct)
{
    writeFile(scratch_ / "o.json",
              R"({"grian_mult": 2, "filter_cut": "star_6", "redscale": true, "grade": 2})");
    struct Case {
        std::vector<std::string> arguments;
        std::vector<std::string> notes; ///< how each begins, or what it holds
    };
    const Case cases[] = {
        {{"--film", "fp4", "--set", "redscale=true"}, {"redscale has no effect here: Ilford FP4 Plus"}},
        {{"--film", "cinestill800t"}, {"balanced for 3200 K"}},
        {{"--film", "cinestill800t", "--set", "wb_mode=custom"}, {}},
        {{"--film", "cinestill800t", "--set", "wb_temp=108"}, {}},
        {{"--preset", "neon_800t"}, {}},
        {{"--film", "hp5", "--set", "dev=bleach_bypass", "ev=1"},
         {"dev has no effect here: Ilford HP5 Plus"}},
        {{"--frame-size", "6x7"}, {"the format 135 has no frame of 6x7, it is one of 120"}},
        {{"--crop", "0.5,0.5,0.7,0.4"}, {"the crop reaches past the edge of a.jpg; it ends there"}},
        {{"--crop", "0,0,1,1,5"}, {"the tilted crop reaches past the edge of a.jpg"}},
        {{"--set", "src_exposure=shadows"}, {"only camera RAW files have it, and a.jpg is none"}},
        {{"--options", "o.json", "--film", "fp4"},
         {"no option “grian_mult”, it is passed over; the nearest is “grain_mult”",
          "“star_6” is a star or streak", "redscale has no effect"}},
        {{"--film", "velvia50", "--paper", "projector", "--contrast", "3", "--set", "print_ev=1"},
         {"print_ev has no effect here", "grade has no effect here"}},
        {{"--set", "redscale=true", "grade=3", "border=0.1", "sheet_cm=30"}, {}},
        {{"--set", "rays_angle=0", "mat=none", "blind_stamp=false"}, {}},
    };
    for (const Case& one : cases) {
        std::vector<std::string> arguments{"plan", "a.jpg"};
        arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
        const RunResult result = run(arguments);
        SCOPED_TRACE(result.err);
        EXPECT_EQ(result.status, 0);
        const std::vector<std::string> messages = result.messages();
        ASSERT_EQ(messages.size(), one.notes.size());
        for (const std::string& note : one.notes)
            EXPECT_TRUE(std::ranges::any_of(messages, [&](const std::string& message) {
                return message.starts_with("tamlo: note: ") && message.find(note) != std::string::npos;
            })) << note;
    }
}

TEST_F(UsageTest, ListsEveryKindAndShowsEveryProfile)
{
    for (const std::string kind : {"films", "lenses", "papers", "filters"}) {
        SCOPED_TRACE(kind);
        const RunResult plain = run({"list", kind});
        const RunResult json = run({"list", kind, "--json"});
        EXPECT_EQ(plain.status, 0);
        EXPECT_EQ(json.status, 0);
        const nlohmann::json list = nlohmann::json::parse(json.out);
        EXPECT_EQ(std::count(plain.out.begin(), plain.out.end(), '\n'),
                  static_cast<std::ptrdiff_t>(list.size()));
        ASSERT_FALSE(list.empty());
        for (const nlohmann::json& entry : list) {
            const std::string id = entry.at("id");
            EXPECT_NE(plain.out.find(id), std::string::npos);
            const RunResult shown = run({"show", kind, id});
            EXPECT_EQ(shown.status, 0);
            EXPECT_TRUE(nlohmann::json::parse(shown.out).is_object()) << id;
        }
    }
}

// The option table in words: every option stands in the list, in help of its own and in the manual, in both
// languages.
TEST_F(UsageTest, TellsOfEveryOption)
{
    const nlohmann::json options = nlohmann::json::parse(run({"list", "options", "--json"}).out);
    ASSERT_EQ(options.size(), 97u);
    const std::string keys = run({"list", "options", "--ids"}).out;
    const std::string english = run({"list", "options"}).out,
                      russian = run({"list", "options", "--lang", "ru"}).out;
    const std::string manual = readFile(fs::path(TAMLO_PAGES) / "man" / "man1" / "tamlo.1");
    const std::string manualRu = readFile(fs::path(TAMLO_PAGES) / "man" / "ru" / "man1" / "tamlo.1");
    for (const nlohmann::json& option : options) {
        const std::string key = option.at("key");
        SCOPED_TRACE(key);
        EXPECT_NE(("\n" + keys).find("\n" + key + "\n"), std::string::npos);
        EXPECT_NE(("\n" + english).find("\n" + key + " "), std::string::npos);
        EXPECT_NE(("\n" + russian).find("\n" + key + " "), std::string::npos);
        const RunResult help = run({"help", key}), helpRu = run({"help", key, "--lang", "ru"});
        EXPECT_EQ(help.status, 0);
        EXPECT_NE(help.out.find(option.at("meaning").get<std::string>()), std::string::npos) << help.out;
        EXPECT_TRUE(help.out.starts_with(key + "\n"));
        EXPECT_TRUE(hasCyrillic(helpRu.out)) << helpRu.out;
        EXPECT_FALSE(hasCyrillic(help.out)) << help.out;
        EXPECT_NE(manual.find("\n\\fB" + key + "\\fR\n"), std::string::npos);
        EXPECT_NE(manualRu.find("\n\\fB" + key + "\\fR\n"), std::string::npos);
        for (const std::string& word : option.value("synonyms", std::vector<std::string>{}))
            EXPECT_EQ(run({"help", word}).out, help.out) << word;
    }
    EXPECT_NE(english.find("grade "), std::string::npos);
    EXPECT_EQ(run({"help", "develop"}).out, run({"develop", "--help"}).out);
    EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
}

// The scripts are asked as the shell would ask them.
TEST_F(UsageTest, CompletesInBash)
{
    const auto complete = [&](const std::string& words) {
        const std::string script =
            "source '" + (fs::path(TAMLO_PAGES) / "bash-completion" / "completions" / "tamlo").string() +
            "'; compopt() { :; }; COMP_WORDS=(" + words +
            "); COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _tamlo; echo \"${COMPREPLY[*]}\" > '" +
            (scratch_ / "reply").string() + "'";
        writeFile(scratch_ / "ask", script);
        EXPECT_EQ(std::system(("cd '" + scratch_.path().string() + "' && bash ask").c_str()), 0);
        std::string reply = readFile(scratch_ / "reply");
        if (reply.ends_with('\n')) reply.pop_back();
        return reply;
    };
    EXPECT_EQ(complete("tamlo dev"), "develop");
    EXPECT_EQ(complete("tamlo develop --film portra"), "portra160 portra400 portra800");
    EXPECT_EQ(complete("tamlo plan x.jpg --filter-rays star"), "star_4 star_6 star_8");
    EXPECT_EQ(complete("tamlo develop x.jpg --out"), "--out-dir");
    EXPECT_EQ(complete("tamlo develop x.jpg --set grad"), "grad_pos= grad_angle= grade=");
    EXPECT_EQ(complete("tamlo develop x.jpg --set frame_size = 6x"), "6x6 6x7 6x8 6x9 6x12");
    EXPECT_EQ(complete("tamlo show film hp"), "hp5");
    EXPECT_EQ(complete("tamlo help contr"), "contrast");
    EXPECT_EQ(complete("tamlo develop a.j"), "a.jpg");
    const RunResult zsh = run({"completion", "zsh"}), fish = run({"completion", "fish", "--lang", "ru"});
    EXPECT_TRUE(zsh.out.starts_with("#compdef tamlo\n"));
    EXPECT_NE(fish.out.find("-l film -x -a 'aerochrome "), std::string::npos);
    EXPECT_TRUE(hasCyrillic(fish.out));
}

TEST_F(UsageTest, ListsWhatAFilmIsUsedWith)
{
    for (const nlohmann::json& film : nlohmann::json::parse(run({"list", "films", "--json"}).out)) {
        SCOPED_TRACE(film.dump());
        EXPECT_EQ(run({"show", "paper", film.at("paper")}).status, 0);
        const std::map<std::string, int> speeds{{"trix400", 400},     {"velvia50", 50},
                                                {"fp100c", 100},      {"polaroid_sx70", 160},
                                                {"collodion_wet", 0}, {"digital_negative", 0}};
        const auto known = speeds.find(film.at("id"));
        if (known != speeds.end()) {
            EXPECT_EQ(film.value("iso", 0), known->second);
        }
        EXPECT_NE(film.value("ground", ""), "");
    }
    const std::string films = run({"list", "films"}).out;
    EXPECT_NE(films.find("ISO 3200  bw_neutral  estimate"), std::string::npos);
}

// The data sheet is well-formed in its names, holds a curve a layer, and is not left behind by a failure.
TEST_F(UsageTest, MeasuresAFilmAndDrawsItsDataSheet)
{
    const RunResult silver =
        run({"measure", "trix400", "--paper", "bw_neutral", "--json", "--plot", "sheet.svg"});
    ASSERT_EQ(silver.status, 0) << silver.err;
    const nlohmann::json report = nlohmann::json::parse(silver.out);
    EXPECT_EQ(report.at("layers").size(), 1u);
    EXPECT_EQ(report.at("layers")[0].at("density").size(), 21u);
    EXPECT_NEAR(report.at("print").at("density")[10].get<double>(), 0.7447, 1e-3);
    const std::string sheet = readFile(scratch_ / "sheet.svg");
    EXPECT_NE(sheet.find("Kodak Tri-X 400"), std::string::npos);
    EXPECT_TRUE(sheet.ends_with("</svg>\n"));
    EXPECT_EQ(std::count(sheet.begin(), sheet.end(), '<'), std::count(sheet.begin(), sheet.end(), '>'));

    const RunResult pushed = run({"measure", "trix400", "--set", "push=2"});
    EXPECT_NE(pushed.out.find("silver"), std::string::npos);
    const RunResult paper = run({"measure", "--paper", "platinum", "--set", "print_texture=0", "--json"});
    ASSERT_EQ(paper.status, 0) << paper.err;
    const nlohmann::json tone = nlohmann::json::parse(paper.out);
    EXPECT_NEAR(tone.at("density")[10].get<double>(), 0.745, 0.01);
    EXPECT_TRUE(tone.at("structure").is_null());
    EXPECT_EQ(run({"measure", "--paper", "color_ra4"}).status, 2);
    EXPECT_EQ(run({"measure"}).status, 2);
    EXPECT_EQ(run({"measure", "trix400", "--plot", "a.jpg/sheet.svg"}).status, 1);
    EXPECT_EQ(run({"measure", "three_plates_1909", "--plot", "plates.svg"}).status, 1);
    EXPECT_EQ(run({"measure", "trix400", "--plot", "sheet.pdf"}).status, 2);
    EXPECT_FALSE(fs::exists(scratch_ / "plates.svg"));
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        if (!line.empty()) lines.push_back(line);
    return lines;
}

struct Saying {
    std::vector<std::string> arguments;
    int status;
    std::vector<std::string> says; ///< in Russian
};

// In either language by option and by locale; the option wins. Whatever goes to standard error is Russian in
// every line, and without a Russian letter in English.
TEST_F(UsageTest, SpeaksBothLanguages)
{
    writeFile(scratch_ / "o.json", "[1, 2]");
    writeFile(scratch_ / "empty.json", "{}");
    writeFile(scratch_ / "junk.jpg", "junk");
    writeFile(scratch_ / "cut.jpg", readFile(kPicture).substr(0, 9000));
    const std::vector<Saying> sayings{
        {{"devlop"}, 2, {"нет команды «devlop»; есть develop, plan, measure, list, show, check, "}},
        {{"develop"}, 2, {"не хватает аргумента INPUT (как пользоваться: tamlo --help)"}},
        {{"list", "moons"}, 2, {"есть films, lenses, papers, filters, presets и options, но нет «moons»"}},
        {{"develop", "a.jpg", "--film", "portra40"},
         2,
         {"нет плёнки «portra40»; может быть, portra400? (все имена: tamlo list films)"}},
        {{"plan", "a.jpg", "--lens", "modernclaen"}, 2, {"нет объектива «modernclaen»"}},
        {{"plan", "a.jpg", "--paper", "color_ra5"}, 2, {"нет бумаги «color_ra5»"}},
        {{"plan", "a.jpg", "--filter-cut", "red_92"}, 2, {"нет фильтра «red_92»"}},
        {{"plan", "a.jpg", "--preset", "moonlit"}, 2, {"нет пресета «moonlit»"}},
        {{"develop", "a.jpg", "--set", "border"}, 2, {"--set ждёт ключ=значение, а не «border»"}},
        {{"develop", "a.jpg", "-o", "b.webp"}, 2, {"расширение .webp не годится"}},
        {{"develop", "a.jpg", "-o", "folder.jpg"}, 2, {"folder.jpg — папка"}},
        {{"develop", "a.jpg", "sub/a.jpg", "-o", "b.jpg"}, 2, {"снимков 2; возьмите --out-dir"}},
        {{"develop", "a.jpg", "sub/a.jpg"}, 2, {"a.jpg и sub/a.jpg записались бы в один файл"}},
        {{"develop", "a.jpg", "-o", "soft.jpg"}, 2, {"а это исходник"}},
        {{"measure", "trix400", "--plot", "sheet.pdf"}, 2, {"--plot рисует файл .svg, а не sheet.pdf"}},
        {{"plan", "none.jpg"}, 1, {"нет файла none.jpg"}},
        {{"plan", "folder.jpg"}, 1, {"в папке folder.jpg нет ни одного снимка"}},
        {{"plan", "junk.jpg"}, 1, {"ошибка ввода-вывода: не удалось прочесть junk.jpg: это не снимок JPEG"}},
        {{"develop", "cut.jpg", "-o", "b.jpg"}, 1, {"не удалось прочесть cut.jpg: файл оборван"}},
        {{"develop", "a.jpg", "--long", "9", "-o", "/proc/d/b.jpg"},
         1,
         {"папку /proc/d нельзя создать: нет "}},
        {{"project", "show", "roll"}, 2, {"нет файла roll.tamlo"}},
        {{"plan", "a.jpg", "--options", "o.json"}, 1, {"настройки из o.json не годятся"}},
        {{"develop", "a.jpg", "--out-dir", "sub/a.jpg/d"}, 1, {"sub/a.jpg — не папка"}},
        {{"develop", "none.jpg", "gone.jpg", "--out-dir", "d"}, 1, {"2 из 2", "нет файла gone.jpg"}},
        {{"develop", "a.jpg", "--long", "32", "-o", "b.jpg", "--film", "fp100c"}, 0, {"проявляется a.jpg\n"}},
        {{"check", "empty.json"}, 1, {"empty.json: Не понимаю, что это за профиль"}},
        {{"plan", "a.jpg"}, 0, {"\n  файл       ", " Мп\n", "\n  плёнка     36.0 × ", " мкм на пиксель\n"}},
        {{"list", "films"}, 0, {"  Цветной негатив  ", "  Слайд E-6 ", "  эталон каталога  ", "  оценка  "}},
        {{"list", "presets"}, 0, {"  Старые процессы  "}},
        {{"list", "filters"}, 0, {"  Звёзды и полосы  "}},
        {{"measure", "trix400", "--paper", "bw_neutral", "--plot", "sheet.svg"},
         0,
         {"  слой       Dmin    Dmax   гамма   ", "\n  серебро    ",
          "  Гранулярность × 1000, 48 мкм: ", "\n  lg H    серебро  печать\n"}},
        {{"--help"}, 0, {"\nПараметры:\n", "\nКоманды:\n", "\nКод выхода: "}},
    };
    for (const Saying& saying : sayings) {
        std::string line;
        for (const std::string& argument : saying.arguments) line += argument + " ";
        SCOPED_TRACE(line);
        const std::vector<RunResult> russian{runWithLocale("en_GB.UTF-8", saying.arguments, {"--lang", "ru"}),
                                             runWithLocale("ru_RU.UTF-8", saying.arguments)};
        for (const RunResult& result : russian) {
            EXPECT_EQ(result.status, saying.status);
            const std::string all = result.out + result.err;
            for (const std::string& text : saying.says) EXPECT_NE(all.find(text), std::string::npos) << all;
            for (const std::string& message : linesOf(result.err))
                EXPECT_TRUE(hasCyrillic(message)) << message;
            EXPECT_EQ(all.find("cli."), std::string::npos) << all;
        }
        const RunResult english = runWithLocale("ru_RU.UTF-8", saying.arguments, {"--lang=en"});
        EXPECT_EQ(english.status, saying.status);
        EXPECT_FALSE(hasCyrillic(english.out + english.err)) << english.out << english.err;
        EXPECT_EQ((english.out + english.err).find("cli."), std::string::npos);
    }
    EXPECT_FALSE(hasCyrillic(readFile(scratch_ / "sheet.svg"))) << "the last sheet is the English one";
}

// Every line of every help: headings, arguments, options. The parser's own words are English in none of them.
TEST_F(UsageTest, EveryLineOfTheHelpIsTranslated)
{
    const std::vector<std::vector<std::string>> commands{{},         {"develop"}, {"plan"},      {"measure"},
                                                         {"list"},   {"show"},    {"check"},     {"import"},
                                                         {"export"}, {"help"},    {"completion"}};
    for (const std::vector<std::string>& command : commands) {
        SCOPED_TRACE(command.empty() ? "tamlo" : command.front());
        const RunResult russian = runWithLocale("ru_RU.UTF-8", command, {"--help"});
        const RunResult english = runWithLocale("en_GB.UTF-8", command, {"--help"});
        EXPECT_EQ(russian.status, 0);
        const std::vector<std::string> lines = linesOf(russian.out);
        EXPECT_EQ(lines.size(), linesOf(english.out).size());
        for (const std::string& line : lines) EXPECT_TRUE(hasCyrillic(line)) << line;
        for (const char* word : {"REQUIRED", "Excludes", "TEXT", " in [", "Options"})
            EXPECT_EQ(russian.out.find(word), std::string::npos) << word;
        EXPECT_FALSE(hasCyrillic(english.out));
    }
}

TEST_F(UsageTest, AStoppedRunAndAFullOutputSpeakRussian)
{
    RunSettings settings;
    settings.environment["LANG"] = "ru_RU.UTF-8";
    settings.interruptAtPhase = "проявляется";
    const RunResult stopped = run({"develop", "a.jpg", "a-tamlo.jpg", "--out-dir", "d"}, settings);
    EXPECT_EQ(stopped.status, 130);
    ASSERT_EQ(stopped.messages().size(), 1u);
    EXPECT_NE(stopped.messages()[0].find("остановлено; снимок из a"), std::string::npos) << stopped.err;

    settings.interruptAtPhase.reset();
    settings.outputTo = "/dev/full";
    const RunResult full = run({"list", "films"}, settings);
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "tamlo: не удалось записать стандартный вывод\n");
}

// Scripts read the JSON: names and groups follow the language, no key and no number does.
TEST_F(UsageTest, JsonKeepsItsKeysInEveryLanguage)
{
    const auto inBoth = [&](const std::vector<std::string>& arguments) {
        return std::pair(runWithLocale("en_GB.UTF-8", arguments), runWithLocale("ru_RU.UTF-8", arguments));
    };
    const std::vector<std::vector<std::string>> commands{{"plan", "a.jpg", "--json"},
                                                         {"measure", "portra400", "--json"},
                                                         {"show", "film", "portra400"},
                                                         {"show", "preset", "kino_1956"}};
    for (const std::vector<std::string>& command : commands) {
        SCOPED_TRACE(command.front() + " " + command[1]);
        const auto [english, russian] = inBoth(command);
        EXPECT_EQ(russian.status, 0) << russian.err;
        EXPECT_TRUE(nlohmann::json::accept(russian.out));
        EXPECT_EQ(russian.out, english.out);
    }
    for (const std::string kind : {"films", "lenses", "papers", "filters", "presets"}) {
        SCOPED_TRACE(kind);
        const auto [english, russian] = inBoth({"list", kind, "--json"});
        const auto keysById = [](const std::string& text) {
            std::map<std::string, std::set<std::string>> keys;
            for (const nlohmann::json& entry : nlohmann::json::parse(text))
                for (const auto& [key, value] : entry.items()) keys[entry.at("id")].insert(key);
            return keys;
        };
        EXPECT_EQ(keysById(russian.out), keysById(english.out));
        EXPECT_TRUE(hasCyrillic(russian.out));
    }
}

TEST_F(UsageTest, RefusesALanguageThatItLacks)
{
    const std::vector<std::vector<std::string>> lines{{"--lang", "xx", "list", "films"},
                                                      {"list", "films", "--lang=xx"},
                                                      {"list", "films", "--lang", "RU"},
                                                      {"--lang=", "list", "films"},
                                                      {"--lang", "xx", "--help"}};
    for (const std::vector<std::string>& line : lines) {
        SCOPED_TRACE(line.back());
        const RunResult english = runWithLocale("en_GB.UTF-8", line);
        EXPECT_EQ(english.status, 2);
        EXPECT_EQ(english.out, "");
        EXPECT_TRUE(english.err.starts_with("tamlo: --lang takes ru or en, not “")) << english.err;
        const RunResult russian = runWithLocale("ru_RU.UTF-8", line);
        EXPECT_EQ(russian.status, 2);
        EXPECT_TRUE(russian.err.starts_with("tamlo: --lang ждёт ru или en, а не «")) << russian.err;
    }
    EXPECT_EQ(run({"list", "films", "--lang"}).status, 2);
}

} // namespace
} // namespace tamlo::test
