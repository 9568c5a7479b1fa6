#include "core/profiles/catalogue/profile_validator.h"

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/paper_hints.h"
#include "core/text/bundled_profiles.h"
#include "tests/profiles/user_root.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>

namespace tamlo {
namespace {

using Kind = ProfileKind;
using Json = nlohmann::json;
using Messages = std::vector<std::string>;

constexpr const char* kColorFilm = R"({"type": "color", "layers": {
    "r": {"dmin": 0.1, "dmax": 2.5, "gamma": 0.6}, "g": {"dmin": 0.1, "dmax": 2.5, "gamma": 0.6},
    "b": {"dmin": 0.1, "dmax": 2.5, "gamma": 0.6}}})";
constexpr const char* kBWFilm = R"({"type": "bw", "negative": {"dmin": 0.1, "dmax": 2.5, "gamma": 0.6}})";

const std::string& prefixOf(Kind kind)
{
    static const std::map<Kind, std::string> kPrefixes{{Kind::films, "Это не похоже на профиль плёнки: "},
                                                       {Kind::lenses, "Это не похоже на профиль объектива: "},
                                                       {Kind::papers, "Это не похоже на профиль бумаги: "},
                                                       {Kind::filters, "Это не похоже на профиль фильтра: "},
                                                       {Kind::presets, "Это не похоже на пресет: "}};
    return kPrefixes.at(kind);
}

/// The smallest text of each kind that is one.
std::string leastOf(Kind kind)
{
    static const std::map<Kind, std::string> kLeast{{Kind::films, kBWFilm},
                                                    {Kind::lenses, R"({"optics": {}})"},
                                                    {Kind::papers, "{}"},
                                                    {Kind::filters, "{}"},
                                                    {Kind::presets, "{}"}};
    return kLeast.at(kind);
}

class ProfileValidatorTest : public UserRootTest {
protected:
    Messages problems(Kind kind, std::string_view text) const
    {
        return messagesOf([&] { ProfileValidator::validate(kind, text, store_); });
    }

    struct Case {
        const char* patch; ///< merged into a profile that has no problem
        Messages messages;
    };
    void expectProblems(Kind kind, std::string_view base, const std::vector<Case>& cases) const
    {
        ASSERT_EQ(problems(kind, base), Messages{});
        for (const Case& c : cases) {
            Json profile = Json::parse(base);
            profile.merge_patch(Json::parse(c.patch));
            EXPECT_EQ(problems(kind, profile.dump()), c.messages) << c.patch;
        }
    }

    const ProfileStore store_;
};

TEST_F(ProfileValidatorTest, RulesOfFilmsInLayers)
{
    const std::string allowed = " неизвестен. Бывают: bw, collodion, color, instant, slide, tricolor.";
    const std::string noNegative = "У ЧБ-плёнки должен быть блок negative — одна кривая на серебро.";
    const std::string noLayers = "У цветной плёнки должен быть блок layers с кривыми r, g, b.";
    const std::string grey = "Плотность серого (mid_density";
    expectProblems(
        Kind::films, kColorFilm,
        {{R"({"type": "slide"})", {}},
         {R"({"type": "instant"})", {}},
         {R"({"type": "hologram"})", {"Тип плёнки «hologram»" + allowed}},
         {R"({"type": ""})", {"Тип плёнки «»" + allowed}},
         {R"({"type": "hologram", "layers": null})", {"Тип плёнки «hologram»" + allowed, noLayers}},
         {R"({"layers": null})", {noLayers}},
         {R"({"type": "slide", "layers": null})", {noLayers}},
         {R"({"type": "instant", "layers": null})", {noLayers}},
         {R"({"type": "bw"})", {noNegative}},
         {R"({"type": "tricolor"})", {noNegative}},
         {R"({"type": "collodion"})", {noNegative}},
         {R"({"layers": {"r": {"dmin": 0.75, "dmax": 0.5}}})",
          {"Dmax должен быть больше Dmin (слой R: dmax 0.5, dmin 0.75)."}},
         {R"({"layers": {"g": {"dmin": 2.5}}})",
          {"Dmax должен быть больше Dmin (слой G: dmax 2.5, dmin 2.5)."}},
         {R"({"layers": {"b": {"gamma": 0}}})", {"Контраст (gamma) должен быть больше нуля (слой B: 0)."}},
         {R"({"layers": {"r": {"gamma": -1.25}}})",
          {"Контраст (gamma) должен быть больше нуля (слой R: -1.25)."}},
         {R"({"layers": {"g": {"toe": 0}}})",
          {"Мягкость подножки (toe) должна быть больше нуля (слой G: 0)."}},
         {R"({"layers": {"b": {"mid_density": 0}}})", {grey + ") должна быть больше нуля (слой B: 0)."}},
         {R"({"layers": {"b": {"mid_density": 2.75}}})",
          {grey + " 2.75) должна быть внутри шкалы (Dmax − Dmin = 2.4)."}},
         {R"({"layers": {"b": {"dmin": 0.5, "mid_density": 2}}})",
          {grey + " 2) должна быть внутри шкалы (Dmax − Dmin = 2)."}},
         {R"({"layers": {"b": {"dmin": 0.5, "mid_density": 1.999, "toe": 0.001}}})", {}}});
}

