// ProfileStore: the catalogue of films, lenses, papers and filters: a set carried inside the program, and
// what the user adds below his own root. A name is looked up in the override folder (for development), then
// in the carried set, then among the user's: a user's profile never hides one of the program's.
#pragma once

#include "core/profiles/film_profile.h"
#include "core/profiles/filter_profile.h"
#include "core/profiles/lens_profile.h"
#include "core/profiles/paper_profile.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

class ProfileStore {
public:
    enum class Kind { films, lenses, papers, presets, filters };

    /// The catalogue of the process, made at the first call from the environment of that moment.
    static const ProfileStore& shared();

    /// overrideRoot: folder of kind/name.json that wins over the carried set; absent takes the path of
    /// TAMLO_PROFILES where that exists. The user's root is that of TAMLO_USER_DIR, else "Tamlo" in the
    /// user's data folder.
    explicit ProfileStore(std::optional<std::filesystem::path> overrideRoot = std::nullopt);

    /// Raw text of a kind: the name of the case.
    static std::string_view rawText(Kind kind);
    const std::optional<std::filesystem::path>& overrideRoot() const { return overrideRoot_; }
    const std::filesystem::path& userRoot() const { return userRoot_; }

    /// JSON text of a profile.
    /// Errors: ProfileError notFound, also for a name that would leave its folder; TamloError io.
    std::string data(Kind kind, const std::string& name) const;

    /// Decoded profiles. Errors: those of data; ProfileError invalid naming the key and what was expected.
    FilmProfile film(const std::string& name) const;
    LensProfile lens(const std::string& name) const;
    PaperProfile paper(const std::string& name) const;
    FilterProfile filterProfile(const std::string& name) const;

    /// Sorted names of the carried and the user's profiles. Without includeHidden, those marked hidden and
    /// user profiles of a sort that the program can't render are left out.
    std::vector<std::string> list(Kind kind, bool includeHidden = false) const;

    /// The nearest listed name, for a "did you mean"; nothing when none is near.
    std::optional<std::string> nearestName(Kind kind, std::string_view name) const;

    /// The paper that a frame on this film starts with.
    static std::string defaultPaperName(const FilmProfile& film);

private:
    std::optional<std::string> find(Kind kind, const std::string& name) const;
    std::filesystem::path userFile(Kind kind, const std::string& name) const;
    bool isOffered(Kind kind, const std::string& name, bool builtIn) const;

    std::optional<std::filesystem::path> overrideRoot_;
    std::filesystem::path userRoot_;
};

} // namespace tamlo
