#include "cli/session_words.h"

#include "core/text/loc.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace tamlo::cli {

UsageError badLine(const SessionWords& words)
{
    return UsageError(T("cli.session.badLine", {{"line", restFrom(words, 0)}, {"verb", words[0]}}));
}

const std::string& textAt(const SessionWords& words, std::size_t at)
{
    if (at >= words.size()) throw badLine(words);
    return words[at];
}

double numberAt(const SessionWords& words, std::size_t at)
{
    double number = 0;
    const std::string& word = textAt(words, at);
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number)) throw badLine(words);
    return number;
}

int countAt(const SessionWords& words, std::size_t at)
{
    constexpr double kMost = 1'000'000;
    if (at >= words.size()) return 1;
    const double n = numberAt(words, at);
    if (!(std::abs(n) <= kMost) || n != static_cast<int>(n)) throw badLine(words);
    return static_cast<int>(n);
}

std::string restFrom(const SessionWords& words, std::size_t at)
{
    std::string out;
    for (std::size_t i = at; i < words.size(); ++i) out += (out.empty() ? "" : " ") + words[i];
    return out;
}

void needDevelop(LiveSession& session)
{
    if (session.model().selection.screen() != Screen::develop) throw UsageError(T("cli.session.needsFrame"));
}

void needNoFailure(LiveSession& session)
{
    if (session.model().lastActionFailed()) throw std::runtime_error(session.model().status());
}

} // namespace tamlo::cli
