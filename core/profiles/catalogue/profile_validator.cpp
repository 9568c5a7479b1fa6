#include "core/profiles/catalogue/profile_validator.h"

#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_json.h"
#include "core/profiles/presets/preset_document.h"
#include "core/text/loc.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tamlo {

namespace {

using ProfileValidator::Failure;
using Messages = std::vector<std::string>;

/// A number as a message shows it.
Loc::Arg shown(double value)
{
    return Fmt::significant(value);
}

std::string joined(std::vector<std::string_view> texts)
{
    std::ranges::sort(texts);
    std::string out;
    for (std::string_view text : texts) out.append(out.empty() ? "" : ", ").append(text);
    return out;
}

void require(bool holds, Messages& problems, const char* key, const Loc::Args& args = {})
{
    if (!holds) problems.push_back(T(key, args));
}

void checkLayer(const NegativeLayer& layer, const std::string& label, Messages& problems)
{
    require(layer.dmax > layer.dmin, problems, "profiles.err.dmaxLabel",
            {{"label", label}, {"dmax", shown(layer.dmax)}, {"dmin", shown(layer.dmin)}});
    require(layer.gamma > 0, problems, "profiles.err.gamma",
            {{"label", label}, {"gamma", shown(layer.gamma)}});
    if (layer.toe)
        require(*layer.toe > 0, problems, "profiles.err.toe", {{"label", label}, {"toe", shown(*layer.toe)}});
    if (!layer.midDensity) return;
    const double mid = *layer.midDensity, span = layer.dmax - layer.dmin;
    require(mid > 0, problems, "profiles.err.midDensity", {{"label", label}, {"mid", shown(mid)}});
    require(mid < span, problems, "profiles.err.midDensityRange",
            {{"mid", shown(mid)}, {"span", shown(span)}});
}

void checkWeights(const OptTriple& weights, Messages& problems)
{
    if (weights)
        require((*weights)[0] + (*weights)[1] + (*weights)[2] > 0, problems, "profiles.err.weightsSum");
}

void checkSensitization(const std::optional<ProfileMatrix>& matrix, Messages& problems)
{
    if (matrix) require(asMatrix3(*matrix).has_value(), problems, "profiles.err.sensitization");
}

void check(const FilmProfile& film, Messages& problems)
{
    const auto& types = kSupportedFilmTypes;
    require(std::ranges::find(types, film.type) != types.end(), problems, "profiles.err.filmType",
            {{"type", film.type}, {"list", joined({types.begin(), types.end()})}});
    if (film.isBW() || film.isTricolor() || film.isCollodion()) {
        require(film.negative.has_value(), problems, "profiles.err.noNegative");
        if (film.negative) checkLayer(*film.negative, T("profiles.label.film"), problems);
    } else {
        require(film.layers.has_value(), problems, "profiles.err.noLayers");
        if (film.layers) {
            checkLayer(film.layers->r, T("profiles.label.layer", {{"name", "R"}}), problems);
            checkLayer(film.layers->g, T("profiles.label.layer", {{"name", "G"}}), problems);
            checkLayer(film.layers->b, T("profiles.label.layer", {{"name", "B"}}), problems);
        }
    }
    const double size = film.grain ? film.grain->sizeUm.value_or(0) : 0;
    const double amount = film.grain ? film.grain->amount.value_or(0) : 0;
    require(size >= 0, problems, "profiles.err.grainSize", {{"value", shown(size)}});
    require(amount >= 0, problems, "profiles.err.grainAmount", {{"value", shown(amount)}});
    if (film.halation && film.halation->radiusUm)
        require(*film.halation->radiusUm > 0, problems, "profiles.err.halationRadius",
                {{"value", shown(*film.halation->radiusUm)}});
    checkWeights(film.spectralWeights, problems);
    checkSensitization(film.sensitization, problems);
    checkSensitization(film.sensitizationDs, problems);
}

/// A press that takes back more than a quarter of a dot would print ink on white paper.
void checkGain(const OptNumber& gain, const OptNumber& comp, double gainElse, Messages& problems)
{
    const double taken = gain.value_or(gainElse) * comp.value_or(0.85);
    require(taken <= 0.25, problems, "profiles.err.gainTaken", {{"value", shown(taken)}});
}

void check(const OffsetParams& offset, Messages& problems)
{
    if (offset.lpi)
        require(*offset.lpi > 0, problems, "profiles.err.ruling", {{"value", shown(*offset.lpi)}});
    checkGain(offset.dotGain, offset.gainComp, 0.16, problems);
}

void check(const InkjetParams& inkjet, Messages& problems)
{
    if (inkjet.dropUm)
        require(*inkjet.dropUm > 0, problems, "profiles.err.drop", {{"value", shown(*inkjet.dropUm)}});
    checkGain(inkjet.gain, inkjet.gainComp, 0.25, problems);
}

void check(const PaperProfile& paper, Messages& problems)
{
    if (paper.offset) check(*paper.offset, problems);
    if (paper.inkjet) check(*paper.inkjet, problems);
    if (paper.isPlate() && paper.plateView && paper.plateView->scatter)
        require(*paper.plateView->scatter > 0, problems, "profiles.err.scatter");
    if (paper.dmin && paper.dmax)
        require(*paper.dmax > *paper.dmin, problems, "profiles.err.dmax",
                {{"dmax", shown(*paper.dmax)}, {"dmin", shown(*paper.dmin)}});
    if (paper.gamma) require(*paper.gamma > 0, problems, "profiles.err.paperGamma");
    checkWeights(paper.spectralWeights, problems);
    if (paper.pigment && paper.pigment->density)
        require(std::ranges::all_of(*paper.pigment->density, [](double d) { return d >= 0; }), problems,
                "profiles.err.pigment");
}

void check(const LensProfile& lens, Messages& problems)
{
    const OpticsParams& optics = lens.optics;
    const double vignette = optics.vignette.value_or(0), glow = optics.glow.value_or(0);
    const double radius = optics.glowRadius.value_or(0), soften = optics.soften.value_or(0);
    require(vignette >= 0, problems, "profiles.err.vignette", {{"value", shown(vignette)}});
    require(glow >= 0, problems, "profiles.err.glow", {{"value", shown(glow)}});
    require(!(glow > 0) || radius > 0, problems, "profiles.err.glowRadius",
            {{"glow", shown(glow)}, {"radius", shown(radius)}});
    require(soften >= 0, problems, "profiles.err.soften", {{"value", shown(soften)}});
}

void check(const FilterProfile& filter, Messages& problems)
{
    if (filter.gains)
        require(std::ranges::all_of(*filter.gains, [](double g) { return g > 0; }), problems,
                "profiles.err.gains");
    require(filter.bloom.value_or(0) >= 0, problems, "profiles.err.bloom");
}

/// A triple of another length than three has a message of its own. Only at these places: elsewhere, as among
/// the filters of a tricolor film, the file chooses the keys.
std::optional<std::string> tripleMessage(ProfileKind kind, const DecodeError& error)
{
    if (error.reason() != DecodeError::Reason::wrongCount) return std::nullopt;
    if (kind == ProfileKind::films && error.path() == "spectral_weights")
        return T("profiles.err.weightsCount", {{"count", error.found()}});
    using Place = std::pair<ProfileKind, std::string_view>;
    constexpr std::array<Place, 6> kPlaces{{{ProfileKind::papers, "spectral_weights"},
                                            {ProfileKind::papers, "tone"},
                                            {ProfileKind::papers, "plate_view.silver"},
                                            {ProfileKind::papers, "plate_view.base"},
                                            {ProfileKind::lenses, "optics.glow_chroma"},
                                            {ProfileKind::filters, "gains"}}};
    if (std::ranges::find(kPlaces, Place{kind, error.path()}) == kPlaces.end()) return std::nullopt;
    return T("profiles.err.triple", {{"key", error.key()}});
}

/// The error in the words of the user.
std::string humanReading(const DecodeError& error)
{
    const std::string path = error.parentPath();
    if (error.reason() == DecodeError::Reason::missingKey)
        return (path.empty() ? "" : path + ": ") + T("profiles.err.missingKey", {{"key", error.key()}});
    if (error.reason() == DecodeError::Reason::wrongType)
        return error.path().empty() ? std::string(error.what())
                                    : T("profiles.err.wrongType", {{"key", error.path()}});
    return error.what();
}

std::string prefix(ProfileKind kind)
{
    constexpr std::array<const char*, 5> kKeys{"profiles.err.notFilm", "profiles.err.notLens",
                                               "profiles.err.notPaper", "profiles.err.notPreset",
                                               "profiles.err.notFilter"};
    return T(kKeys[static_cast<std::size_t>(kind)]);
}

Json::json_pointer pointerTo(std::string path)
{
    std::ranges::replace(path, '.', '/');
    return Json::json_pointer("/" + path);
}

/// Decodes and checks. A triple of a wrong length is told and left out, so that the rest is still checked.
template <typename Profile>
void checkAs(ProfileKind kind, Json object)
{
    Messages problems;
    for (;;) {
        try {
            check(ProfileJSON::decodeObject<Profile>(object), problems);
            break;
        } catch (const DecodeError& error) {
            const auto message = tripleMessage(kind, error);
            if (!message) throw Failure({prefix(kind) + humanReading(error)});
            problems.push_back(*message);
            object[pointerTo(error.path())] = nullptr;
        }
    }
    if (!problems.empty()) throw Failure(std::move(problems));
}

Json parsedObject(std::string_view data)
{
    Json object = parseJsonText(data);
    if (!object.is_object()) throw DecodeError::wrongType(JsonPath{}, T("json.object"), jsonTypeName(object));
    return object;
}

void checkFormat(ProfileKind kind, const Json& object)
{
    const auto found = object.find("format");
    if (found == object.end() || found->is_null()) return;
    const std::optional<std::int64_t> version = jsonInteger(*found);
    if (version && *version <= ProfileValidator::formatCeiling(kind)) return;
    throw Failure(
        {T("profiles.err.newerFormat", {{"n", version ? std::to_string(*version) : found->dump()}})});
}

std::string titleOf(const Json& object)
{
    const auto name = object.find("name");
    const bool named = name != object.end() && name->is_string() && *name != "";
    return named ? name->get<std::string>() : T("profiles.noName");
}

} // namespace

