#include "cli/catalogue.h"

#include "cli/usage_error.h"

#include <algorithm>

namespace tamlo::cli {

using Kind = ProfileStore::Kind;

ProfileStore::Kind kindNamed(const std::string& text)
{
    if (text == "film" || text == "films") return Kind::films;
    if (text == "lens" || text == "lenses") return Kind::lenses;
    if (text == "paper" || text == "papers") return Kind::papers;
    if (text == "filter" || text == "filters") return Kind::filters;
    if (text == "preset" || text == "presets") return Kind::presets;
    throw UsageError("there are films, lenses, papers, filters and presets, but no '" + text + "'");
}

void requireProfile(const ProfileStore& store, ProfileStore::Kind kind, const std::string& id)
{
    const std::vector<std::string> known = store.list(kind, true);
    if (std::find(known.begin(), known.end(), id) != known.end()) return;
    const std::string kinds(rawText(kind));
    const std::string one = kind == Kind::lenses ? "lens" : kinds.substr(0, kinds.size() - 1);
    std::string text = "there is no " + one + " '" + id + "'";
    if (const auto near = store.nearestName(kind, id)) text += "; did you mean " + *near + "?";
    throw UsageError(text + " (tamlo list " + kinds + " names all)");
}

} // namespace tamlo::cli
