// Profiles from and to JSON text, by the field tables. Unknown keys are ignored on reading and dropped on
// writing; an absent value stays absent. FilmProfile, LensProfile, PaperProfile, FilterProfile.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/filter_profile.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"

#include <nlohmann/json_fwd.hpp>

#include <string_view>

namespace tamlo {

struct FieldDoc;

namespace ProfileJSON {

/// The profile of a JSON text.
/// Errors: DecodeError, when the text is not JSON or not such a profile.
template <typename Profile>
Profile decode(std::string_view text);

/// The profile of a JSON value. Errors: those of decode.
template <typename Profile>
Profile decodeObject(const nlohmann::json& value);

/// Pretty-printed JSON with sorted keys.
template <typename Profile>
std::string encode(const Profile& profile);

/// Every key of the format, "layers.r.gamma", with its type, unit and meaning.
template <typename Profile>
std::vector<FieldDoc> fields();

/// Paths of the keys of a JSON text that the format does not know and so ignores, such as comments.
/// Errors: DecodeError, when the text is not JSON.
template <typename Profile>
std::vector<std::string> unknownKeys(std::string_view text);

extern template FilmProfile decode(std::string_view);
extern template LensProfile decode(std::string_view);
extern template PaperProfile decode(std::string_view);
extern template FilterProfile decode(std::string_view);

} // namespace ProfileJSON

} // namespace tamlo