Failure::Failure(std::vector<std::string> messages) : messages_(std::move(messages))
{
    for (const std::string& message : messages_) text_ += (text_.empty() ? "" : "\n") + message;
}

int ProfileValidator::formatCeiling(ProfileKind kind)
{
    return kind == ProfileKind::presets ? PresetSchema::formatVersion : formatVersion;
}

std::string ProfileValidator::validate(ProfileKind kind, std::string_view data, const ProfileStore& store)
{
    Json object;
    try {
        object = parsedObject(data);
    } catch (const DecodeError& error) {
        throw Failure({prefix(kind) + error.what()});
    }
    checkFormat(kind, object);
    if (kind == ProfileKind::presets) {
        try {
            return PresetDocument::validate(object, store, true).name();
        } catch (const PresetError& error) {
            throw Failure({error.what()});
        }
    }
    if (kind == ProfileKind::films) checkAs<FilmProfile>(kind, object);
    if (kind == ProfileKind::lenses) checkAs<LensProfile>(kind, object);
    if (kind == ProfileKind::papers) checkAs<PaperProfile>(kind, object);
    if (kind == ProfileKind::filters) checkAs<FilterProfile>(kind, object);
    return titleOf(object);
}

std::optional<ProfileKind> ProfileValidator::guessKind(std::string_view data)
{
    const Json object = parsedObject(data);
    const auto has = [&](const char* key) { return object.contains(key); };
    if (has("optics")) return ProfileKind::lenses;
    if (has("stock") || has("opts")) return ProfileKind::presets;
    const auto type = object.find("type");
    if (type != object.end() && type->is_string() &&
        std::ranges::find(kSupportedFilmTypes, type->get<std::string>()) != kSupportedFilmTypes.end())
        return ProfileKind::films;
    // Papers of several coats have a list under this key.
    const auto layers = object.find("layers");
    if ((layers != object.end() && !layers->is_array()) || has("negative")) return ProfileKind::films;
    if (has("process") || has("pigment") || has("scan")) return ProfileKind::papers;
    if (has("gains") || has("bloom")) return ProfileKind::filters;
    if (has("dmax") || has("plate_view")) return ProfileKind::papers;
    if (has("rays") || has("grad")) return ProfileKind::filters;
    return std::nullopt;
}

std::string ProfileValidator::stamped(std::string_view data)
{
    Json object = parsedObject(data);
    object["format"] = formatVersion;
    return prettyJson(object);
}

} // namespace tamlo
