#include "core/profiles/catalogue/profile_store.h"

#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/catalogue_groups.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/nearest_text.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/formats/profile_json.h"
#include "core/text/bundled_profiles.h"
#include "core/text/loc.h"
#include "platform/environment.h"
#include "platform/unicode.h"
#include "platform/user_folder.h"

#include <algorithm>
#include <array>
#include <set>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kUserExtension = ".tprofile";
constexpr const char* kHiddenFlag = "hidden:";
constexpr const char* kRenderableFlag = "renderable:";

std::string bundledKey(ProfileKind kind, const std::string& name)
{
    return std::string(rawText(kind)) + "/" + name + ".json";
}

/// Names of the carried profiles of a kind, sorted.
std::vector<std::string> bundledNames(ProfileKind kind)
{
    const std::string folder = std::string(rawText(kind)) + "/";
    constexpr std::string_view kJson = ".json";
    std::vector<std::string> names;
    for (const auto& [key, text] : BundledProfiles::files())
        if (key.starts_with(folder))
            names.emplace_back(key.substr(folder.size(), key.size() - folder.size() - kJson.size()));
    return names;
}

template <std::size_t N>
bool isAmong(const std::array<std::string_view, N>& texts, const Json& profile, const char* key)
{
    return std::ranges::find(texts, stringValue(memberOf(profile, key)).value_or("")) != texts.end();
}

template <typename Profile>
Profile decodeNamed(const ProfileStore& store, ProfileStore::Kind kind, const std::string& name)
{
    const std::string text = store.data(kind, name);
    try {
        return ProfileJSON::decode<Profile>(text);
    } catch (const DecodeError& error) {
        throw ProfileError::invalid(std::string(rawText(kind)) + "/" + name + ": " + error.what());
    }
}

} // namespace

ProfileStore& ProfileStore::shared()
{
    static ProfileStore store;
    return store;
}

ProfileStore::ProfileStore(std::optional<Path> overrideRoot)
    : overrideRoot_(std::move(overrideRoot)), userRoot_(platform::userFolder())
{
    if (overrideRoot_) return;
    std::error_code ignored;
    const auto given = platform::environmentVariable("TAMLO_PROFILES");
    if (given && !given->empty() && fs::exists(*given, ignored)) overrideRoot_ = *given;
}

fs::path ProfileStore::trashFolder(Kind kind) const
{
    return userRoot_ / "trash" / rawText(kind);
}

fs::path ProfileStore::userFile(Kind kind, const std::string& name) const
{
    if (kind == Kind::presets)
        return userRoot_ / "presets" / (name + "." + std::string(PresetSchema::fileExtension));
    return userRoot_ / "profiles" / rawText(kind) / (name + std::string(kUserExtension));
}

std::optional<std::string> ProfileStore::find(Kind kind, const std::string& name) const
{
    if (!UserFiles::staysInFolder(name)) return std::nullopt;
    const std::string key = bundledKey(kind, name);
    if (overrideRoot_)
        if (auto text = UserFiles::readIfThere(*overrideRoot_ / key)) return text;
    const auto carried = BundledProfiles::files().find(key);
    if (carried != BundledProfiles::files().end()) return std::string(carried->second);
    return UserFiles::readIfThere(userFile(kind, name));
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

bool ProfileStore::isBuiltin(Kind kind, const std::string& name) const
{
    return BundledProfiles::files().contains(bundledKey(kind, name));
}

/// What a profile says of itself; false for one that can't be read.
template <typename Judge>
bool ProfileStore::flag(const char* flag, Kind kind, const std::string& name, Judge&& judge) const
{
    return flags_.flag(flag + bundledKey(kind, name), [&] {
        try {
            const std::optional<std::string> text = find(kind, name);
            const Json profile = text ? parseJsonText(*text) : Json();
            return profile.is_object() && judge(profile);
        } catch (const DecodeError&) {
            return false;
        } catch (const TamloError&) {
            return false;
        }
    });
}

bool ProfileStore::isMarkedHidden(Kind kind, const std::string& name) const
{
    return flag(kHiddenFlag, kind, name,
                [](const Json& profile) { return boolValue(memberOf(profile, "hidden")).value_or(false); });
}

bool ProfileStore::isRenderable(Kind kind, const std::string& name) const
{
    return flag(kRenderableFlag, kind, name, [&](const Json& profile) {
        if (isBuiltin(kind, name)) return true;
        if (kind == Kind::films) return isAmong(kSupportedFilmTypes, profile, "type");
        // A paper that doesn't say is one for the enlarger, as the carried alternative processes are.
        if (kind == Kind::papers)
            return memberOf(profile, "kind").is_null() || isAmong(kSupportedPaperKinds, profile, "kind");
        return true;
    });
}

void ProfileStore::forget(Kind kind, const std::string& name)
{
    for (const char* flag : {kHiddenFlag, kRenderableFlag}) flags_.forget(flag + bundledKey(kind, name));
}

std::vector<std::string> ProfileStore::list(Kind kind, bool includeHidden) const
{
    std::vector<std::string> out;
    if (kind == Kind::presets) {
        for (const PresetEntry& entry : presetEntries(includeHidden)) out.push_back(entry.id);
        return out;
    }
    const std::vector<std::string> carried = bundledNames(kind);
    std::set<std::string> names(carried.begin(), carried.end());
    std::error_code none; // without a folder of his own the user has no profiles
    for (const fs::directory_entry& entry : fs::directory_iterator(userFile(kind, "").parent_path(), none))
        if (entry.path().extension() == kUserExtension && entry.is_regular_file(none) &&
            UserFiles::staysInFolder(entry.path().stem().string()))
            names.insert(entry.path().stem().string());
    for (const std::string& name : names)
        if (includeHidden || (isRenderable(kind, name) && !isMarkedHidden(kind, name))) out.push_back(name);
    return out;
}

bool ProfileStore::offers(Kind kind, const std::string& name) const
{
    if (kind == Kind::presets) {
        const auto ids = listPresets();
        return std::ranges::find(ids, name) != ids.end();
    }
    return UserFiles::staysInFolder(name) && isRenderable(kind, name) && !isMarkedHidden(kind, name);
}

std::vector<std::string> ProfileStore::filmsSorted() const
{
    struct Key {
        int group;
        std::string brand, name, id;
        auto operator<=>(const Key&) const = default;
    };
    std::vector<Key> films;
    for (const std::string& id : list(Kind::films)) {
        try {
            const FilmProfile profile = film(id);
            const std::string name = Loc::pick(profile.name.value_or(id), profile.nameEn);
            films.push_back({CatalogueGroups::ofFilm(profile).groupOrder,
                             platform::naturalSortKey(CatalogueGroups::filmBrand(name)),
                             platform::naturalSortKey(name), id});
        } catch (const ProfileError&) {
            continue; // a user's file that is no film is not offered
        } catch (const TamloError&) {
            continue;
        }
    }
    std::ranges::sort(films);
    std::vector<std::string> out;
    for (Key& key : films) out.push_back(std::move(key.id));
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
