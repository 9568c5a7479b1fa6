#include "core/profiles/formats/nearest_text.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace tamlo {

namespace {

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(a[i]) == lower(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

std::optional<std::string> nearestText(std::string_view word, std::span<const std::string> known)
{
    constexpr std::size_t kLongestWord = 200; // a longer one is no slip of the finger
    if (word.size() > kLongestWord) return std::nullopt;
    std::optional<std::string> best;
    std::size_t bestDistance = 0;
    for (const std::string& one : known) {
        const std::size_t distance = editDistance(word, one);
        if (best && distance >= bestDistance) continue;
        if (2 * distance > std::max(word.size(), one.size())) continue;
        best = one;
        bestDistance = distance;
    }
    return best;
}

} // namespace tamlo
