// The kinds of what the catalogue holds, and the words that tell them.
#pragma once

#include <array>
#include <string_view>

namespace tamlo {

enum class ProfileKind { films, lenses, papers, presets, filters };

inline constexpr std::array kProfileKinds{ProfileKind::films, ProfileKind::lenses, ProfileKind::papers,
                                          ProfileKind::presets, ProfileKind::filters};

/// Raw text of a kind: the name of the case, which is also the folder of its files.
constexpr std::string_view rawText(ProfileKind kind)
{
    constexpr std::array<std::string_view, 5> kTexts{"films", "lenses", "papers", "presets", "filters"};
    return kTexts[static_cast<std::size_t>(kind)];
}

/// The `type` of every film that the program can render, and the `kind` of every paper.
inline constexpr std::array<std::string_view, 6> kSupportedFilmTypes{"color",   "bw",        "slide",
                                                                     "instant", "collodion", "tricolor"};
inline constexpr std::array<std::string_view, 4> kSupportedPaperKinds{"silver", "scan", "repro", "plate"};

} // namespace tamlo
