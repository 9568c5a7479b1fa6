// The enumerations of RenderOptions and their raw texts, as JSON and the command line write them.
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace tamlo {

enum class FilmFormat { f135, f120, half, sheet4x5, sheet, plate };
enum class Development { standard, acutance, fine, stand, hand, bleachBypass, iron, pyro };
enum class GrainEngine { classic, growth };
enum class FrameStyle { none, thin, wide };

namespace Grain {
/// How growth grain is computed: chosen by size, always in full, always as the cheaper aggregate.
enum class GrowthZone { automatic, full, aggregate };
} // namespace Grain

/// The cases of an enumeration with their raw texts, in order.
template <typename E>
struct EnumTexts;

template <>
struct EnumTexts<FilmFormat> {
    static constexpr std::array<std::pair<FilmFormat, std::string_view>, 6> rows{
        {{FilmFormat::f135, "135"},
         {FilmFormat::f120, "120"},
         {FilmFormat::half, "half"},
         {FilmFormat::sheet4x5, "4x5"},
         {FilmFormat::sheet, "sheet"},
         {FilmFormat::plate, "plate"}}};
};

template <>
struct EnumTexts<Development> {
    static constexpr std::array<std::pair<Development, std::string_view>, 8> rows{
        {{Development::standard, "standard"},
         {Development::acutance, "acutance"},
         {Development::fine, "fine"},
         {Development::stand, "stand"},
         {Development::hand, "hand"},
         {Development::bleachBypass, "bleach_bypass"},
         {Development::iron, "iron"},
         {Development::pyro, "pyro"}}};
};

template <>
struct EnumTexts<GrainEngine> {
    static constexpr std::array<std::pair<GrainEngine, std::string_view>, 2> rows{
        {{GrainEngine::classic, "classic"}, {GrainEngine::growth, "growth"}}};
};

template <>
struct EnumTexts<FrameStyle> {
    static constexpr std::array<std::pair<FrameStyle, std::string_view>, 3> rows{
        {{FrameStyle::none, "none"}, {FrameStyle::thin, "thin"}, {FrameStyle::wide, "wide"}}};
};

/// Raw text of a case.
template <typename E>
constexpr std::string_view rawText(E value)
{
    for (const auto& [entry, text] : EnumTexts<E>::rows)
        if (entry == value) return text;
    return {};
}

/// The case of a raw text, or nothing when no case has it.
template <typename E>
constexpr std::optional<E> fromRawText(std::string_view text)
{
    for (const auto& [entry, raw] : EnumTexts<E>::rows)
        if (raw == text) return entry;
    return std::nullopt;
}

} // namespace tamlo