TEST_F(ProfileValidatorTest, RulesOfFilmsOfOneSilver)
{
    const std::string sum = "Сумма spectral_weights должна быть больше нуля.";
    const std::string matrix = "Матрица сенсибилизации — 3×3.";
    expectProblems(
        Kind::films, kBWFilm,
        {{R"({"type": "tricolor"})", {}},
         {R"({"type": "collodion"})", {}},
         {R"({"type": "color"})", {"У цветной плёнки должен быть блок layers с кривыми r, g, b."}},
         {R"({"negative": {"dmax": 0.1}})", {"Dmax должен быть больше Dmin (плёнка: dmax 0.1, dmin 0.1)."}},
         {R"({"negative": {"gamma": 0}})", {"Контраст (gamma) должен быть больше нуля (плёнка: 0)."}},
         {R"({"negative": {"toe": -0.5}})",
          {"Мягкость подножки (toe) должна быть больше нуля (плёнка: -0.5)."}},
         {R"({"negative": {"mid_density": -1}})",
          {"Плотность серого (mid_density) должна быть больше нуля (плёнка: -1)."}},
         {R"({"grain": {"size_um": 0, "amount": 0}})", {}},
         {R"({"grain": {"size_um": -2.5}})",
          {"Размер зерна не может быть отрицательным (grain.size_um -2.5)."}},
         {R"({"grain": {"amount": -0.25}})",
          {"Количество зерна не может быть отрицательным (grain.amount -0.25)."}},
         {R"({"halation": {"radius_um": 0}})",
          {"Радиус галации должен быть больше нуля "
           "(halation.radius_um 0)."}},
         {R"({"halation": {}})", {}},
         {R"({"spectral_weights": [0.5, -0.25, 0]})", {}},
         {R"({"spectral_weights": [0.5, 0.5]})", {"spectral_weights — это три числа (R, G, B), а не 2."}},
         {R"({"spectral_weights": []})", {"spectral_weights — это три числа (R, G, B), а не 0."}},
         {R"({"spectral_weights": [0, 0, 0]})", {sum}},
         {R"({"spectral_weights": [1, -2, 1]})", {sum}},
         {R"({"sensitization": [[1, 0, 0], [0, 1, 0], [0, 0, 1]]})", {}},
         {R"({"sensitization": [[1, 0, 0], [0, 1, 0]]})", {matrix}},
         {R"({"sensitization": [[1, 0, 0], [0, 1, 0], [0, 0]]})", {matrix}},
         {R"({"sensitization_ds": [[1, 0, 0, 0], [0, 1, 0], [0, 0, 1]]})", {matrix}},
         {R"({"sensitization": [], "sensitization_ds": []})", {matrix, matrix}}});
}

