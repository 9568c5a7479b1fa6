#include "cli/project_frames.h"

#include "cli/usage_error.h"
#include "core/text/loc.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace tamlo::cli {
namespace {

struct Range {
    std::size_t first, last; ///< from 1
};

std::optional<std::size_t> wholeNumber(std::string_view text)
{
    std::size_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stop != text.data() + text.size() || text.empty()) return std::nullopt;
    return number;
}

std::optional<Range> rangeOf(std::string_view text)
{
    const auto dash = text.find('-');
    const auto first = wholeNumber(text.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : wholeNumber(text.substr(dash + 1));
    if (!first || !last) return std::nullopt;
    return Range{*first, *last};
}

using Test = std::function<bool(const Frame&)>;

/// A word for a set of frames.
std::optional<Test> wordTest(std::string_view word, const std::function<FileState(const Frame&)>& stateOf)
{
    const auto marked = [](Mark mark) { return [mark](const Frame& frame) { return frame.mark == mark; }; };
    if (word == "all") return [](const Frame&) { return true; };
    if (word == "picked") return marked(Mark::selected);
    if (word == "rejected") return marked(Mark::rejected);
    if (word == "unmarked") return marked(Mark::none);
    if (word == "lost") return [&stateOf](const Frame& frame) { return canRelink(stateOf(frame)); };
    return std::nullopt;
}

std::vector<std::string> parted(const std::string& text)
{
    std::vector<std::string> out;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        out.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return out;
}

/// Marks the frames that one part means. A word may mean none.
void addMeant(std::vector<bool>& meant, const std::string& part, const Roll& roll,
              const std::function<FileState(const Frame&)>& stateOf)
{
    if (const auto range = rangeOf(part)) {
        if (range->first < 1 || range->last < range->first || range->last > roll.size())
            throw UsageError(T("cli.project.noPlace", {{"text", part}, {"n", roll.size()}}));
        for (std::size_t place = range->first; place <= range->last; ++place) meant[place - 1] = true;
        return;
    }
    const auto word = wordTest(part, stateOf);
    const Test test =
        word ? *word : [&](const Frame& frame) { return matchesPattern(frame.fileName(), part); };
    bool any = word.has_value();
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (test(roll[i])) meant[i] = any = true;
    if (!any) throw UsageError(T("cli.project.noFrame", {{"text", part}}));
}

} // namespace

bool matchesPattern(std::string_view name, std::string_view pattern)
{
    // The last star takes as much as it must: on a mismatch it takes one byte more.
    std::size_t n = 0, p = 0, starAt = std::string_view::npos, resumeAt = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starAt = p++;
            resumeAt = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (starAt != std::string_view::npos) {
            p = starAt + 1;
            n = ++resumeAt;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::vector<FrameID> framesMeant(const std::string& text, const Project& project,
                                 const std::function<FileState(const Frame&)>& stateOf)
{
    const Roll& roll = project.frames;
    std::vector<bool> meant(roll.size());
    // A file's name may hold commas.
    bool isName = false;
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (!rangeOf(text) && roll[i].fileName() == text) meant[i] = isName = true;
    if (!isName)
        for (const std::string& part : parted(text.empty() ? "all" : text))
            addMeant(meant, part, roll, stateOf);
    std::vector<FrameID> out;
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (meant[i]) out.push_back(roll[i].id);
    return out;
}

FrameID frameMeant(const std::string& text, const Project& project,
                   const std::function<FileState(const Frame&)>& stateOf)
{
    const std::vector<FrameID> meant = framesMeant(text, project, stateOf);
    if (meant.size() != 1)
        throw UsageError(T("cli.project.notOneFrame", {{"text", text}, {"n", meant.size()}}));
    return meant.front();
}

} // namespace tamlo::cli
