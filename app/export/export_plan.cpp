#include "app/export/export_plan.h"

namespace tamlo::ExportPlan {

namespace fs = std::filesystem;

std::vector<std::string> exportFileNames(const ExportDraft& draft, const std::vector<FrameRef>& frames)
{
    const bool isName = draft.naming == ExportNaming::Mode::name;
    const fs::path nowhere = "/"; // names of one folder clash wherever it lies
    ExportNaming::Keys taken;
    const auto noFile = [](const fs::path&) { return false; };
    std::vector<std::string> names;
    for (const FrameRef& frame : frames) {
        const std::string stem = fs::path(frame->fileName()).stem().string();
        const std::string wanted =
            ExportNaming::fileName({draft.naming, stem, static_cast<std::int64_t>(names.size()) + 1,
                                    static_cast<std::int64_t>(frames.size()),
                                    isName ? draft.nameText : draft.customText, draft.ext()});
        const fs::path file = ExportNaming::freeName(nowhere / wanted, taken, noFile);
        taken.insert(ExportNaming::key(file));
        taken.insert(ExportNaming::key(ExportNaming::socialPath(file)));
        names.push_back(file.filename().string());
    }
    return names;
}

std::vector<ExportJob> jobs(const Project& project, const ExportDraft& draft, const std::vector<FrameID>& set,
                            const fs::path& folder)
{
    std::vector<FrameRef> frames;
    for (const FrameID& id : set)
        if (FrameRef frame = project.frame(id)) frames.push_back(std::move(frame));
    const std::vector<std::string> names = exportFileNames(draft, frames);
    std::vector<ExportJob> out;
    for (std::size_t i = 0; i < frames.size(); ++i) out.push_back({frames[i], folder / names[i], i + 1});
    return out;
}

std::vector<ExportJob> shard(const std::vector<ExportJob>& jobs, std::size_t k, std::size_t count)
{
    std::vector<ExportJob> out;
    for (std::size_t i = k - 1; i < jobs.size(); i += count) out.push_back(jobs[i]);
    return out;
}

} // namespace tamlo::ExportPlan
