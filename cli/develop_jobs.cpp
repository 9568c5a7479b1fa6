#include "cli/develop_jobs.h"

#include "cli/input_files.h"
#include "cli/output_names.h"
#include "cli/usage_error.h"
#include "core/io/decode_rules.h"
#include "core/text/loc.h"
#include "platform/console.h"
#include "platform/unicode.h"

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <set>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

/// A file's place once links and dots are resolved, also of one that does not exist yet.
fs::path placeOf(const fs::path& file)
{
    std::error_code ignored;
    return fs::weakly_canonical(fs::absolute(file), ignored);
}

/// The files of a run by their places, and by what lies there: one file may have two names on disk.
class Sources {
public:
    explicit Sources(const std::vector<fs::path>& inputs) : inputs_(inputs)
    {
        for (const fs::path& input : inputs) byPlace_.emplace(placeOf(input), input);
    }

    /// The source that a file is, under whatever name.
    std::optional<fs::path> sourceAt(const fs::path& file) const
    {
        const auto same = byPlace_.find(placeOf(file));
        if (same != byPlace_.end()) return same->second;
        std::error_code ignored;
        if (!fs::exists(file, ignored) || fs::hard_link_count(file, ignored) < 2) return std::nullopt;
        for (const fs::path& input : inputs_)
            if (fs::equivalent(file, input, ignored)) return input;
        return std::nullopt;
    }

private:
    const std::vector<fs::path>& inputs_;
    std::map<fs::path, fs::path> byPlace_;
};

void checkExtension(const fs::path& output)
{
    const std::string extension = platform::lowerCased(output.extension().string());
    constexpr std::array known{".jpg", ".jpeg", ".png", ".tif", ".tiff"};
    if (std::find(known.begin(), known.end(), extension) == known.end())
        throw UsageError(T("cli.badExtension", {{"extension", extension.empty() ? "." : extension}}));
}

/// What -o names.
DevelopJob jobTo(const fs::path& output, const std::vector<fs::path>& inputs)
{
    if (inputs.size() > 1) throw UsageError(T("cli.oneOutput", {{"count", inputs.size()}}));
    if (output == kStandardOutput) {
        if (platform::outputIsTerminal()) throw UsageError(T("cli.outputIsTerminal"));
        const std::string name = "tamlo-" + std::to_string(std::random_device()()) + ".jpg";
        return {inputs.front(), fs::temp_directory_path() / name, true};
    }
    std::error_code ignored;
    if (fs::is_directory(output, ignored))
        throw UsageError(T("cli.outputIsFolder", {{"file", output.string()}}));
    checkExtension(output);
    return {inputs.front(), output};
}

/// A folder to write to is made where its parent is there, so that a slip makes no tree.
void checkOutFolder(const fs::path& folder)
{
    std::error_code ignored;
    const fs::path parent = (folder.has_filename() ? folder : folder.parent_path()).parent_path();
    if (parent.empty() || fs::exists(folder, ignored) || fs::exists(parent, ignored)) return;
    throw UsageError(T("cli.noParent", {{"folder", folder.string()}, {"parent", parent.string()}}));
}

std::vector<DevelopJob> jobsByName(const std::vector<fs::path>& inputs, const DevelopArguments& arguments,
                                   const DevelopChoices& choices)
{
    std::vector<DevelopJob> jobs;
    for (const fs::path& input : inputs) {
        const PictureInRun picture{input, jobs.size() + 1, inputs.size()};
        const fs::path name = outputName(arguments.name.value_or(kUsualName), picture, choices);
        checkExtension(name);
        jobs.push_back({input, arguments.outFolder.value_or("") / name});
    }
    return jobs;
}

/// Pictures of one shot, as a RAW file with its JPEG, would take one name: the RAW file has it, and the
/// others add what they are.
void tellPairsApart(std::vector<DevelopJob>& jobs)
{
    std::map<fs::path, std::vector<DevelopJob*>> byPlace;
    for (DevelopJob& job : jobs) byPlace[placeOf(job.output)].push_back(&job);
    for (auto& [place, group] : byPlace) {
        std::set<std::string> extensions;
        for (const DevelopJob* job : group) extensions.insert(job->input.extension().string());
        if (group.size() < 2 || extensions.size() < group.size()) continue;
        const auto keeps =
            std::ranges::find_if(group, [](const DevelopJob* j) { return ImageLoader::isRAW(j->input); });
        const DevelopJob* keeper = keeps == group.end() ? group.front() : *keeps;
        for (DevelopJob* job : group) {
            if (job == keeper) continue;
            const std::string extension = platform::lowerCased(job->input.extension().string());
            fs::path name = job->output.stem();
            name += extension.empty() ? "-2" : "-" + extension.substr(1);
            name += job->output.extension();
            job->output.replace_filename(name);
        }
    }
}

/// A picture that only a folder brings and that another's print stands at is an earlier print, no source.
void dropEarlierPrints(std::vector<DevelopJob>& jobs, const std::vector<fs::path>& named)
{
    std::set<fs::path> prints, asked;
    for (const DevelopJob& job : jobs) prints.insert(placeOf(job.output));
    for (const fs::path& input : named) asked.insert(placeOf(input));
    std::erase_if(jobs, [&](const DevelopJob& job) {
        const fs::path place = placeOf(job.input);
        return prints.contains(place) && !asked.contains(place);
    });
}

void checkConflicts(const std::vector<DevelopJob>& jobs, const std::vector<fs::path>& inputs)
{
    const Sources sources(inputs);
    std::map<fs::path, fs::path> takenBy;
    for (const DevelopJob& job : jobs) {
        if (const auto source = sources.sourceAt(job.output))
            throw UsageError(
                T("cli.overSource", {{"input", job.input.string()}, {"source", source->string()}}));
        const auto [taken, isNew] = takenBy.emplace(placeOf(job.output), job.input);
        if (!isNew)
            throw UsageError(T("cli.sameOutput", {{"first", taken->second.string()},
                                                  {"second", job.input.string()},
                                                  {"file", job.output.string()},
                                                  {"fields", "{folder}, {source}, {n}"}}));
    }
}

} // namespace

std::vector<DevelopJob> planJobs(const DevelopArguments& arguments, const DevelopChoices& choices)
{
    std::vector<fs::path> inputs = expandedInputs(arguments.inputs);
    std::vector<DevelopJob> jobs;
    if (arguments.output) {
        jobs.push_back(jobTo(*arguments.output, inputs));
    } else {
        if (arguments.outFolder) checkOutFolder(*arguments.outFolder);
        jobs = jobsByName(inputs, arguments, choices);
        tellPairsApart(jobs);
        dropEarlierPrints(jobs, arguments.inputs);
    }
    std::vector<fs::path> sources;
    for (const DevelopJob& job : jobs) sources.push_back(job.input);
    checkConflicts(jobs, sources);
    return jobs;
}

} // namespace tamlo::cli
