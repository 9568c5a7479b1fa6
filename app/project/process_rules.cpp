#include "app/project/process_rules.h"

#include "app/project/loaded.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

namespace {

void copyOption(RenderOptions& to, const RenderOptions& from, const OptionRow& row)
{
    Json value;
    row.write(from, value);
    if (value.is_null())
        row.clear(to);
    else
        row.read(to, value, JsonPath{});
}

/// The name without what follows it in brackets.
std::string shortTitle(std::string name)
{
    const auto bracket = name.find(" (");
    return bracket == std::string::npos || bracket == 0 ? name : name.substr(0, bracket);
}

template <typename Profile>
std::string titleOf(const std::optional<Profile>& profile, const std::string& id)
{
    return profile ? shortTitle(Loc::pick(profile->name.value_or(id), profile->nameEn)) : id;
}

} // namespace

std::string resolvedPaper(const ProcessSettings& settings, const ProfileStore& store)
{
    const auto film = loaded([&] { return store.film(settings.stock); });
    const std::string usual = film ? ProfileStore::defaultPaperName(*film) : "color_scan";
    if (settings.paper.empty()) return usual;
    if (!film) return settings.paper;
    const auto paper = loaded([&] { return store.paper(settings.paper); });
    if (!paper || !paper->filmTypes || paper->filmTypes->empty()) return settings.paper;
    const auto& types = *paper->filmTypes;
    const std::string type = film->type;
    return std::find(types.begin(), types.end(), type) == types.end() ? usual : settings.paper;
}

void applyPreset(ProcessSettings& settings, const Preset& preset, const std::string& name,
                 const ProfileStore& store)
{
    settings.apply(preset, name);
    migrateCRTZoom(settings, store);
}

void resetBlocks(ProcessSettings& settings, const PresetSchema::Blocks& blocks,
                 const ProcessSettings& identity)
{
    const PresetSchema::KeySet keys = PresetSchema::keys(blocks);
    if (keys.contains("stock")) settings.stock = identity.stock;
    if (keys.contains("lens")) settings.lens = identity.lens;
    if (keys.contains("paper")) settings.paper = identity.paper;
    for (const OptionRow& row : optionTable())
        if (keys.contains(row.key)) copyOption(settings.options, identity.options, row);
}

void migrateCRTZoom(ProcessSettings& settings, const ProfileStore& store)
{
    constexpr double kUsualTubeIn = 21, kSmallestIn = 0.001, kFarthest = 1, kNearest = 10;
    RenderOptions& options = settings.options;
    if (!options.crtSizeIn || !(*options.crtSizeIn > 0)) return;
    if (options.crtZoom == 1) {
        const auto paper = loaded([&] { return store.paper(resolvedPaper(settings, store)); });
        const double tubeIn =
            paper && paper->crt ? paper->crt->nominalIn.value_or(kUsualTubeIn) : kUsualTubeIn;
        options.crtZoom = std::clamp(tubeIn / std::max(*options.crtSizeIn, kSmallestIn), kFarthest, kNearest);
    }
    options.crtSizeIn.reset();
}

std::string summary(const ProcessSettings& settings, const ProfileStore& store)
{
    const std::string paper = resolvedPaper(settings, store);
    return titleOf(loaded([&] { return store.film(settings.stock); }), settings.stock) + " · " +
           titleOf(loaded([&] { return store.paper(paper); }), paper);
}

std::string devSummary(const ProcessSettings& settings)
{
    const RenderOptions& options = settings.options;
    std::string out;
    if (options.dev != Development::standard) out = T("devName." + std::string(rawText(options.dev)));
    if (options.push == 0) return out;
    if (!out.empty()) out += ", ";
    return out + T("knob.push") + (options.push > 0 ? " +" : " ") + Fmt::number(options.push, 2);
}

} // namespace tamlo
