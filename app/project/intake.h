// Intake: files and folders on their way into a roll. What was dropped becomes a list of pictures; pictures
// that the roll has already, by path or by content, are counted and left out; the others become frames. Reads
// files: background jobs, on copies of the roll.
#pragma once

#include "app/project/folder_scan.h"
#include "app/project/roll.h"

#include <functional>
#include <string>
#include <vector>

namespace tamlo::Intake {

/// Pictures found at once; a folder that holds more is a mistake as a rule.
inline constexpr std::size_t kMostFiles = 20'000;

struct Gathered {
    std::vector<std::string> files;   ///< standardised, each once
    std::vector<std::string> refused; ///< names of what was given by name and is no picture
    std::size_t refusedInFolders = 0;
    std::vector<std::string> missing; ///< given by name, and not there
    bool limitHit = false;

    /// How many files were passed over because they are no pictures.
    std::size_t refusedCount() const { return refused.size() + refusedInFolders; }
};
/// Files and the pictures below folders, in the order in which they were given. Asks the checkpoint.
Gathered gather(const std::vector<std::string>& dropped, std::size_t limit = kMostFiles);

struct Ingested {
    std::vector<Frame> frames; ///< new ones, in the order of the files
    std::size_t already = 0;   ///< files that the roll, or an earlier file, has
};
/// projectDir: the folder of the project's file, or empty. progress: told after each file how many are done.
/// Asks the checkpoint between files.
Ingested ingest(const std::vector<std::string>& files, const Roll& roll,
                const std::filesystem::path& projectDir,
                const std::function<void(std::size_t done)>& progress = {});

struct Report {
    std::size_t added = 0, already = 0;
    std::size_t pairs = 0; ///< of which a choice was made
    FolderScan::PairChoice choice = FolderScan::PairChoice::both;
    std::size_t refused = 0;
    bool limitHit = false;
};
/// One line for the user, parts joined by " · ".
std::string reportText(const Report& report);

} // namespace tamlo::Intake
