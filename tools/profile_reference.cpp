// Writes the tables of docs/profiles.md from the tables that decode the files, so that text and program tell
// the same keys, types and meanings, and from the carried profiles, whose numbers make up "In use".
//   profile_reference FILE          rewrites what stands between the markers
//   profile_reference --check FILE  changes nothing; fails when rewriting would
// A marker is a line "<!-- fields: film -->", and for presets "<!-- options: print -->"; a table runs from
// there to "<!-- end -->". Each table has its place exactly once; all other text is left as it is.
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_json.h"
#include "core/profiles/presets/preset_schema.h"
#include "core/text/fmt.h"
#include "core/text/loc.h"
#include "tools/in_use.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace {

using namespace tamlo;

constexpr std::string_view kEnd = "<!-- end -->";

std::string code(std::string_view text)
{
    return "`" + std::string(text) + "`";
}

/// One line of a table; a bar inside a cell would end it.
std::string row(std::initializer_list<std::string> cells)
{
    std::string out = "|";
    for (const std::string& cell : cells) {
        out += ' ';
        for (const char c : cell) out += c == '|' ? std::string("\\|") : std::string(1, c);
        out += cell.empty() ? "|" : " |";
    }
    return out + '\n';
}

/// The decoder's words for a type, as short as a column wants them.
std::string shortType(const std::string& expected)
{
    constexpr std::pair<std::string_view, std::string_view> kShort[] = {
        {"a number", "number"},
        {"an integer", "integer"},
        {"a text", "text"},
        {"an object", "block"},
        {"a list of three numbers", "three numbers"},
        {"a list, each a number", "numbers"},
        {"a list, each a text", "texts"},
        {"a list, each an object", "list of blocks"},
        {"a list, each a list, each a number", "rows of numbers"},
        {"an object, each value a number", "number by name"},
        {"an object, each value a list of three numbers", "three numbers by name"},
    };
    for (const auto& [from, to] : kShort)
        if (expected == from) return std::string(to);
    return expected;
}

/// A key with the keys of its block below it.
struct Node {
    FieldDoc doc;
    std::string name; ///< last part of the path
    std::vector<Node> below;
};

/// Takes the rows that lie below a path from the front of the list.
std::vector<Node> takeBelow(const std::string& path, std::span<const FieldDoc>& docs)
{
    std::vector<Node> out;
    while (!docs.empty()) {
        const FieldDoc& doc = docs.front();
        const auto cut = doc.path.rfind('.');
        std::string parent = cut == std::string::npos ? "" : doc.path.substr(0, cut);
        if (parent.ends_with("[]")) parent.resize(parent.size() - 2);
        if (parent != path) break;
        Node node{doc, doc.path.substr(cut + 1), {}};
        docs = docs.subspan(1);
        node.below = takeBelow(doc.path, docs);
        out.push_back(std::move(node));
    }
    return out;
}

bool sameBelow(const Node& a, const Node& b)
{
    return std::ranges::equal(a.below, b.below, [](const Node& x, const Node& y) {
        return x.name == y.name && x.doc.type == y.doc.type && x.doc.meaning == y.doc.meaning &&
               sameBelow(x, y);
    });
}

std::string number(double value)
{
    return Fmt::number(value, 4);
}

void putRow(const std::string& path, const FieldDoc& doc, const Carried& profiles, std::string& out)
{
    out += row({code(path), shortType(doc.type) + (doc.required ? ", required" : ""), doc.unit,
                inUse(path, doc, profiles), doc.meaning});
}

/// Rows of a block. Neighbours with the same keys, as the three layers of a film, tell them once:
/// "layers.{r,g,b}.gamma".
void putRows(const std::string& path, std::span<const Node> nodes, const Carried& profiles, std::string& out)
{
    for (std::size_t first = 0; first < nodes.size();) {
        std::size_t last = first + 1;
        std::string names = nodes[first].name;
        if (!nodes[first].below.empty())
            for (; last < nodes.size() && sameBelow(nodes[first], nodes[last]); ++last)
                names += "," + nodes[last].name;
        for (std::size_t i = first; i < last; ++i)
            putRow(path + "." + nodes[i].name, nodes[i].doc, profiles, out);
        if (last - first > 1) names = "{" + names + "}";
        if (nodes[first].doc.type.starts_with("a list")) names += "[]";
        putRows(path + "." + names, nodes[first].below, profiles, out);
        first = last;
    }
}

/// A table of the top keys, then one for each block.
template <typename Profile>
std::string fieldTables(const std::string& folder)
{
    const Carried profiles = carried(folder);
    const std::vector<FieldDoc> docs = ProfileJSON::fields<Profile>();
    std::span<const FieldDoc> left(docs);
    const std::vector<Node> top = takeBelow("", left);
    if (!left.empty()) throw std::logic_error("no place for the field " + left.front().path);

    const std::string head =
        row({"Key", "Type", "Unit", "In use", "What it is and does"}) + "|---|---|---|---|---|\n";
    std::string out = head;
    for (const Node& node : top) putRow(node.name, node.doc, profiles, out);
    for (const Node& node : top) {
        if (node.below.empty()) continue;
        const bool isList = node.doc.type.starts_with("a list");
        out += "\n### " + code(node.name) + "\n\n" + head;
        putRows(node.name + (isList ? "[]" : ""), node.below, profiles, out);
    }
    return out;
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string out;
    for (const std::string& text : texts) out += (out.empty() ? "" : ", ") + code(text);
    return out;
}