TEST_F(ProfileValidatorTest, RulesOfPapers)
{
    const std::string scatter = "Рассеяние серебра (scatter) должно быть больше нуля.";
    expectProblems(
        Kind::papers, R"({"kind": "plate", "dmin": 0.1, "dmax": 2})",
        {{R"({"plate_view": {"scatter": 0}})", {scatter}},
         {R"({"plate_view": {"scatter": -1}})", {scatter}},
         {R"({"kind": "silver", "plate_view": {"scatter": 0}})", {}},
         {R"({"plate_view": {"silver": [1, 1]}})", {"silver — это три числа (R, G, B)."}},
         {R"({"plate_view": {"base": [1, 1, 1, 1]}})", {"base — это три числа (R, G, B)."}},
         {R"({"offset": {"lpi": 0}})", {"Линиатура растра должна быть больше нуля (offset.lpi 0)."}},
         {R"({"inkjet": {"drop_um": -5}})", {"Капля должна быть больше нуля (inkjet.drop_um -5)."}},
         {R"({"offset": {"dot_gain": 0.26, "gain_comp": 0.9}})", {}},
         {R"({"offset": {"dot_gain": 0.5, "gain_comp": 1}})",
          {"Машина возвращает не больше четверти точки, иначе она печатает по белой бумаге: растискивание × "
           "gain_comp равно 0.5, а не 0.25 или меньше."}},
         {R"({"dmin": 2})", {"Dmax должен быть больше Dmin (dmax 2, dmin 2)."}},
         {R"({"dmin": 2.125})", {"Dmax должен быть больше Dmin (dmax 2, dmin 2.125)."}},
         {R"({"dmin": 9, "dmax": null})", {}},
         {R"({"dmin": null, "dmax": -1})", {}},
         {R"({"gamma": 0})", {"Контраст бумаги (gamma) должен быть больше нуля."}},
         {R"({"gamma": -0.01})", {"Контраст бумаги (gamma) должен быть больше нуля."}},
         {R"({"tone": [1]})", {"tone — это три числа (R, G, B)."}},
         {R"({"spectral_weights": [1, 0]})", {"spectral_weights — это три числа (R, G, B)."}},
         {R"({"spectral_weights": [0, 0, 0]})", {"Сумма spectral_weights должна быть больше нуля."}},
         {R"({"pigment": {"density": [0, 0, 0]}})", {}},
         {R"({"pigment": {"density": [1, 1, -0.1]}})", {"Плотность пигмента не может быть отрицательной."}}});
}

TEST_F(ProfileValidatorTest, RulesOfLenses)
{
    const std::string radius = "Радиус гало должен быть больше нуля, когда гало есть ";
    expectProblems(
        Kind::lenses, R"({"optics": {}})",
        {{R"({"optics": {"vignette": 0, "glow": 0, "glow_radius": 0, "soften": 0}})", {}},
         {R"({"optics": {"vignette": -0.5}})", {"Виньетка не может быть отрицательной (vignette -0.5)."}},
         {R"({"optics": {"glow": -0.25}})", {"Сила гало не может быть отрицательной (glow -0.25)."}},
         {R"({"optics": {"glow": 0.5}})", {radius + "(glow 0.5, glow_radius 0)."}},
         {R"({"optics": {"glow": 0.5, "glow_radius": -0.125}})",
          {radius + "(glow 0.5, glow_radius -0.125)."}},
         {R"({"optics": {"glow": 0.5, "glow_radius": 0.01}})", {}},
         {R"({"optics": {"soften": -1}})", {"Софт не может быть отрицательным (soften -1)."}},
         {R"({"optics": {"glow_chroma": [1, 1]}})", {"glow_chroma — это три числа (R, G, B)."}}});
}

