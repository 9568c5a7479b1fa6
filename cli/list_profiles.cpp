#include "cli/list_profiles.h"

#include "cli/catalogue.h"
#include "cli/columns.h"
#include "cli/messages.h"
#include "cli/option_help.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/catalogue_groups.h"
#include "core/profiles/catalogue/profile_ground.h"
#include "core/profiles/formats/profile_error.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <ostream>
#include <tuple>

namespace tamlo::cli {
namespace {

using Kind = ProfileKind;
using CatalogueGroups::Place;
using nlohmann::ordered_json;

struct Row {
    Place place;
    std::string id, group, name;
    std::string speed, paper; ///< of a film: ISO, and the paper that a frame on it starts with
    std::string ground;       ///< on what its numbers stand
    ordered_json more;        ///< further keys of the JSON form
};

template <typename Profile>
Row rowOf(const Profile& profile, const std::string& id, const Place& place)
{
    Row row{place,
            id,
            place.group.empty() ? "" : T(std::string(place.group)),
            titleOf(profile, id),
            "",
            "",
            "",
            ordered_json::object()};
    if constexpr (requires { profile.fidelity; })
        if (profile.fidelity) row.more["fidelity"] = *profile.fidelity;
    if constexpr (requires { std::string(profile.type); })
        row.more["type"] = profile.type;
    else if constexpr (requires { profile.type; })
        if (profile.type) row.more["type"] = *profile.type;
    return row;
}

Row presetRow(const PresetDocument& document)
{
    const auto& groups = PresetGroups::order();
    const auto group = std::ranges::find(groups, document.group());
    Row row{{"", static_cast<int>(group - groups.begin()), 0},
            document.id(),
            PresetGroups::title(document.group(), document.groupEn()),
            document.name(),
            "",
            "",
            "",
            ordered_json::object()};
    row.more = {{"order", document.order()},
                {"film", document.stock()},
                {"lens", document.lens()},
                {"paper", document.paper()},
                {"builtin", document.builtin}};
    return row;
}

Row describe(const ProfileStore& store, Kind kind, const std::string& id)
{
    switch (kind) {
    case Kind::films: {
        const FilmProfile film = store.film(id);
        Row row = rowOf(film, id, CatalogueGroups::ofFilm(film));
        const std::optional<int> speed = filmSpeed(store, id);
        if (speed) row.more["iso"] = *speed;
        row.speed = speed ? "ISO " + std::to_string(*speed) : "";
        row.paper = defaultPaper(film);
        row.more["paper"] = row.paper;
        return row;
    }
    case Kind::lenses:
        return rowOf(store.lens(id), id, CatalogueGroups::ofLens(id));
    case Kind::papers: {
        const PaperProfile paper = store.paper(id);
        return rowOf(paper, id, CatalogueGroups::ofPaper(paper, id));
    }
    case Kind::filters: {
        const FilterProfile filter = store.filterProfile(id);
        return rowOf(filter, id, CatalogueGroups::ofFilter(filter, id));
    }
    case Kind::presets:
        break;
    }
    return presetRow(store.presetDocument(id));
}

/// What the note of a profile as a whole says of its numbers.
void tellGround(const ProfileStore& store, Kind kind, Row& row)
{
    if (kind == Kind::presets) return;
    constexpr const char* kTexts[] = {"ground.dataSheet", "ground.published", "ground.derived",
                                      "ground.reference", "ground.estimate"};
    const auto profile = nlohmann::json::parse(store.data(kind, row.id), nullptr, false);
    if (!profile.is_object() || !profile.contains("source_note") || !profile["source_note"].is_string())
        return;
    const std::string note = profile["source_note"];
    const auto ground = groundOf(note);
    if (ground) row.ground = T(kTexts[static_cast<std::size_t>(*ground)]);
    row.more["ground"] = note;
}

/// The catalogue in the order of a picker. One file of the user that can't be read hides no other.
std::vector<Row> rowsOf(const ProfileStore& store, Kind kind)
{
    std::vector<Row> rows;
    const auto tell = [](const std::string& id, const std::exception& error) {
        tellNote(id + ": " + ErrorWords::of(error));
    };
    for (const std::string& id : kind == Kind::films ? store.filmsSorted() : store.list(kind)) {
        try {
            rows.push_back(describe(store, kind, id));
            tellGround(store, kind, rows.back());
        } catch (const ProfileError& error) {
            tell(id, error);
        } catch (const PresetError& error) {
            tell(id, error);
        } catch (const TamloError& error) {
            tell(id, error);
        }
    }
    if (kind == Kind::films) return rows; // sorted by the store
    const auto key = [](const Row& row) {
        const double order = row.more.value("order", 0.0);
        return std::tuple(row.place.groupOrder, row.place.order, order, platform::naturalSortKey(row.name));
    };
    std::ranges::stable_sort(rows, {}, key);
    return rows;
}

void writeTable(const std::vector<Row>& rows, std::ostream& out)
{
    constexpr std::array kColumns{&Row::id, &Row::group, &Row::speed, &Row::paper, &Row::ground};
    std::array<std::size_t, kColumns.size()> widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < kColumns.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row.*kColumns[i]));
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < kColumns.size(); ++i)
            if (widths[i] > 0) out << leftAligned(row.*kColumns[i], widths[i] + 2);
        out << row.name << '\n';
    }
}

} // namespace

void listProfiles(const ListArguments& arguments, const ProfileStore& store, std::ostream& out)
{
    if (arguments.kind == kOptionsWord) return listOptions(arguments, out);
    const std::vector<Row> rows = rowsOf(store, kindNamed(arguments.kind));
    if (arguments.ids)
        for (const Row& row : rows) out << row.id << '\n';
    else if (!arguments.json)
        writeTable(rows, out);
    if (!arguments.json) return;
    ordered_json list = ordered_json::array();
    for (const Row& row : rows) {
        ordered_json entry{{"id", row.id}, {"name", row.name}, {"group", row.group}};
        entry.update(row.more);
        list.push_back(std::move(entry));
    }
    out << list.dump(2) << '\n';
}

void showProfile(const ShowArguments& arguments, const ProfileStore& store, std::ostream& out)
{
    const Kind kind = kindNamed(arguments.kind);
    const std::string id = profileNamed(store, kind, arguments.id);
    const std::string text =
        kind == Kind::presets ? store.presetDocument(id).encoded() : store.data(kind, id);
    out << text;
    if (text.empty() || text.back() != '\n') out << '\n';
}

} // namespace tamlo::cli
