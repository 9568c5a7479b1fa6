#include "app/project/project_legacy.h"

#include "app/project/project_json.h"

#include <unordered_map>

namespace tamlo {

/// A print of a frame, from when they stood beside the roll.
struct LegacyPrint {
    FrameID frameID;
    Shared<ProcessSettings> process;
    std::optional<Date> exportedAt;
    std::optional<std::string> exportedName;
};

template <>
struct FieldTable<LegacyPrint> {
    static std::span<const Field<LegacyPrint>> rows()
    {
        using T = LegacyPrint;
        static constexpr Field<T> kRows[] = {
            requiredField<&T::frameID>("frameID", "", "the frame that was printed"),
            field<&T::process>("process", "", "how"),
            field<&T::exportedAt>("exportedAt", "seconds since 2001", "when"),
            field<&T::exportedName>("exportedName", "", "into which file"),
        };
        return kRows;
    }
};

namespace {

/// The value under a key, or null where there is none.
const Json* present(const Json& json, const char* key)
{
    const auto found = json.find(key);
    return found == json.end() || found->is_null() ? nullptr : &*found;
}

void readPrints(Roll& roll, const Json& json, const JsonPath& at)
{
    std::unordered_map<FrameID, LegacyPrint> first;
    for (LegacyPrint& print : JsonCodec<std::vector<LegacyPrint>>::read(json, at))
        first.emplace(print.frameID, std::move(print));
    for (std::size_t i = 0; i < roll.size(); ++i) {
        const auto print = first.find(roll[i].id);
        if (roll[i].process || print == first.end() || !print->second.process) continue;
        Frame& frame = roll.edit(i);
        frame.process = print->second.process;
        frame.exportedAt = print->second.exportedAt;
        frame.exportedName = print->second.exportedName;
    }
}

void readSharedProcess(Roll& roll, const Json& json, const JsonPath& at)
{
    const Shared<ProcessSettings> process = JsonCodec<ProcessSettings>::read(json, at);
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (!roll[i].process) roll.edit(i).process = process;
}

void takeCamerasWhite(Roll& roll)
{
    for (std::size_t i = 0; i < roll.size(); ++i) {
        if (!roll[i].process) continue;
        ProcessSettings process = *roll[i].process;
        process.options.wbMode = "asshot";
        roll.edit(i).process = std::move(process);
    }
}

} // namespace

void readOlderKeys(Project& project, const Json& json, const JsonPath& at)
{
    if (const Json* prints = present(json, "prints"))
        readPrints(project.frames, *prints, JsonPath{&at, "prints"});
    if (const Json* process = present(json, "process"))
        readSharedProcess(project.frames, *process, JsonPath{&at, "process"});
    if (const Json* wbMode = present(json, "wbMode"))
        if (JsonCodec<std::string>::read(*wbMode, JsonPath{&at, "wbMode"}) == "asshot")
            takeCamerasWhite(project.frames);
}

} // namespace tamlo
