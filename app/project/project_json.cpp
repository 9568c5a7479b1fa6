#include "app/project/project_json.h"

#include "app/project/file_url.h"
#include "app/project/process_rules.h"
#include "app/project/project_legacy.h"
#include "core/image/random.h"
#include "core/text/loc.h"

#include <unordered_set>

namespace tamlo {

namespace {

/// The row of a source's path, which the document holds as a file URL.
constexpr Field<Frame> urlField()
{
    constexpr auto expected = +[]() -> std::string { return "a file URL"; };
    Field<Frame> row = requiredField<&Frame::url>("url", "", "source, as a file URL, where it was last seen");
    row.expected = expected;
    row.read = +[](Frame& to, const Json& json, const JsonPath& at) {
        const std::string text = JsonCodec<std::string>::read(json, at);
        std::optional<std::string> path = pathOfFileURL(text);
        if (!path) throw DecodeError::wrongType(at, "a file URL", "\"" + text + "\"");
        to.url = std::move(*path);
    };
    row.write = +[](const Frame& from) -> Json { return fileURL(from.url); };
    return row;
}

/// A second frame of one id gets a new one: everything finds a frame by its id.
void partTwins(Roll& roll)
{
    std::unordered_set<FrameID> seen;
    seen.reserve(roll.size());
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (!seen.insert(roll[i].id).second) roll.edit(i).id = Uuid::random();
}

} // namespace

std::span<const Field<Fingerprint>> FieldTable<Fingerprint>::rows()
{
    using T = Fingerprint;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::size>("size", "bytes", "size of the file"),
        field<&T::mtime>("mtime", "seconds since 1970", "when it was last written; no part of the identity"),
        requiredField<&T::hash>("hash", "", "XXH64 of its first 1 MiB and, of a larger one, its last 64 KiB"),
    };
    return kRows;
}

std::span<const Field<ShotInfo>> FieldTable<ShotInfo>::rows()
{
    using T = ShotInfo;
    static constexpr Field<T> kRows[] = {
        field<&T::camera>("camera", "", "maker and model"),
        field<&T::lens>("lens", "", "lens"),
        field<&T::focalMm>("focalMm", "mm", "focal length"),
        field<&T::fNumber>("fNumber", "", "aperture"),
        field<&T::shutter>("shutter", "", "exposure time as a text, such as 1/250"),
        field<&T::iso>("iso", "", "sensitivity"),
        field<&T::dateOriginal>("dateOriginal", "seconds since 2001", "when the shot was taken"),
    };
    return kRows;
}

std::span<const Field<Orient>> FieldTable<Orient>::rows()
{
    static constexpr Field<Orient> kRows[] = {
        field<&Orient::rot>("rot", "quarter turns", "turn, clockwise"),
        field<&Orient::mirror>("mirror", "", "true mirrors the columns, ahead of the turn"),
    };
    return kRows;
}

void FieldTable<Orient>::afterRead(Orient& orient, const Json&)
{
    orient.rot = ((orient.rot % 4) + 4) % 4;
}

std::span<const Field<Frame>> FieldTable<Frame>::rows()
{
    using T = Frame;
    static constexpr Field<T> kRows[] = {
        field<&T::id>("id", "", "identity; a new one when absent"),
        urlField(),
        requiredField<&T::mark>("mark", "", "what the user thinks of it; a text of a newer version is none"),
        field<&T::process>("process", "", "absent: an original"),
        requiredField<&T::orient>("orient", "", "the user's turn, on top of the file's own"),
        field<&T::crop>("crop", "", "part of the source; absent: the whole"),
        field<&T::exportedAt>("exportedAt", "seconds since 2001",
                              "last export, cleared by whatever changes the picture"),
        field<&T::exportedName>("exportedName", "", "file name of that export"),
        field<&T::seed>("seed", "", "seed of grain and other chance; absent: it follows from the id"),
        field<&T::bookmark>("bookmark", "base64", "how another platform finds the file; carried, never read"),
        field<&T::relPath>("relPath", "", "path of the source from the project file's folder"),
        field<&T::fingerprint>("fingerprint", "", "what the source is recognised by"),
        field<&T::shot>("shot", "", "the camera's data; absent: not read yet"),
    };
    return kRows;
}

void FieldTable<Frame>::afterRead(Frame& frame, const Json& json)
{
    const auto id = json.find("id");
    if (id != json.end() && !id->is_null()) return;
    frame.id = Uuid::random();
    // Another reading gives another id, and must not give other grain.
    if (!frame.seed) frame.seed = FrameSeed::crc32(frame.fileName());
}

Roll JsonCodec<Roll>::read(const Json& value, const JsonPath& at)
{
    Roll roll;
    std::vector<Frame> frames = JsonCodec<std::vector<Frame>>::read(value, at);
    roll.reserve(frames.size());
    for (Frame& frame : frames) roll.append(std::move(frame));
    return roll;
}

Json JsonCodec<Roll>::write(const Roll& roll)
{
    Json out = Json::array();
    out.get_ref<Json::array_t&>().reserve(roll.size());
    for (const Frame& frame : roll) out.push_back(JsonCodec<Frame>::write(frame));
    return out;
}

std::span<const Field<Project>> FieldTable<Project>::rows()
{
    using T = Project;
    static constexpr Field<T> kRows[] = {
        field<&T::name>("name", "", "shown name"),
        field<&T::frames>("frames", "", "the roll, in its order"),
        field<&T::filter>("filter", "", "what the grid shows; a text of a newer version is all"),
        field<&T::thumbSize>("thumbSize", "points", "size of the grid's tiles"),
        field<&T::lastExportSet>("lastExportSet", "", "frames last exported"),
        field<&T::sortMode>("sortMode", "", "order of the roll"),
        field<&T::cropGate>("crop_gate", "",
                            "what a crop does to the film area: none leaves it, anything else is full"),
    };
    return kRows;
}

void FieldTable<Project>::afterRead(Project& project, const Json& json, const JsonPath& at)
{
    const auto name = json.find("name");
    if (name == json.end() || name->is_null()) project.name = T("project.untitled");
    if (project.cropGate && *project.cropGate != "none") project.cropGate = "full";
    readOlderKeys(project, json, at);
    partTwins(project.frames);
}

Project Project::decode(std::string_view text, const ProfileStore& store)
{
    const JsonPath root;
    Project project = JsonCodec<Project>::read(parseJsonText(text), root);
    for (std::size_t i = 0; i < project.frames.size(); ++i) {
        const Shared<ProcessSettings>& process = project.frames[i].process;
        if (!process || !process->options.crtSizeIn) continue;
        ProcessSettings migrated = *process;
        migrateCRTZoom(migrated, store);
        project.frames.edit(i).process = std::move(migrated);
    }
    return project;
}

std::string Project::encoded() const
{
    return prettyJson(JsonCodec<Project>::write(*this)) + "\n";
}

} // namespace tamlo
