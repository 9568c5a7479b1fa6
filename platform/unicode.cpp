#include "platform/unicode.h"

#include "platform/platform_error.h"

#include <unicode/brkiter.h>
#include <unicode/coll.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace tamlo::platform {
namespace {

icu::UnicodeString decoded(std::string_view text)
{
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string encoded(const icu::UnicodeString& text)
{
    std::string out;
    text.toUTF8String(out);
    return out;
}

void check(UErrorCode code)
{
    if (U_FAILURE(code)) throw PlatformError(std::string("the Unicode library failed: ") + u_errorName(code));
}

std::unique_ptr<icu::Collator> makeNaturalCollator()
{
    UErrorCode code = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale::getRoot(), code));
    check(code);
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, code);
    check(code);
    return collator;
}

/// A text and where its characters end, the beginning before them.
struct Characters {
    explicit Characters(std::string_view utf8) : text(decoded(utf8))
    {
        UErrorCode code = U_ZERO_ERROR;
        const std::unique_ptr<icu::BreakIterator> characters(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), code));
        check(code);
        characters->setText(text);
        for (std::int32_t end = characters->next(); end != icu::BreakIterator::DONE; end = characters->next())
            ends.push_back(end);
    }

    icu::UnicodeString text;
    std::vector<std::int32_t> ends{0};
};

} // namespace

bool isUtf8(std::string_view bytes)
{
    const auto length = static_cast<std::int32_t>(bytes.size());
    for (std::int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U8_NEXT(bytes.data(), i, length, c);
        if (c < 0) return false;
    }
    return true;
}

std::string asUtf8(std::string_view text)
{
    if (isUtf8(text)) return std::string(text);
    icu::UnicodeString line;
    for (const char byte : text) line.append(static_cast<UChar32>(static_cast<unsigned char>(byte)));
    return encoded(line);
}

std::string lowerCased(std::string_view text)
{
    return encoded(decoded(text).toLower(icu::Locale::getRoot()));
}

std::string upperCased(std::string_view text)
{
    return encoded(decoded(text).toUpper(icu::Locale::getRoot()));
}

std::string trimmed(std::string_view text)
{
    icu::UnicodeString line = decoded(text);
    std::int32_t begin = 0, end = line.length();
    while (begin < end && u_isUWhiteSpace(line.char32At(begin))) begin = line.moveIndex32(begin, 1);
    while (end > begin && u_isUWhiteSpace(line.char32At(end - 1))) end = line.moveIndex32(end, -1);
    return encoded(line.tempSubStringBetween(begin, end));
}

std::string whiteSpaceReplaced(std::string_view text, std::string_view replacement)
{
    const icu::UnicodeString line = decoded(text), instead = decoded(replacement);
    icu::UnicodeString out;
    bool inRun = false;
    for (std::int32_t i = 0; i < line.length(); i = line.moveIndex32(i, 1)) {
        const UChar32 c = line.char32At(i);
        const bool space = u_isUWhiteSpace(c);
        if (!space)
            out.append(c);
        else if (!inRun)
            out.append(instead);
        inRun = space;
    }
    return encoded(out);
}

std::string firstCharacters(std::string_view text, std::size_t count)
{
    const Characters line(text);
    return encoded(line.text.tempSubStringBetween(0, line.ends[std::min(count, line.ends.size() - 1)]));
}

std::string lastCharacters(std::string_view text, std::size_t count)
{
    const Characters line(text);
    const std::size_t all = line.ends.size() - 1;
    return encoded(line.text.tempSubStringBetween(line.ends[all - std::min(count, all)]));
}

std::size_t characterCount(std::string_view text)
{
    return Characters(text).ends.size() - 1;
}

std::string naturalSortKey(std::string_view text)
{
    static const std::unique_ptr<const icu::Collator> kCollator = makeNaturalCollator();
    const icu::UnicodeString line = decoded(text);
    const std::int32_t size = kCollator->getSortKey(line, nullptr, 0);
    std::string key(static_cast<std::size_t>(size), '\0');
    kCollator->getSortKey(line, reinterpret_cast<std::uint8_t*>(key.data()), size);
    return key;
}

} // namespace tamlo::platform