TEST_F(ProfileValidatorTest, RulesOfFilters)
{
    const std::string gains = "Пропускание фильтра должно быть больше нуля.";
    expectProblems(Kind::filters, "{}",
                   {{R"({"gains": [1, 0.5, 0.001]})", {}},
                    {R"({"gains": [1, 1]})", {"gains — это три числа (R, G, B)."}},
                    {R"({"gains": [1, 0, 1]})", {gains}},
                    {R"({"gains": [1, 1, -1]})", {gains}},
                    {R"({"bloom": 0})", {}},
                    {R"({"bloom": -0.1})", {"Сила диффузии не может быть отрицательной."}}});
}

TEST_F(ProfileValidatorTest, EveryProblemOfAFileIsTold)
{
    struct Row {
        Kind kind;
        const char* text;
        std::set<std::string> messages; ///< in any order
    };
    const Row rows[] = {
        {Kind::films,
         R"({"type": "bw", "negative": {"dmin": 1, "dmax": 0.5, "gamma": 0, "mid_density": 1},
             "spectral_weights": [1, 2, 3, 4], "grain": {"size_um": -1, "amount": -1}})",
         {"Dmax должен быть больше Dmin (плёнка: dmax 0.5, dmin 1).",
          "Контраст (gamma) должен быть больше нуля (плёнка: 0).",
          "Плотность серого (mid_density 1) должна быть внутри шкалы (Dmax − Dmin = -0.5).",
          "Размер зерна не может быть отрицательным (grain.size_um -1).",
          "Количество зерна не может быть отрицательным (grain.amount -1).",
          "spectral_weights — это три числа (R, G, B), а не 4."}},
        {Kind::papers,
         R"({"kind": "plate", "plate_view": {"scatter": 0, "silver": [], "base": [1]}, "gamma": 0,
             "tone": [1, 2], "spectral_weights": [0]})",
         {"Рассеяние серебра (scatter) должно быть больше нуля.", "silver — это три числа (R, G, B).",
          "base — это три числа (R, G, B).", "Контраст бумаги (gamma) должен быть больше нуля.",
          "tone — это три числа (R, G, B).", "spectral_weights — это три числа (R, G, B)."}},
        {Kind::lenses,
         R"({"optics": {"vignette": -1, "glow_chroma": [1, 2, 3, 4]}})",
         {"Виньетка не может быть отрицательной (vignette -1).", "glow_chroma — это три числа (R, G, B)."}},
        {Kind::filters,
         R"({"gains": [], "bloom": -1})",
         {"gains — это три числа (R, G, B).", "Сила диффузии не может быть отрицательной."}},
    };
    for (const Row& row : rows) {
        const Messages found = problems(row.kind, row.text);
        EXPECT_EQ(std::set(found.begin(), found.end()), row.messages) << row.text;
        EXPECT_EQ(found.size(), row.messages.size()) << row.text;
    }
}

TEST_F(ProfileValidatorTest, TwoProblemsAreTwoLines)
{
    try {
        ProfileValidator::validate(Kind::lenses, R"({"optics": {"vignette": -1, "soften": -2}})", store_);
        FAIL();
    } catch (const ProfileValidator::Failure& failure) {
        EXPECT_STREQ(failure.what(), "Виньетка не может быть отрицательной (vignette -1).\n"
                                     "Софт не может быть отрицательным (soften -2).");
    }
}

