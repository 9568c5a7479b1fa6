#include "cli/catalogue.h"

#include "cli/messages.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_error.h"
#include "platform/unicode.h"

#include <algorithm>
#include <cctype>

namespace tamlo::cli {

namespace {

using Kind = ProfileStore::Kind;

struct KindWords {
    Kind kind;
    const char* one;
    const char* all;
    const char* usual; ///< what the program takes where nothing is said
};

constexpr KindWords kKindWords[] = {{Kind::films, "film", "films", "portra400"},
                                    {Kind::lenses, "lens", "lenses", "modern_clean"},
                                    {Kind::papers, "paper", "papers", ""},
                                    {Kind::filters, "filter", "filters", ""},
                                    {Kind::presets, "preset", "presets", ""}};

std::vector<std::string> kindWords(const char* KindWords::*form)
{
    std::vector<std::string> words;
    for (const KindWords& row : kKindWords) words.emplace_back(row.*form);
    return words;
}

const KindWords& wordsOf(Kind kind)
{
    return *std::ranges::find(kKindWords, kind, &KindWords::kind);
}

/// The letters and digits of a text between all else, in lower case.
std::vector<std::string> wordsOf(const std::string& text)
{
    std::vector<std::string> words(1);
    for (const char c : platform::lowerCased(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x80 || std::isalnum(byte))
            words.back() += c;
        else if (!words.back().empty())
            words.emplace_back();
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

std::string joined(const std::vector<std::string>& words)
{
    std::string out;
    for (const std::string& word : words) out += word;
    return out;
}

/// How well what a user typed names a profile; the smaller, the better.
enum class Likeness { whole, words, none };

/// The words that the text joins stand in the name, one after the other: "trix" in "Kodak Tri-X 400".
Likeness likenessTo(const std::vector<std::string>& name, const std::string& typed)
{
    for (std::size_t first = 0; first < name.size(); ++first) {
        std::string run;
        for (std::size_t last = first; last < name.size() && run.size() < typed.size(); ++last)
            run += name[last];
        if (run == typed) return run == joined(name) ? Likeness::whole : Likeness::words;
    }
    return Likeness::none;
}

/// The names of a profile in both languages, and its id.
std::vector<std::string> namesOf(const ProfileStore& store, Kind kind, const std::string& id)
{
    std::vector<std::string> names{id};
    try {
        const Json profile =
            kind == Kind::presets ? Json(store.presetDocument(id).json) : parseJsonText(store.data(kind, id));
        for (const char* key : {"name", "name_en"})
            if (const auto name = stringValue(memberOf(profile, key))) names.push_back(*name);
    } catch (const std::exception&) {
        // A user's file that can't be read still has its id.
    }
    return names;
}

/// Ids that the text may mean, of the best likeness that any has. What is another candidate's variant by its
/// id
/// ("fp100c_silk") is left to whoever names it.
std::vector<std::string> candidates(const ProfileStore& store, Kind kind, const std::string& text)
{
    const std::string typed = joined(wordsOf(text));
    if (typed.empty()) return {};
    std::vector<std::string> found;
    Likeness best = Likeness::none;
    for (const std::string& id : store.list(kind)) {
        Likeness likeness = Likeness::none;
        for (const std::string& name : namesOf(store, kind, id))
            likeness = std::min(likeness, likenessTo(wordsOf(name), typed));
        if (likeness == Likeness::none || likeness > best) continue;
        if (likeness < best) found.clear();
        best = likeness;
        found.push_back(id);
    }
    std::vector<std::string> own;
    for (const std::string& id : found)
        if (std::ranges::none_of(found,
                                 [&](const std::string& other) { return id.starts_with(other + "_"); }))
            own.push_back(id);
    return own;
}

UsageError noSuchProfile(const ProfileStore& store, Kind kind, const std::string& text)
{
    const std::string kinds(rawText(kind));
    for (const KindWords& other : kKindWords) {
        const std::vector<std::string> known = store.list(other.kind, true);
        if (other.kind != kind && std::ranges::find(known, text) != known.end())
            return UsageError(
                T("cli.noSuch." + kinds, {{"id", text}}) +
                T("cli.isAnotherKind", {{"kind", T("profiles.kind." + std::string(other.all))}}) +
                T("cli.listHint", {{"kinds", kinds}}));
    }
    const auto near = store.nearestName(kind, text);
    return UsageError(T("cli.noSuch." + kinds, {{"id", text}}) +
                      (near ? T("cli.didYouMean", {{"id", *near}}) : "") +
                      T("cli.listHint", {{"kinds", kinds}}));
}

} // namespace

std::vector<std::string> singularKinds()
{
    return kindWords(&KindWords::one);
}

std::vector<std::string> pluralKinds()
{
    return kindWords(&KindWords::all);
}

std::vector<std::string> listedKinds()
{
    std::vector<std::string> words = pluralKinds();
    words.emplace_back(kOptionsWord);
    return words;
}

ProfileStore::Kind kindNamed(const std::string& text)
{
    for (const KindWords& row : kKindWords)
        if (text == row.one || text == row.all) return row.kind;
    throw UsageError(T("cli.noSuchKind", {{"list", joined(listedKinds(), T("common.and"))}, {"kind", text}}));
}

std::string profileNamed(const ProfileStore& store, Kind kind, const std::string& text,
                         std::vector<std::string>& notes)
{
    const std::vector<std::string> known = store.list(kind, true);
    if (std::ranges::find(known, text) != known.end()) return text;
    std::vector<std::string> found = candidates(store, kind, text);
    if (found.size() == 1) return found.front();
    if (found.empty()) throw noSuchProfile(store, kind, text);
    const std::string usual = wordsOf(kind).usual;
    if (std::erase(found, usual) > 0) {
        notes.push_back(
            T("cli.takenAs", {{"text", text}, {"id", usual}, {"list", joined(found, T("common.or"))}}));
        return usual;
    }
    throw UsageError(T("cli.ambiguous", {{"text", text}, {"list", joined(found, T("common.or"))}}));
}

std::string profileNamed(const ProfileStore& store, Kind kind, const std::string& text)
{
    std::vector<std::string> untold;
    return profileNamed(store, kind, text, untold);
}

std::string defaultPaper(const FilmProfile& film)
{
    return film.type == "color" ? "color_ra4" : ProfileStore::defaultPaperName(film);
}

std::optional<int> filmSpeed(const ProfileStore& store, const std::string& id)
{
    const Json film = parseJsonText(store.data(Kind::films, id));
    if (const auto iso = jsonInteger(memberOf(film, "iso"))) return static_cast<int>(*iso);
    // "Kodak Portra 400", and no year and no number of a camera.
    constexpr int kSpeeds[] = {25,  32,  50,  64,  80,  100, 125,  160, 200,
                               250, 320, 400, 500, 640, 800, 1600, 3200};
    for (const std::string& word : wordsOf(stringValue(memberOf(film, "name")).value_or("")))
        for (const int speed : kSpeeds)
            if (word == std::to_string(speed)) return speed;
    return std::nullopt;
}

} // namespace tamlo::cli
