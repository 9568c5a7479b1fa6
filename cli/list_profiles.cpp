#include "cli/list_profiles.h"

#include "cli/catalogue.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace tamlo::cli {
namespace {

using Kind = ProfileStore::Kind;

struct Row {
    std::string id, type, name;
};

Row describe(const ProfileStore& store, Kind kind, const std::string& id)
{
    // English first: the program's own messages on the command line are English.
    const auto named = [&](const auto& profile, const std::string& type) {
        return Row{id, type, profile.nameEn.value_or(profile.name.value_or(id))};
    };
    if (kind == Kind::films) {
        const FilmProfile film = store.film(id);
        return named(film, film.type);
    }
    if (kind == Kind::papers) {
        const PaperProfile paper = store.paper(id);
        return named(paper, paper.type.value_or(paper.kind.value_or("")));
    }
    if (kind == Kind::lenses) return named(store.lens(id), "");
    return named(store.filterProfile(id), "");
}

} // namespace

void listProfiles(const ListArguments& arguments, const ProfileStore& store, std::ostream& out)
{
    const Kind kind = kindNamed(arguments.kind);
    std::vector<Row> rows;
    for (const std::string& id : store.list(kind)) rows.push_back(describe(store, kind, id));

    if (arguments.json) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Row& row : rows) {
            nlohmann::ordered_json entry{{"id", row.id}, {"name", row.name}};
            if (!row.type.empty()) entry["type"] = row.type;
            list.push_back(std::move(entry));
        }
        out << list.dump(2) << '\n';
        return;
    }
    std::size_t idWidth = 0, typeWidth = 0;
    for (const Row& row : rows) {
        idWidth = std::max(idWidth, row.id.size());
        typeWidth = std::max(typeWidth, row.type.size());
    }
    for (const Row& row : rows) {
        out << row.id << std::string(idWidth - row.id.size() + 2, ' ');
        if (typeWidth > 0) out << row.type << std::string(typeWidth - row.type.size() + 2, ' ');
        out << row.name << '\n';
    }
}

void showProfile(const ShowArguments& arguments, const ProfileStore& store, std::ostream& out)
{
    const Kind kind = kindNamed(arguments.kind);
    requireProfile(store, kind, arguments.id);
    const std::string text = store.data(kind, arguments.id);
    out << text;
    if (text.empty() || text.back() != '\n') out << '\n';
}

} // namespace tamlo::cli
