#include "cli/catalogue.h"

#include "cli/messages.h"
#include "cli/usage_error.h"

#include <algorithm>

namespace tamlo::cli {

namespace {

using Kind = ProfileStore::Kind;

struct KindWords {
    Kind kind;
    const char* one;
    const char* all;
};

constexpr KindWords kKindWords[] = {{Kind::films, "film", "films"},
                                    {Kind::lenses, "lens", "lenses"},
                                    {Kind::papers, "paper", "papers"},
                                    {Kind::filters, "filter", "filters"},
                                    {Kind::presets, "preset", "presets"}};

std::vector<std::string> kindWords(const char* KindWords::*form)
{
    std::vector<std::string> words;
    for (const KindWords& row : kKindWords) words.emplace_back(row.*form);
    return words;
}

} // namespace

std::vector<std::string> singularKinds()
{
    return kindWords(&KindWords::one);
}

std::vector<std::string> pluralKinds()
{
    return kindWords(&KindWords::all);
}

ProfileStore::Kind kindNamed(const std::string& text)
{
    for (const KindWords& row : kKindWords)
        if (text == row.one || text == row.all) return row.kind;
    throw UsageError(T("cli.noSuchKind", {{"list", joined(pluralKinds(), T("common.and"))}, {"kind", text}}));
}

void requireProfile(const ProfileStore& store, ProfileStore::Kind kind, const std::string& id)
{
    const std::vector<std::string> known = store.list(kind, true);
    if (std::find(known.begin(), known.end(), id) != known.end()) return;
    const std::string kinds(rawText(kind));
    std::string text = T("cli.noSuch." + kinds, {{"id", id}});
    if (const auto near = store.nearestName(kind, id)) text += T("cli.didYouMean", {{"id", *near}});
    throw UsageError(text + T("cli.listHint", {{"kinds", kinds}}));
}

} // namespace tamlo::cli
