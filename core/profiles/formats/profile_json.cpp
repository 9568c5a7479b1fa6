#include "core/profiles/formats/profile_json.h"

#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

namespace ProfileJSON {

template <typename Profile>
Profile decode(std::string_view text)
{
    return decodeObject<Profile>(parseJsonText(text));
}

template <typename Profile>
Profile decodeObject(const Json& value)
{
    return readFields<Profile>(value, JsonPath{});
}

template <typename Profile>
std::string encode(const Profile& profile)
{
    return prettyJson(writeFields(profile));
}

template <typename Profile>
std::vector<FieldDoc> fields()
{
    std::vector<FieldDoc> out;
    describeFields<Profile>({}, out);
    return out;
}

template <typename Profile>
std::vector<std::string> unknownKeys(std::string_view text)
{
    std::vector<std::string> out;
    unknownFields<Profile>(parseJsonText(text), {}, out);
    return out;
}

#define TAMLO_PROFILE_FORMAT(T)                                                                              \
    template T decode(std::string_view);                                                                     \
    template T decodeObject(const Json&);                                                                    \
    template std::string encode(const T&);                                                                   \
    template std::vector<FieldDoc> fields<T>();                                                              \
    template std::vector<std::string> unknownKeys<T>(std::string_view)

TAMLO_PROFILE_FORMAT(FilmProfile);
TAMLO_PROFILE_FORMAT(LensProfile);
TAMLO_PROFILE_FORMAT(PaperProfile);
TAMLO_PROFILE_FORMAT(FilterProfile);

#undef TAMLO_PROFILE_FORMAT

} // namespace ProfileJSON

} // namespace tamlo
