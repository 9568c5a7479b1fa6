#include "platform/text_runs.h"

#include "platform/platform_error.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <memory>
#include <optional>

namespace tamlo::platform {
namespace {

void check(UErrorCode code)
{
    if (U_FAILURE(code)) throw PlatformError(std::string("the Unicode library failed: ") + u_errorName(code));
}

/// Composed letters on one line.
icu::UnicodeString oneLine(std::string_view utf8, std::size_t longest)
{
    const icu::UnicodeString all =
        icu::UnicodeString::fromUTF8({utf8.data(), static_cast<std::int32_t>(utf8.size())});
    icu::UnicodeString line;
    for (std::int32_t i = 0; i < all.length() && static_cast<std::size_t>(line.length()) < longest;
         i = all.moveIndex32(i, 1)) {
        const UChar32 c = all.char32At(i);
        if (u_isUWhiteSpace(c) && (u_iscntrl(c) || c == 0x2028 || c == 0x2029))
            line.append(static_cast<UChar32>(' '));
        else if (u_charType(c) != U_CONTROL_CHAR)
            line.append(c);
    }
    UErrorCode code = U_ZERO_ERROR;
    const icu::Normalizer2* composer = icu::Normalizer2::getNFCInstance(code);
    check(code);
    line = composer->normalize(line, code);
    check(code);
    return line;
}

/// A letter with its accents, and what it needs of a run.
struct Letter {
    std::int32_t end = 0;
    int face = -1;
    UScriptCode script = USCRIPT_COMMON;
};

class Cutter {
public:
    Cutter(const icu::UnicodeString& line, int faces, const std::function<bool(int, char32_t)>& has)
        : line_(line), faces_(faces), has_(has)
    {
        UErrorCode code = U_ZERO_ERROR;
        letters_.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), code));
        check(code);
        letters_->setText(line);
    }

    /// The pieces of [begin, end), which is all of one direction, in the order of the text.
    std::vector<TextRun> pieces(std::int32_t begin, std::int32_t end, bool rightToLeft)
    {
        std::vector<TextRun> runs;
        std::optional<UScriptCode> script;
        for (std::int32_t at = begin; at < end;) {
            const Letter letter = letterAt(at, end);
            const bool common = letter.script <= USCRIPT_INHERITED;
            const bool joins = !runs.empty() && runs.back().face == letter.face && letter.face >= 0 &&
                               (common || !script || *script == letter.script);
            if (!joins) runs.push_back({static_cast<std::size_t>(at), 0, letter.face, rightToLeft});
            if (!joins) script.reset();
            if (!common) script = letter.script;
            runs.back().end = static_cast<std::size_t>(letter.end);
            at = letter.end;
        }
        return runs;
    }

private:
    Letter letterAt(std::int32_t at, std::int32_t end)
    {
        Letter letter;
        letter.end = std::min(letters_->following(at), end);
        if (letter.end <= at) letter.end = end;
        UErrorCode code = U_ZERO_ERROR;
        letter.script = uscript_getScript(line_.char32At(at), &code);
        for (int face = 0; face < faces_ && letter.face < 0; ++face)
            if (drawsAll(face, at, letter.end)) letter.face = face;
        return letter;
    }

    bool drawsAll(int face, std::int32_t at, std::int32_t end) const
    {
        for (; at < end; at = line_.moveIndex32(at, 1)) {
            const UChar32 c = line_.char32At(at);
            const bool inkless =
                u_isUWhiteSpace(c) || u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
            if (!inkless && !has_(face, static_cast<char32_t>(c))) return false;
        }
        return true;
    }

    const icu::UnicodeString& line_;
    int faces_;
    const std::function<bool(int, char32_t)>& has_;
    std::unique_ptr<icu::BreakIterator> letters_;
};

struct BidiCloser {
    void operator()(UBiDi* bidi) const noexcept { ubidi_close(bidi); }
};

} // namespace

TextRuns textRuns(std::string_view utf8, std::size_t longest, int faces,
                  const std::function<bool(int face, char32_t c)>& has)
{
    const icu::UnicodeString line = oneLine(utf8, longest);
    TextRuns out;
    if (line.isEmpty()) return out;
    out.text.assign(line.getBuffer(), static_cast<std::size_t>(line.length()));

    const std::unique_ptr<UBiDi, BidiCloser> bidi(ubidi_open());
    if (!bidi) throw PlatformError("the Unicode library failed: no memory");
    UErrorCode code = U_ZERO_ERROR;
    ubidi_setPara(bidi.get(), line.getBuffer(), line.length(), UBIDI_DEFAULT_LTR, nullptr, &code);
    const std::int32_t count = ubidi_countRuns(bidi.get(), &code);
    check(code);
    Cutter cutter(line, faces, has);
    for (std::int32_t run = 0; run < count; ++run) {
        std::int32_t begin = 0, length = 0;
        const bool rightToLeft = ubidi_getVisualRun(bidi.get(), run, &begin, &length) == UBIDI_RTL;
        const std::vector<TextRun> pieces = cutter.pieces(begin, begin + length, rightToLeft);
        if (rightToLeft)
            out.visual.insert(out.visual.end(), pieces.rbegin(), pieces.rend());
        else
            out.visual.insert(out.visual.end(), pieces.begin(), pieces.end());
    }
    return out;
}

} // namespace tamlo::platform
