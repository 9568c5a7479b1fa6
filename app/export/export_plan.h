// ExportPlan: which frame goes to which file. Names are settled for the whole set before the first frame is
// looked at, without asking the disk, so that every part of a run, and every repetition, has the same ones.
#pragma once

#include "app/export/export_draft.h"

#include <filesystem>
#include <vector>

namespace tamlo {

struct ExportJob {
    FrameRef frame;
    std::filesystem::path target;
    std::size_t place = 1; ///< in the set, from 1
};

namespace ExportPlan {

/// The file names of frames in the order of the set. Two of one run that are the same are told apart by a
/// number; so are names whose social copies are.
std::vector<std::string> exportFileNames(const ExportDraft& draft, const std::vector<FrameRef>& frames);

/// The jobs of a set, whose frames the project has.
std::vector<ExportJob> jobs(const Project& project, const ExportDraft& draft, const std::vector<FrameID>& set,
                            const std::filesystem::path& folder);

/// Every count-th job from the k-th on. Domain: 1 <= k <= count.
std::vector<ExportJob> shard(const std::vector<ExportJob>& jobs, std::size_t k, std::size_t count);

} // namespace ExportPlan
} // namespace tamlo
