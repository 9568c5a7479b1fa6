// ProfileFiles: the user's own films, lenses, papers and filters as files: taken in, copied, carried out,
// thrown away and brought back. A frame that names a profile keeps naming it when it has gone, and prints
// again when it is back.
#pragma once

#include "core/profiles/catalogue/preset_library.h"
#include "core/profiles/formats/profile_kind.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

struct DeletedProfile {
    ProfileKind kind = ProfileKind::films;
    std::string name;
    std::filesystem::path trash; ///< where it lies now
};

class ProfileFiles {
public:
    using Path = std::filesystem::path;

    explicit ProfileFiles(AppModel& model) : model_(model) {}

    /// Asks, naming the presets and counting the frames that use it; then it goes to the trash.
    void deleteProfile(ProfileKind kind, const std::string& name);
    /// The one deleted last comes back, under another name where its own has been taken since.
    void restoreLastDeletedProfile();
    /// What this session has deleted and not brought back; the last at the end.
    const std::vector<DeletedProfile>& deletedProfiles() const { return deleted_; }

    /// Takes a file in; asks where its name is taken. A preset is handed on to the presets' own import.
    void importProfile(const Path& file);
    /// All that is wrong with the file that was to be taken in last.
    const std::vector<std::string>& messages() const { return messages_; }
    /// A copy under a free name, of the program's profiles too. Returns that name.
    std::optional<std::string> duplicateProfile(ProfileKind kind, const std::string& name);
    /// Writes any profile to a file.
    void exportProfile(ProfileKind kind, const std::string& name, const Path& to);

    /// How many frames of the roll name a profile.
    std::size_t framesUsing(ProfileKind kind, const std::string& name) const;

private:
    struct Incoming {
        ProfileKind kind;
        std::string id, title, data;
    };

    std::string titleOf(ProfileKind kind, const std::string& name) const;
    void trash(ProfileKind kind, const std::string& name);
    void take(const Incoming& incoming, PresetConflict conflict);
    /// The catalogue has changed: lists and pictures follow.
    void changed();
    void fail(const std::exception& error);

    AppModel& model_;
    std::vector<DeletedProfile> deleted_;
    std::vector<std::string> messages_;
};

} // namespace tamlo
