// The JSON form of a process, in project files and on the clipboard. Keys are read under their older
// spellings too; a turn, a mirror or a crop inside it is not taken: these belong to the frame.
#pragma once

#include "core/profiles/formats/field_table.h"
#include "core/profiles/presets/process_settings.h"

namespace tamlo {

template <>
struct JsonCodec<RenderOptions> {
    static std::string expected() { return "an object"; }
    static RenderOptions read(const Json& value, const JsonPath& at);
    static Json write(const RenderOptions& options);
};

template <>
struct FieldTable<ProcessSettings> {
    static std::span<const Field<ProcessSettings>> rows();
    static void afterRead(ProcessSettings& settings, const Json& json, const JsonPath& at);
};

/// Turn, mirror and crop as an untouched frame has them.
void clearGeometry(RenderOptions& options);

} // namespace tamlo
