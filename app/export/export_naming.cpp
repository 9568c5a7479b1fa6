#include "app/export/export_naming.h"

#include "app/project/file_resolver.h"
#include "platform/unicode.h"

#include <algorithm>

namespace tamlo::ExportNaming {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> kTexts{"source", "tamlo",  "number_source",
                                                 "number", "custom", "name"};
constexpr std::string_view kSocialTail = "_social.jpg";
constexpr std::string_view kCopyTail = " 999";

/// At most so many bytes, cut between two characters of UTF-8.
std::string cut(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes) return std::string(text);
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    while (bytes > 0 && continues(text[bytes])) --bytes;
    return std::string(text.substr(0, bytes));
}

} // namespace

std::string_view rawText(Mode mode)
{
    return kTexts[static_cast<std::size_t>(mode)];
}

std::optional<Mode> fromText(std::string_view text)
{
    const auto found = std::ranges::find(kTexts, text);
    if (found == kTexts.end()) return std::nullopt;
    return static_cast<Mode>(found - kTexts.begin());
}

std::size_t numberWidth(std::size_t count)
{
    return std::max(std::to_string(std::max<std::size_t>(count, 1)).size(), minDigits);
}

std::string customStem(std::string_view text)
{
    constexpr std::string_view kForbidden = "/\\:*?\"<>|";
    std::string clean(text);
    for (char& c : clean)
        if (static_cast<unsigned char>(c) < 0x20 || kForbidden.find(c) != kForbidden.npos) c = '_';
    clean = platform::trimmed(clean);
    while (clean.ends_with('.')) clean.pop_back();
    return clean.empty() ? "tamlo" : clean;
}

std::string fileName(const Name& name)
{
    if (name.mode == Mode::name && name.count != 1) throw NamingError();
    std::string number = std::to_string(std::max<std::int64_t>(name.index, 0));
    const std::size_t width = numberWidth(static_cast<std::size_t>(std::max<std::int64_t>(name.count, 1)));
    if (number.size() < width) number.insert(0, width - number.size(), '0');
    std::string before, middle = name.stem, after;
    switch (name.mode) {
    case Mode::source:
        break;
    case Mode::tamlo:
        after = "_tamlo";
        break;
    case Mode::numberSource:
        before = number + "_";
        break;
    case Mode::number:
        middle = number;
        break;
    case Mode::custom:
        middle = customStem(name.custom);
        after = "_" + number;
        break;
    case Mode::name:
        middle = customStem(name.custom);
        break;
    }
    const std::size_t tail = kCopyTail.size() + std::max(kSocialTail.size(), name.ext.size() + 1);
    return before + cut(middle, kLongestName - tail - before.size() - after.size()) + after + "." + name.ext;
}

bool defaultExists(const Path& url)
{
    std::error_code problem;
    return fs::exists(fs::symlink_status(url, problem));
}

std::string key(const Path& url)
{
    return FileResolver::standardised(url);
}

Path socialPath(const Path& master)
{
    return master.parent_path() / "social" / (master.stem().string() + std::string(kSocialTail));
}

bool isTaken(const Path& url, const Keys& taken, const Exists& exists)
{
    for (const Path& one : {url, socialPath(url)})
        if (taken.contains(key(one)) || exists(one)) return true;
    return false;
}

Path freeName(const Path& url, const std::function<bool(const Path&)>& isTakenName)
{
    Path name = url;
    for (std::size_t k = 2; isTakenName(name); ++k)
        name.replace_filename(url.stem().string() + " " + std::to_string(k) + url.extension().string());
    return name;
}

Path freeName(const Path& url, const Keys& taken, const Exists& exists)
{
    return freeName(url, [&](const Path& name) { return isTaken(name, taken, exists); });
}

} // namespace tamlo::ExportNaming