const PresetSchema::Reference* referenceOf(std::string_view key)
{
    for (const PresetSchema::Reference& reference : PresetSchema::references())
        if (reference.key == key) return &reference;
    return nullptr;
}

std::string valuesOf(const OptionRow& option)
{
    if (const auto* reference = referenceOf(option.key))
        return "a name of " + code(std::string(rawText(reference->kind)));
    if (option.hasRange) return number(option.low) + " to " + number(option.high);
    return joined(PresetSchema::allowedTexts(option));
}

std::string defaultOf(const OptionRow& option)
{
    Json value;
    option.write(RenderOptions(), value);
    if (value.is_null()) return "";
    if (value.is_number_float()) return number(value.get<double>());
    return value.is_string() ? code(value.get<std::string>()) : value.dump();
}

void putOption(const OptionRow& option, std::string& out)
{
    constexpr const char* kTypes[] = {"number",  "integer",         "true or false", "text",
                                      "numbers", "integer by name", "block"};
    out +=
        row({code(option.key), kTypes[static_cast<std::size_t>(option.type)], option.unit, valuesOf(option),
             defaultOf(option), Loc::value("option." + std::string(option.key), Loc::Lang::en).value_or("")});
}

std::string optionHead()
{
    return row({"Key", "Type", "Unit", "Values", "Default", "What it is and does"}) +
           "|---|---|---|---|---|---|\n";
}

std::string blockTable(PresetBlock block)
{
    std::string out = optionHead();
    for (const std::string_view key : PresetSchema::keys(block)) {
        if (const OptionRow* option = findOption(key)) {
            putOption(*option, out);
            continue;
        }
        const auto* reference = referenceOf(key);
        if (!reference) throw std::logic_error("no option table holds the key " + std::string(key));
        out += row({code(key), "text", "", "a name of " + code(rawText(reference->kind)), "",
                    "stands at the top of the file, beside opts"});
    }
    return out;
}

std::string neverTable()
{
    std::string out = optionHead();
    for (const OptionRow& option : optionTable())
        if (PresetSchema::isNever(option.key)) putOption(option, out);
    return out;
}

struct Table {
    std::string marker;
    std::string text;
};

std::vector<Table> tables()
{
    std::vector<Table> out{{"fields: film", fieldTables<FilmProfile>("films")},
                           {"fields: lens", fieldTables<LensProfile>("lenses")},
                           {"fields: paper", fieldTables<PaperProfile>("papers")},
                           {"fields: filter", fieldTables<FilterProfile>("filters")}};
    for (const PresetBlock block : PresetSchema::order())
        out.push_back({"options: " + std::string(PresetSchema::rawText(block)), blockTable(block)});
    out.push_back({"options: never", neverTable()});
    for (Table& table : out) table.marker = "<!-- " + table.marker + " -->";
    return out;
}

std::size_t occurrences(std::string_view text, std::string_view of)
{
    std::size_t count = 0;
    for (auto at = text.find(of); at != std::string_view::npos; at = text.find(of, at + of.size())) ++count;
    return count;
}

/// The document with every table as it should be.
std::string rewritten(std::string document)
{
    const std::vector<Table> all = tables();
    for (const Table& table : all) {
        if (occurrences(document, table.marker) != 1)
            throw std::runtime_error("the marker " + table.marker + " must stand there exactly once");
        const auto from = document.find(table.marker) + table.marker.size();
        const auto next = document.find("<!-- ", from);
        if (next == std::string::npos || !document.substr(next).starts_with(kEnd))
            throw std::runtime_error("no " + std::string(kEnd) + " follows on " + table.marker);
        document.replace(from, next - from, "\n\n" + table.text + "\n");
    }
    if (occurrences(document, "<!-- ") != 2 * all.size())
        throw std::runtime_error("a marker names no table, or its end is missing");
    return document;
}

/// Number of the first line in which two texts differ.
std::ptrdiff_t firstDifference(const std::string& a, const std::string& b)
{
    const auto [inA, inB] = std::ranges::mismatch(a, b);
    return 1 + std::count(a.begin(), inA, '\n');
}

int run(const std::string& path, bool checkOnly)
{
    const std::string document = UserFiles::read(path);
    const std::string wanted = rewritten(document);
    if (wanted == document) return 0;
    if (!checkOnly) {
        UserFiles::write(path, wanted);
        return 0;
    }
    std::cerr << path << ":" << firstDifference(document, wanted)
              << ": the tables are not those of the program; run profile_reference " << path << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool checkOnly = !arguments.empty() && arguments.front() == "--check";
    if (arguments.size() != (checkOnly ? 2u : 1u)) {
        std::cerr << "usage: profile_reference [--check] FILE\n";
        return 2;
    }
    try {
        return run(arguments.back(), checkOnly);
    } catch (const std::exception& error) {
        std::cerr << "profile_reference: " << error.what() << '\n';
        return 1;
    }
}
