// PresetFiles: the user's recipes as files: kept from what the rack shows, brought up to date, renamed,
// copied, thrown away, carried out of the program and in. What changes a file is a step of the history; what
// fails is told on the status line and leaves every file as it was.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;
class ProfileStore;
enum class PresetConflict;

class PresetFiles {
public:
    using Path = std::filesystem::path;
    using Blocks = PresetSchema::Blocks;

    explicit PresetFiles(AppModel& model) : model_(model) {}

    /// Asks for a name and saves what the rack shows.
    void savePresetPanel(const Blocks& blocks = PresetSchema::order());
    /// Asks where a preset of that id is there already.
    void savePreset(const std::string& name, const Blocks& blocks = PresetSchema::order());
    /// What the rack shows, into a preset that is there: its blocks and values, while its names, its notes
    /// and what this version does not know stay. One of the program's gets a file of the user's in front of
    /// it.
    void updatePresetFromCurrent(const std::string& id);
    void renamePresetPanel(const std::string& id);
    void renamePreset(const std::string& id, const std::string& name);
    /// Returns the id of the copy.
    std::optional<std::string> duplicatePreset(const std::string& id);
    /// Asks; then a user's preset goes to the trash, and one of the program's out of the list.
    void deletePreset(const std::string& id);
    /// Puts a hidden one into the list again.
    void showPreset(const std::string& id);
    /// to: a folder, or a file. Returns the file.
    std::optional<Path> exportPreset(const std::string& id, const Path& to);

    /// One file after the other, asking where an id is taken; those that were taken in are one step.
    void importPresets(const std::vector<Path>& files);
    /// An import still waits for an answer.
    bool isImporting() const { return import_ != nullptr; }
    /// What the last import found in its files, a line each, with the name of the file in front.
    const std::vector<std::string>& notes() const { return notes_; }

private:
    struct Import;

    ProcessSettings shownSettings() const;
    void write(const std::string& id, const std::string& name, const ProcessSettings& settings,
               const Blocks& blocks);
    void trash(const std::string& id, const std::string& title);
    void setHidden(const std::string& id, bool hidden);
    std::string titleOf(const std::string& id) const;
    Path fileOf(const std::string& id) const;
    void fail(const std::exception& error);

    void importNext();
    void importOne(const Path& file, const std::string& id, PresetConflict conflict);
    void endImport();

    AppModel& model_;
    std::shared_ptr<Import> import_;
    std::vector<std::string> notes_;
};

} // namespace tamlo
