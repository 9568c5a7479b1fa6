#include "app/shell/knob_changes.h"

#include "app/shell/knob_table.h"
#include "app/shell/loaded_profiles.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "core/text/loc.h"

#include <cmath>
#include <optional>

namespace tamlo {

namespace {

KnobChange named(const char* field)
{
    return {field, T(std::string("knob.") + field)};
}

bool differs(const RenderOptions& a, const RenderOptions& b, const char* option)
{
    const OptionRow& row = *findOption(option);
    Json before, after;
    row.write(a, before);
    row.write(b, after);
    return before != after;
}

bool same(double a, double b)
{
    constexpr double kNothing = 1e-6;
    return std::abs(a - b) < kNothing;
}

const SieveDisc* discOf(const LensProfile& lens, const RenderOptions& options)
{
    if (!lens.discs) return nullptr;
    for (const SieveDisc& disc : *lens.discs)
        if (same(disc.glowMult, options.glowMult) && same(disc.glowRadiusMult, options.glowRadiusMult))
            return &disc;
    return nullptr;
}

/// One sieve disc of the lens was put in for another. Values that no disc has are two knobs.
std::optional<KnobChange> discChange(const ProcessSettings& from, const ProcessSettings& to,
                                     const ProfileStore& store)
{
    const RenderOptions &a = from.options, &b = to.options;
    if (same(a.glowMult, b.glowMult) && same(a.glowRadiusMult, b.glowRadiusMult)) return std::nullopt;
    const std::optional<LensProfile> lens = lensOf(to, store);
    if (!lens) return std::nullopt;
    const SieveDisc *before = discOf(*lens, a), *after = discOf(*lens, b);
    if (!before || !after || before == after) return std::nullopt;
    return KnobChange{"disc", T("knob.disc", {{"name", after->name}})};
}

} // namespace

std::vector<KnobChange> knobDiffs(const RenderOptions& a, const RenderOptions& b)
{
    std::vector<KnobChange> out;
    for (const Knob& knob : knobTable())
        if (differs(a, b, knob.option) && (out.empty() || out.back().key != knob.field))
            out.push_back(named(knob.field));
    return out;
}

std::vector<KnobChange> differences(const ProcessSettings& from, const ProcessSettings& to)
{
    std::vector<KnobChange> out;
    if (from.stock != to.stock) out.push_back(named("stock"));
    if (from.lens != to.lens) out.push_back(named("lens"));
    if (from.paper != to.paper) out.push_back(named("paper"));
    for (KnobChange& knob : knobDiffs(from.options, to.options)) out.push_back(std::move(knob));
    return out;
}

KnobChange changeOf(const ProcessSettings& from, const ProcessSettings& to, const ProfileStore& store)
{
    if (from.stock != to.stock) return named("stock");
    if (from.lens != to.lens) return named("lens");
    if (from.paper != to.paper) return named("paper");
    if (auto disc = discChange(from, to, store)) return *disc;
    for (const Knob& knob : knobTable())
        if (differs(from.options, to.options, knob.option)) return named(knob.field);
    return named("process");
}

} // namespace tamlo
