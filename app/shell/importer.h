// Importer: files and folders become frames at the end of the roll. Disks are read in the background; the
// roll changes once, in one step.
#pragma once

#include "app/project/intake.h"
#include "app/shell/background.h"

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

class Importer {
public:
    struct Outcome {
        Intake::Report report;
        std::vector<std::string> refused; ///< names of what was given by name and is no picture
        std::vector<std::string> missing; ///< given by name, and not there
    };
    /// Nothing when a question was cancelled.
    using Done = std::function<void(std::optional<Outcome>)>;

    explicit Importer(AppModel& model);

    /// Takes in files and the pictures below folders. Asks what to take of shots that lie there twice.
    void addFiles(std::vector<std::string> files, Done done = {});
    /// Files that the background has fingerprinted so far; 0 when nothing is under way.
    std::size_t filesRead() const { return *filesRead_; }

private:
    void ingest(Intake::Gathered gathered, std::optional<FolderScan::PairChoice> choice, Done done);
    void append(std::vector<Frame> frames);

    AppModel& model_;
    std::shared_ptr<std::atomic<std::size_t>> filesRead_ = std::make_shared<std::atomic<std::size_t>>(0);
    Background background_;
};

} // namespace tamlo
