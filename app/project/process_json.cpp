#include "app/project/process_json.h"

namespace tamlo {

namespace {

/// Reads the older spelling of a key where the document has no newer one.
template <typename Value>
void readOlder(Value& into, const Json& json, const JsonPath& at, const char* key)
{
    using Bare = typename detail::Bare<Value>::Type;
    const auto newer = json.find(key);
    if (newer != json.end() && !newer->is_null()) return;
    const std::string spelling = legacyCodingName(key);
    const auto older = json.find(spelling);
    if (older != json.end() && !older->is_null())
        into = JsonCodec<Bare>::read(*older, JsonPath{&at, spelling});
}

} // namespace

void clearGeometry(RenderOptions& options)
{
    options.rotate = 0;
    options.mirror = false;
    options.crop.reset();
}

RenderOptions JsonCodec<RenderOptions>::read(const Json& value, const JsonPath& at)
{
    RenderOptions options = optionsFromJson(value, at);
    clearGeometry(options);
    return options;
}

Json JsonCodec<RenderOptions>::write(const RenderOptions& options)
{
    return optionsToJson(options);
}

std::span<const Field<ProcessSettings>> FieldTable<ProcessSettings>::rows()
{
    using T = ProcessSettings;
    static constexpr Field<T> kRows[] = {
        field<&T::stock>("stock", "", "film"),
        field<&T::lens>("lens", "", "lens"),
        field<&T::paper>("paper", "", "paper; empty: the one that suits the film"),
        field<&T::options>("options", "", "every knob of the frame; one that is left out has its default"),
        field<&T::presetName>("preset_name", "", "recipe that was applied"),
        field<&T::modified>("modified", "", "true when a knob has moved since"),
        field<&T::social>("social", "", "true asks an export for a copy for sharing"),
        field<&T::socialCrop45>("social_crop45", "", "true cuts that copy to 4:5"),
    };
    return kRows;
}

void FieldTable<ProcessSettings>::afterRead(ProcessSettings& settings, const Json& json, const JsonPath& at)
{
    readOlder(settings.presetName, json, at, "preset_name");
    readOlder(settings.socialCrop45, json, at, "social_crop45");
    const auto options = json.find("options");
    if (options != json.end() && !options->is_null()) return;
    settings.options = ProcessSettings::fresh().options;
    settings.options.srcLights = 0; // a document that does not name them has none
}

} // namespace tamlo
