// The field tables of a project file and of the values in it.
#pragma once

#include "app/project/document_codecs.h"
#include "app/project/process_json.h"
#include "core/profiles/options/crop_fields.h"

namespace tamlo {

template <>
struct FieldTable<Fingerprint> {
    static std::span<const Field<Fingerprint>> rows();
};
template <>
struct FieldTable<ShotInfo> {
    static std::span<const Field<ShotInfo>> rows();
};
template <>
struct FieldTable<Orient> {
    static std::span<const Field<Orient>> rows();
    static void afterRead(Orient& orient, const Json& json);
};
template <>
struct FieldTable<Frame> {
    static std::span<const Field<Frame>> rows();
    static void afterRead(Frame& frame, const Json& json);
};
template <>
struct JsonCodec<Roll> {
    static std::string expected() { return JsonCodec<std::vector<Frame>>::expected(); }
    static Roll read(const Json& value, const JsonPath& at);
    static Json write(const Roll& roll);
};
template <>
struct FieldTable<Project> {
    static std::span<const Field<Project>> rows();
    static void afterRead(Project& project, const Json& json, const JsonPath& at);
};

} // namespace tamlo