TEST_F(ProfileValidatorTest, WhatCannotBeReadAsTheKindIsOneMessage)
{
    struct Row {
        Kind kind;
        const char* text;
        const char* reading;
    };
    const Row rows[] = {
        {Kind::films, "{}", "нет обязательного поля «type»"},
        {Kind::films, R"({"type": null, "gamma": 0})", "нет обязательного поля «type»"},
        {Kind::films, R"({"type": "bw", "negative": {"dmin": 0, "dmax": 1}})",
         "negative: нет обязательного поля «gamma»"},
        {Kind::films, R"({"type": "color", "layers": {"r": {"dmax": 1, "gamma": 1}}})",
         "layers.r: нет обязательного поля «dmin»"},
        {Kind::films, R"({"type": "color", "layers": {}})", "layers: нет обязательного поля «r»"},
        {Kind::films, R"({"type": 5})", "поле «type» не того типа"},
        {Kind::films, R"({"type": "bw", "spectral_weights": 1})", "поле «spectral_weights» не того типа"},
        {Kind::films, R"({"type": "bw", "hidden": "yes", "grain": {"size_um": -1}})",
         "поле «hidden» не того типа"},
        {Kind::films, R"({"type": "bw", "negative": []})", "поле «negative» не того типа"},
        {Kind::films, R"({"type": "bw", "negative": {"dmin": 0, "dmax": "2", "gamma": 1}})",
         "поле «negative.dmax» не того типа"},
        {Kind::lenses, "{}", "нет обязательного поля «optics»"},
        {Kind::lenses, R"({"optics": {}, "discs": [{"id": "a", "name": "A", "glow_mult": 1}]})",
         "discs[0]: нет обязательного поля «glow_radius_mult»"},
        {Kind::lenses, R"({"optics": {"glow": true}})", "поле «optics.glow» не того типа"},
        {Kind::papers, R"({"layers": [{"pigment": [1]}, {}]})",
         "layers[1]: нет обязательного поля «pigment»"},
        {Kind::papers, R"({"dmax": "2.1"})", "поле «dmax» не того типа"},
        {Kind::papers, R"({"scan": {"long_px": 1.5}})", "поле «scan.long_px» не того типа"},
        {Kind::filters, R"({"gains": [1, 2, "3"]})", "поле «gains[2]» не того типа"},
        {Kind::filters, R"({"name": 5})", "поле «name» не того типа"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(problems(row.kind, row.text), Messages{prefixOf(row.kind) + row.reading}) << row.text;
}

TEST_F(ProfileValidatorTest, AFormatAboveTheCeilingIsRefused)
{
    const auto newer = [](const std::string& n) {
        return Messages{"Профиль сделан в более новой версии Tamlo (format " + n +
                        "). Этот формат мы прочитать не можем."};
    };
    for (const Kind kind : kProfileKinds) {
        const int ceiling = kind == Kind::presets ? 4 : 1;
        const auto with = [&](const std::string& format) {
            std::string text = leastOf(kind);
            return problems(kind, text.insert(1, R"("format": )" + format + (text == "{}" ? "" : ",")));
        };
        EXPECT_EQ(problems(kind, leastOf(kind)), Messages{}) << prefixOf(kind);
        EXPECT_EQ(with("null"), Messages{}) << prefixOf(kind);
        for (int format = 1; format <= 6; ++format)
            EXPECT_EQ(with(std::to_string(format)),
                      format <= ceiling ? Messages{} : newer(std::to_string(format)))
                << prefixOf(kind) << format;
        EXPECT_EQ(with("1.5"), newer("1.5")) << prefixOf(kind);
        EXPECT_EQ(with(R"("1")"), newer(R"("1")")) << prefixOf(kind);
        EXPECT_EQ(with("true"), newer("true")) << prefixOf(kind);
        for (const char* huge : {"9223372036854775807", "18446744073709551615", "1e300"})
            EXPECT_EQ(with(huge).size(), 1u) << prefixOf(kind) << huge;
    }
    EXPECT_EQ(problems(Kind::films, R"({"format": 2, "type": 5})"), newer("2"))
        << "what a newer version wrote is not read any further";
}

TEST_F(ProfileValidatorTest, TheTitleIsTheName)
{
    const auto title = [&](Kind kind, const std::string& head) {
        std::string text = leastOf(kind);
        const bool more = text != "{}" && !head.empty();
        return ProfileValidator::validate(kind, text.insert(1, head + (more ? "," : "")), store_);
    };
    for (const Kind kind : {Kind::films, Kind::lenses, Kind::papers, Kind::filters}) {
        EXPECT_EQ(title(kind, R"("name": "Мой «профиль»", "name_en": "Mine")"), "Мой «профиль»");
        EXPECT_EQ(title(kind, R"("name": "")"), "профиль без имени");
        EXPECT_EQ(title(kind, R"("name": null)"), "профиль без имени");
        EXPECT_EQ(title(kind, ""), "профиль без имени");
    }
    EXPECT_EQ(title(Kind::presets, R"("name": "Утро")"), "Утро");
}

TEST_F(ProfileValidatorTest, EveryCarriedProfileIsOneOfItsKind)
{
    int count = 0;
    for (const Kind kind : kProfileKinds) {
        for (const auto& [key, text] : BundledProfiles::files()) {
            if (!key.starts_with(std::string(rawText(kind)) + "/")) continue;
            ++count;
            EXPECT_EQ(problems(kind, text), Messages{}) << key;
            EXPECT_EQ(ProfileValidator::validate(kind, text, store_), Json::parse(text).value("name", ""))
                << key;
            EXPECT_EQ(ProfileValidator::guessKind(text), kind) << key;
        }
    }
    EXPECT_EQ(count, 74 + 12 + 41 + 20 + 47);
}

TEST_F(ProfileValidatorTest, TheFirstMarkTellsTheKind)
{
    const std::pair<const char*, std::optional<Kind>> cases[] = {
        {R"({"optics": {}})", Kind::lenses},
        {R"({"optics": null, "stock": "a", "type": "bw", "dmax": 1})", Kind::lenses},
        {R"({"stock": "portra400", "type": "bw"})", Kind::presets},
        {R"({"opts": {}, "layers": {}})", Kind::presets},
        {R"({"type": "color"})", Kind::films},
        {R"({"type": "bw", "process": "gum"})", Kind::films},
        {R"({"type": "slide"})", Kind::films},
        {R"({"type": "instant", "gains": []})", Kind::films},
        {R"({"type": "collodion"})", Kind::films},
        {R"({"type": "tricolor", "scan": {}})", Kind::films},
        {R"({"type": "hologram", "layers": {}})", Kind::films},
        {R"({"negative": {}, "scan": {}})", Kind::films},
        {R"({"type": "bw_paper"})", std::nullopt},
        {R"({"type": 7, "process": "gum", "gains": []})", Kind::papers},
        {R"({"pigment": {}, "bloom": 1})", Kind::papers},
        {R"({"scan": {}})", Kind::papers},
        {R"({"process": "gum", "layers": [{"pigment": [1, 1, 1]}]})", Kind::papers},
        {R"({"dmax": 2, "layers": []})", Kind::papers},
        {R"({"gains": [1, 1, 1], "dmax": 2})", Kind::filters},
        {R"({"bloom": 0.1})", Kind::filters},
        {R"({"dmax": 2.1})", Kind::papers},
        {R"({"more": {"optics": {}, "dmax": 1}})", std::nullopt},
        {"{}", std::nullopt},
    };
    for (const auto& [text, kind] : cases) EXPECT_EQ(ProfileValidator::guessKind(text), kind) << text;
}

TEST_F(ProfileValidatorTest, HostileTextsAreMessages)
{
    const auto repeated = [](const std::string& text, int count) {
        std::string out;
        for (int i = 0; i < count; ++i) out += text;
        return out;
    };
    constexpr int kDeep = 100000;
    const std::string texts[] = {
        "",
        std::string(1, '\0'),
        " \n",
        "{",
        R"({"name": "a)",
        "null",
        "[]",
        "7",
        R"("optics")",
        "{} {}",
        "{'name': 1}",
        R"({"name": NaN})",
        repeated("[", kDeep),
        repeated("[", kDeep) + repeated("]", kDeep),
        repeated(R"({"optics":)", kDeep),
        repeated(R"({"optics":)", kDeep) + "1" + repeated("}", kDeep),
        "{\"name\": \"\xff\xfe\"}",
        "{\"name\": \"\xed\xa0\x80\"}",
        R"({"name": "\ud800"})",
        std::string("{\"name\": \"a\0b\"}", 15),
        R"({"dmax": 1e999})",
        R"({"format": -1e999})",
    };
    for (const std::string& text : texts) {
        const std::string shown = text.substr(0, 40);
        for (const Kind kind : kProfileKinds) {
            const Messages messages = problems(kind, text);
            ASSERT_EQ(messages.size(), 1u) << prefixOf(kind) << shown;
            EXPECT_TRUE(messages[0].starts_with(prefixOf(kind))) << messages[0];
            EXPECT_GT(messages[0].size(), prefixOf(kind).size()) << shown;
        }
        EXPECT_THROW(ProfileValidator::guessKind(text), DecodeError) << shown;
        EXPECT_THROW(ProfileValidator::stamped(text), DecodeError) << shown;
    }
}

TEST_F(ProfileValidatorTest, OddKeysOfAFilmAreMessages)
{
    // A triple may stand under a key that the user chose; what it holds can't be taken for the place of
    // another.
    for (const char* key :
         {"gains", "~.gains", ".tone", "a/b.base", "silver.x.silver", "r.spectral_weights"}) {
        Json film = Json::parse(kBWFilm);
        film["type"] = "tricolor";
        film["tricolor"]["filters"][key] = {1, 2};
        const Messages messages = problems(Kind::films, film.dump());
        ASSERT_EQ(messages.size(), 1u) << key;
        EXPECT_TRUE(messages[0].starts_with(prefixOf(Kind::films))) << messages[0];
    }
}

TEST_F(ProfileValidatorTest, APresetNeedsItsProfiles)
{
    EXPECT_EQ(
        problems(Kind::presets, R"({"stock": "nosuch"})"),
        Messages{"Пресет ссылается на профили, которых здесь нет: nosuch (films). Попросите отправителя "
                 "сохранить пресет заново — пользовательские профили должны ехать внутри файла."});
    EXPECT_EQ(problems(Kind::presets, R"({"stock": "nosuch", "embedded": {"films": {"nosuch": {}}}})"),
              Messages{});
}

TEST_F(ProfileValidatorTest, EnglishReadersGetEnglish)
{
    Loc::setOverride(Loc::Lang::en);
    EXPECT_EQ(problems(Kind::lenses, R"({"optics": {"glow": 0.5, "glow_chroma": [1]}})"),
              (Messages{"glow_chroma is three numbers (R, G, B).",
                        "The radius of the glow must be above zero when there is a glow (glow 0.5, "
                        "glow_radius 0)."}));
    EXPECT_EQ(problems(Kind::films, "{}"),
              Messages{"This does not look like a film profile: the required field “type” is missing"});
    EXPECT_EQ(ProfileValidator::validate(Kind::filters, "{}", store_), "profile without a name");
}

// A coat holds back the light that it prints from: its pigment is densest in that channel.
TEST_F(ProfileValidatorTest, DoubtfulPapersAreHintedAt)
{
    Loc::setOverride(Loc::Lang::en);
    for (const std::string& name : store_.list(Kind::papers, true))
        EXPECT_EQ(ProfileValidator::hints(store_.paper(name)), Messages{}) << name;
    PaperProfile gum = store_.paper("gum_tricolor");
    (*gum.layers)[0].pigment = {0.06, 0.33, 0.52}; // the colour of cyan paint
    (*gum.layers)[1].pigment = {0.2, 0.2};
    gum.transfer = PaperTransfer{0.3, {}};
    const Messages hints = ProfileValidator::hints(gum);
    ASSERT_EQ(hints.size(), 2u);
    EXPECT_TRUE(hints[0].starts_with("coat 1 prints from r, but its pigment is densest in b")) << hints[0];
    EXPECT_TRUE(hints[1].starts_with("pickup 0.3 is below 0.4")) << hints[1];
}

} // namespace
} // namespace tamlo
