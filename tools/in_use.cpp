#include "tools/in_use.h"

#include "core/text/bundled_profiles.h"
#include "core/text/fmt.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tamlo {
namespace {

/// The names that one part of a row's path stands for: "gamma" itself, "{r,g,b}" three.
std::vector<std::string> namesOf(std::string part)
{
    if (!part.starts_with("{")) return {part};
    std::vector<std::string> out(1);
    for (const char c : part.substr(1, part.find('}') - 1)) {
        if (c == ',')
            out.emplace_back();
        else
            out.back() += c;
    }
    return out;
}

void collectLeaves(const nlohmann::json& value, std::string_view path, std::vector<nlohmann::json>& out)
{
    if (path.empty()) return out.push_back(value);
    const auto dot = path.find('.');
    std::string part(path.substr(0, dot));
    const std::string_view rest = dot == path.npos ? "" : path.substr(dot + 1);
    const bool isList = part.ends_with("[]");
    if (isList) part.resize(part.size() - 2);
    for (const std::string& name : namesOf(part)) {
        const auto found = value.find(name);
        if (found == value.end() || found->is_null()) continue;
        if (!isList) {
            collectLeaves(*found, rest, out);
            continue;
        }
        for (const nlohmann::json& item : *found) collectLeaves(item, rest, out);
    }
}

/// Least and most at each place of three numbers, or at the only place of anything else.
using Ranges = std::map<std::size_t, std::pair<double, double>>;

void widen(Ranges& ranges, const nlohmann::json& value, std::size_t place, bool byPlace)
{
    if (value.is_number()) {
        const double v = value.get<double>();
        const auto [at, isNew] = ranges.try_emplace(byPlace ? place : 0, v, v);
        if (!isNew) at->second = {std::min(at->second.first, v), std::max(at->second.second, v)};
    } else if (value.is_structured()) {
        std::size_t next = 0;
        for (const nlohmann::json& item : value) widen(ranges, item, next++, byPlace);
    }
}

} // namespace

Carried carried(const std::string& folder)
{
    Carried out;
    for (const auto& [key, text] : BundledProfiles::files())
        if (std::string_view(key).starts_with(folder + "/")) out.push_back(nlohmann::json::parse(text));
    return out;
}

std::string inUse(const std::string& path, const FieldDoc& doc, const Carried& profiles)
{
    if (doc.type.find("number") == std::string::npos && doc.type != "an integer") return "";
    std::vector<nlohmann::json> leaves;
    for (const nlohmann::json& profile : profiles) collectLeaves(profile, path, leaves);
    Ranges ranges;
    const bool byPlace = doc.type.ends_with("a list of three numbers");
    for (const nlohmann::json& leaf : leaves) widen(ranges, leaf, 0, byPlace);
    if (ranges.empty()) return "none";
    std::vector<std::string> texts;
    for (const auto& [place, range] : ranges) {
        const std::string low = Fmt::number(range.first, 4), high = Fmt::number(range.second, 4);
        texts.push_back(low == high ? low : low + " to " + high);
    }
    if (std::ranges::all_of(texts, [&](const std::string& text) { return text == texts.front(); }))
        texts.resize(1);
    std::string out;
    for (const std::string& text : texts) out += (out.empty() ? "" : ", ") + text;
    return out;
}

} // namespace tamlo
