#include "cli/develop_jobs.h"

#include "cli/usage_error.h"
#include "core/text/loc.h"

#include <algorithm>
#include <array>
#include <map>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

/// One file by two names: the same file on disk (hard and symbolic links too), or, where one does not exist
/// yet, the same place once links and dots are resolved.
bool sameFile(const fs::path& a, const fs::path& b)
{
    std::error_code ignored;
    if (fs::equivalent(a, b, ignored)) return true;
    const fs::path placeA = fs::weakly_canonical(fs::absolute(a), ignored);
    const fs::path placeB = fs::weakly_canonical(fs::absolute(b), ignored);
    return !placeA.empty() && placeA == placeB;
}

void checkOutputFile(const fs::path& output)
{
    std::error_code ignored;
    if (fs::is_directory(output, ignored))
        throw UsageError(T("cli.outputIsFolder", {{"file", output.string()}}));
    std::string extension = output.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    constexpr std::array known{".jpg", ".jpeg", ".png", ".tif", ".tiff"};
    if (std::find(known.begin(), known.end(), extension) == known.end())
        throw UsageError(T("cli.badExtension", {{"extension", extension.empty() ? "." : extension}}));
}

fs::path defaultOutput(const fs::path& input, const fs::path& folder)
{
    fs::path name = input.stem();
    name += "-tamlo.jpg";
    return folder / name;
}

} // namespace

std::vector<DevelopJob> planJobs(const DevelopArguments& arguments)
{
    if (arguments.output) {
        if (arguments.inputs.size() > 1)
            throw UsageError(T("cli.oneOutput", {{"count", arguments.inputs.size()}}));
        checkOutputFile(*arguments.output);
    }
    std::vector<DevelopJob> jobs;
    for (const fs::path& input : arguments.inputs)
        jobs.push_back({input, arguments.output ? *arguments.output
                                                : defaultOutput(input, arguments.outFolder.value_or(""))});

    std::map<fs::path, fs::path> takenBy;
    for (const DevelopJob& job : jobs) {
        for (const DevelopJob& other : jobs)
            if (sameFile(job.output, other.input))
                throw UsageError(
                    T("cli.overSource", {{"input", job.input.string()}, {"source", other.input.string()}}));
        std::error_code ignored;
        const fs::path place = fs::weakly_canonical(fs::absolute(job.output), ignored);
        const auto [taken, isNew] = takenBy.emplace(place, job.input);
        if (!isNew)
            throw UsageError(T("cli.sameOutput", {{"first", taken->second.string()},
                                                  {"second", job.input.string()},
                                                  {"file", job.output.string()}}));
    }
    return jobs;
}

} // namespace tamlo::cli
