// Options as photographers write them: words that stand for a key ("exposure", "contrast", "iso"), and
// numbers with a comma, as fractions and mixed ("ev=+1/3", "ev=0,5", "push=1 1/2").
#pragma once

#include "core/profiles/options/option_table.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo::cli {

/// A word that photographers type for an option's key.
struct Synonym {
    std::string_view word;
    std::string_view key;
};
std::span<const Synonym> synonyms();
/// The words that stand for a key.
std::vector<std::string> synonymsOf(std::string_view key);

/// The word for a film's exposure index, which sets `ev` by the film's own speed.
inline constexpr std::string_view kIsoWord = "iso";

/// The key of the option table that a word means: a key, its older spelling, with dashes, or a synonym; the
/// word itself where it is none of them.
std::string optionKey(const std::string& word);

/// A number as the option table reads it, from any of the forms above; any other text as it came.
std::string plainNumber(const std::string& text);

/// Sets one option by a word and a text of the user. Errors: those of tamlo::setOption, which name the key.
void setOptionByWord(RenderOptions& options, const std::string& word, const std::string& text);

/// Stops that a film gets which is exposed for another speed than its own. Errors: UsageError for what is no
/// speed.
double stopsOfIndex(const std::string& text, int speed);

} // namespace tamlo::cli
