#include "app/preview/view_key.h"

#include "app/preview/proxy_file.h"
#include "app/preview/render_process.h"
#include "app/project/process_json.h"
#include "app/project/process_rules.h"
#include "core/image/tamlo_error.h"
#include "core/io/decode_rules.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/options/crop_fields.h"
#include "platform/content_hash.h"
#include "platform/unicode.h"

#include <charconv>
#include <cmath>

namespace tamlo {
namespace {

std::string numberText(double value)
{
    if (!std::isfinite(value)) throw TamloError::invalidArgument("a number that is none has no text");
    if (value == 0) return "0";
    char text[40];
    constexpr double kExact = 9007199254740992.0; // whole numbers are exact up to here
    const bool isWhole = value == std::trunc(value) && std::abs(value) <= kExact;
    const auto end = isWhole ? std::to_chars(text, text + sizeof text, static_cast<std::int64_t>(value))
                             : std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

std::string quoted(const std::string& text)
{
    if (!platform::isUtf8(text)) throw TamloError::invalidArgument("a text that is not UTF-8");
    return Json(text).dump();
}

void append(const Json& value, std::string& out)
{
    if (value.is_object()) {
        char before = '{';
        for (const auto& [key, entry] : value.items()) {
            if (entry.is_null()) continue;
            out += before;
            out += quoted(key) + ":";
            append(entry, out);
            before = ',';
        }
        out += before == '{' ? "{}" : "}";
    } else if (value.is_array()) {
        char before = '[';
        for (const Json& entry : value) {
            out += before;
            append(entry, out);
            before = ',';
        }
        out += before == '[' ? "[]" : "]";
    } else if (value.is_string()) {
        out += quoted(value.get_ref<const std::string&>());
    } else if (value.is_number_float()) {
        out += numberText(value.get<double>());
    } else {
        out += value.dump();
    }
}

Json jsonOf(const ViewKey::Inputs& inputs)
{
    Json out{{"source", inputs.source},
             {"rotate", inputs.rotate},
             {"mirror", inputs.mirror},
             {"seed", inputs.seed},
             {"exposure", inputs.exposure},
             {"cropGate", inputs.cropGate},
             {"build", ""},
             {"v", inputs.v}};
    if (inputs.crop) out["crop"] = JsonCodec<Crop>::write(*inputs.crop);
    if (inputs.process) out["process"] = JsonCodec<ProcessSettings>::write(*inputs.process);
    if (inputs.mark) out["mark"] = *inputs.mark;
    if (inputs.materials) out["materials"] = *inputs.materials;
    return out;
}

/// The user's own files behind a process, in a fixed order; empty where all are carried, or where one can't
/// be read: the render will say so.
std::string ownMaterials(const ProcessSettings& process, const ProfileStore& store)
{
    using Kind = ProfileStore::Kind;
    const RenderOptions& o = process.options;
    std::vector<std::pair<Kind, std::string>> named{{Kind::films, process.stock},
                                                    {Kind::lenses, process.lens},
                                                    {Kind::papers, resolvedPaper(process, store)}};
    for (const OptText* filter : {&o.filter, &o.filterCut, &o.filterDiffusion, &o.filterRays, &o.filterGrad})
        if (*filter && !(*filter)->empty()) named.emplace_back(Kind::filters, **filter);
    std::string out;
    for (const auto& [kind, name] : named) {
        if (store.isBuiltin(kind, name)) continue;
        try {
            out += std::to_string(static_cast<int>(kind)) + ":" + name + "\n" + store.data(kind, name) + "\n";
        } catch (const ProfileError&) {
        } catch (const TamloError&) {}
    }
    return out;
}

} // namespace

std::string ViewKey::canonical(const Json& value)
{
    std::string out;
    append(value, out);
    return out;
}

std::string ViewKey::key(Inputs inputs)
{
    return platform::sha256(canonical(jsonOf(inputs))) + "-" + cleanBuild(inputs.build);
}

std::string ViewKey::hashOf(std::string_view key)
{
    return std::string(key.substr(0, key.find('-')));
}

std::string ViewKey::cleanBuild(std::string_view build)
{
    std::string out;
    for (const char c : build)
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.') out += c;
    return out.empty() ? "dev" : out;
}

ViewKey::Inputs ViewKey::inputsOf(const Frame& frame, const std::optional<std::string>& cropGate,
                                  bool originals, const ProfileStore& store, const std::string& build,
                                  const Roll* roll)
{
    Inputs inputs;
    const WBMode wb = ProxyFile::wbOf(frame);
    inputs.source = frame.fingerprint
                        ? ProxyFile::key(*frame.fingerprint, wb) + "|v" + std::to_string(ProxyFile::kVersion)
                        : "path:" + frame.url + "|" + ImageLoader::rawText(wb);
    inputs.crop = frame.crop;
    inputs.rotate = frame.orient.rot * 90;
    inputs.mirror = frame.orient.mirror;
    inputs.seed = frame.effectiveSeed();
    if (frame.process && !originals) {
        inputs.process = *frame.process;
        foldFrameNumber(inputs.process->options, frame, roll);
        if (const std::string own = ownMaterials(*frame.process, store); !own.empty())
            inputs.materials = platform::sha256(own);
    }
    inputs.exposure = (inputs.process ? inputs.process->options : RenderOptions()).srcExposure;
    inputs.cropGate = cropGate.value_or(RenderOptions().cropGate);
    inputs.build = build;
    return inputs;
}

} // namespace tamlo
