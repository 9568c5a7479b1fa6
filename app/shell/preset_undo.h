// PresetUndo: how a change of the user's preset files goes back and forth in the history. A step remembers
// what each file held before and after. Putting one of the two back never destroys what has come since: a
// file that holds something else by then goes to the trash first.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

namespace PresetUndo {

struct FileChange {
    std::filesystem::path file;
    std::optional<std::string> before, after; ///< absent: no such file
};

/// Records a step that stands for changes already made.
void record(AppModel& model, std::string name, std::vector<FileChange> changes);

/// The text of a file, or nothing where none can be read.
std::optional<std::string> textOf(const std::filesystem::path& file);

} // namespace PresetUndo

} // namespace tamlo
