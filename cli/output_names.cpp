#include "cli/output_names.h"

#include "cli/messages.h"
#include "cli/usage_error.h"
#include "core/profiles/catalogue/user_files.h"

#include <algorithm>
#include <utility>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

using Fields = std::vector<std::pair<std::string, std::string>>;

Fields fieldsOf(const PictureInRun& picture, const DevelopChoices& choices)
{
    std::string number = std::to_string(picture.n);
    number.insert(0, std::to_string(picture.total).size() - number.size(), '0');
    std::string source = picture.input.extension().string();
    if (!source.empty()) source.erase(0, 1);
    std::error_code ignored;
    const fs::path folder =
        fs::weakly_canonical(fs::absolute(picture.input), ignored).parent_path().filename();
    return {{"stem", picture.input.stem().string()},
            {"source", source},
            {"folder", folder.string()},
            {"film", choices.film},
            {"lens", choices.lens},
            {"paper", choices.paper},
            {"preset", choices.preset},
            {"n", number},
            {"ext", "jpg"}};
}

UsageError unknownField(const std::string& field, const Fields& fields)
{
    std::vector<std::string> known;
    for (const auto& [name, value] : fields) known.push_back("{" + name + "}");
    return UsageError(
        T("cli.badField", {{"field", "{" + field + "}"}, {"list", joined(known, T("common.and"))}}));
}

} // namespace

std::string outputName(const std::string& pattern, const PictureInRun& picture, const DevelopChoices& choices)
{
    const Fields fields = fieldsOf(picture, choices);
    std::string name;
    for (std::size_t at = 0; at < pattern.size();) {
        if (pattern[at] != '{') {
            name += pattern[at++];
            continue;
        }
        const std::size_t close = pattern.find('}', at);
        const std::string field = pattern.substr(at + 1, close == std::string::npos ? close : close - at - 1);
        const auto found = std::ranges::find(fields, field, &Fields::value_type::first);
        if (close == std::string::npos || found == fields.end()) throw unknownField(field, fields);
        name += found->second;
        at = close + 1;
    }
    const bool isPlain = !name.empty() && name != "." && name != ".." &&
                         name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
    if (!isPlain) throw UsageError(T("cli.nameLeaves", {{"name", name}}));
    return name;
}

} // namespace tamlo::cli
