#include "core/profiles/profile_store.h"

#include "core/image/tamlo_error.h"
#include "core/profiles/bundled_profiles.h"
#include "core/profiles/json_codec.h"
#include "core/profiles/nearest_text.h"
#include "core/profiles/profile_error.h"
#include "core/profiles/profile_json.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kUserExtension = ".tprofile";

std::optional<fs::path> environmentPath(const char* name)
{
    const char* value = std::getenv(name);
    if (!value || !*value) return std::nullopt;
    return fs::path(value);
}

/// "Tamlo" in the folder where the desktop keeps a user's application data (XDG base directories).
fs::path findUserRoot()
{
    if (const auto given = environmentPath("TAMLO_USER_DIR")) return *given;
    if (const auto data = environmentPath("XDG_DATA_HOME")) return *data / "Tamlo";
    if (const auto home = environmentPath("HOME")) return *home / ".local" / "share" / "Tamlo";
    return fs::path("Tamlo");
}

bool staysInFolder(std::string_view name)
{
    return !name.empty() && name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos &&
           name.find("..") == std::string_view::npos;
}

std::string bundledKey(ProfileStore::Kind kind, const std::string& name)
{
    return std::string(ProfileStore::rawText(kind)) + "/" + name + ".json";
}

std::optional<std::string> readIfThere(const fs::path& path)
{
    std::error_code ignored; // a path that can't be looked at is one that isn't there
    if (!fs::is_regular_file(path, ignored)) return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (file) text << file.rdbuf();
    if (!file || file.bad()) throw TamloError::io("can't read the profile " + path.string());
    return std::move(text).str();
}

/// The text under a key of a JSON object, or nothing.
std::string textOf(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool isRenderable(ProfileStore::Kind kind, const Json& profile)
{
    constexpr std::array<std::string_view, 6> kFilmTypes{"color",   "bw",        "slide",
                                                         "instant", "collodion", "tricolor"};
    constexpr std::array<std::string_view, 4> kPaperKinds{"silver", "scan", "repro", "plate"};
    if (kind == ProfileStore::Kind::films)
        return std::ranges::find(kFilmTypes, textOf(profile, "type")) != kFilmTypes.end();
    if (kind == ProfileStore::Kind::papers)
        return std::ranges::find(kPaperKinds, textOf(profile, "kind")) != kPaperKinds.end();
    return true;
}

template <typename Profile>
Profile decodeNamed(const ProfileStore& store, ProfileStore::Kind kind, const std::string& name)
{
    const std::string text = store.data(kind, name);
    try {
        return ProfileJSON::decode<Profile>(text);
    } catch (const DecodeError& error) {
        throw ProfileError::invalid(std::string(ProfileStore::rawText(kind)) + "/" + name + ": " +
                                    error.what());
    }
}

} // namespace

const ProfileStore& ProfileStore::shared()
{
    static const ProfileStore store;
    return store;
}

ProfileStore::ProfileStore(std::optional<fs::path> overrideRoot)
    : overrideRoot_(std::move(overrideRoot)), userRoot_(findUserRoot())
{
    if (overrideRoot_) return;
    std::error_code ignored;
    const auto given = environmentPath("TAMLO_PROFILES");
    if (given && fs::exists(*given, ignored)) overrideRoot_ = given;
}

std::string_view ProfileStore::rawText(Kind kind)
{
    constexpr std::array<std::string_view, 5> kTexts{"films", "lenses", "papers", "presets", "filters"};
    return kTexts[static_cast<std::size_t>(kind)];
}

fs::path ProfileStore::userFile(Kind kind, const std::string& name) const
{
    return userRoot_ / "profiles" / rawText(kind) / (name + std::string(kUserExtension));
}

std::optional<std::string> ProfileStore::find(Kind kind, const std::string& name) const
{
    if (!staysInFolder(name)) return std::nullopt;
    const std::string key = bundledKey(kind, name);
    if (overrideRoot_)
        if (auto text = readIfThere(*overrideRoot_ / key)) return text;
    const auto carried = BundledProfiles::files().find(key);
    if (carried != BundledProfiles::files().end()) return std::string(carried->second);
    return readIfThere(userFile(kind, name));
}

std::string ProfileStore::data(Kind kind, const std::string& name) const
{
    std::optional<std::string> text = find(kind, name);
    if (!text) throw ProfileError::notFound(std::string(rawText(kind)), name, list(kind));
    return *std::move(text);
}

FilmProfile ProfileStore::film(const std::string& name) const
{
    return decodeNamed<FilmProfile>(*this, Kind::films, name);
}

LensProfile ProfileStore::lens(const std::string& name) const
{
    return decodeNamed<LensProfile>(*this, Kind::lenses, name);
}

PaperProfile ProfileStore::paper(const std::string& name) const
{
    return decodeNamed<PaperProfile>(*this, Kind::papers, name);
}

FilterProfile ProfileStore::filterProfile(const std::string& name) const
{
    return decodeNamed<FilterProfile>(*this, Kind::filters, name);
}

bool ProfileStore::isOffered(Kind kind, const std::string& name, bool builtIn) const
{
    // A file that can't be read or parsed is no failure of the list: it is just not offered.
    try {
        const std::optional<std::string> text = find(kind, name);
        if (!text) return false;
        const Json profile = parseJsonText(*text);
        if (!profile.is_object()) return false;
        const auto hidden = profile.find("hidden");
        if (hidden != profile.end() && hidden->is_boolean() && hidden->get<bool>()) return false;
        return builtIn || isRenderable(kind, profile);
    } catch (const DecodeError&) {
        return false;
    } catch (const TamloError&) {
        return false;
    }
}

std::vector<std::string> ProfileStore::list(Kind kind, bool includeHidden) const
{
    const std::string folder = std::string(rawText(kind)) + "/";
    constexpr std::string_view kJson = ".json";
    std::set<std::string> builtIn;
    for (const auto& [key, text] : BundledProfiles::files())
        if (key.starts_with(folder))
            builtIn.emplace(key.substr(folder.size(), key.size() - folder.size() - kJson.size()));

    std::set<std::string> names = builtIn;
    std::error_code none; // without a folder of his own the user has no profiles
    for (const fs::directory_entry& entry : fs::directory_iterator(userFile(kind, "").parent_path(), none))
        if (entry.path().extension() == kUserExtension && staysInFolder(entry.path().stem().string()))
            names.insert(entry.path().stem().string());

    std::vector<std::string> out;
    for (const std::string& name : names)
        if (includeHidden || isOffered(kind, name, builtIn.contains(name))) out.push_back(name);
    return out;
}

std::optional<std::string> ProfileStore::nearestName(Kind kind, std::string_view name) const
{
    return nearestText(name, list(kind));
}

std::string ProfileStore::defaultPaperName(const FilmProfile& film)
{
    if (film.isCollodion()) return "ambrotype";
    if (film.isTricolor()) return "scan_film";
    return film.isBW() ? "bw_neutral" : "color_scan";
}

} // namespace tamlo
