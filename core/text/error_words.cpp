#include "core/text/error_words.h"

#include "core/image/tamlo_error.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"

#include <filesystem>
#include <new>
#include <optional>

namespace tamlo {
namespace {

/// What stands at the placeholders of `pattern` in `text`; nothing where the two are not one sentence. A
/// placeholder takes the shortest text that lets the next piece follow; the last takes the rest.
std::optional<Loc::Args> match(std::string_view pattern, std::string_view text)
{
    Loc::Args args;
    for (auto open = pattern.find('{'); open != std::string_view::npos; open = pattern.find('{')) {
        if (!text.starts_with(pattern.substr(0, open))) return std::nullopt;
        text.remove_prefix(open);
        const auto close = pattern.find('}');
        const std::string name(pattern.substr(open + 1, close - open - 1));
        pattern.remove_prefix(close + 1);
        const std::string_view next = pattern.substr(0, pattern.find('{'));
        const auto end = next.empty() ? text.size() : text.find(next);
        if (end == std::string_view::npos) return std::nullopt;
        args.emplace_back(name, text.substr(0, end));
        text.remove_prefix(end);
    }
    if (text != pattern) return std::nullopt;
    return args;
}

/// A sentence that a key knows, in the language in force.
std::optional<std::string> known(const std::string& english)
{
    for (const std::string& key : Loc::keys(Loc::Lang::en)) {
        if (!key.starts_with("reason.")) continue;
        const auto pattern = Loc::value(key, Loc::Lang::en);
        if (!pattern) continue;
        if (const auto args = match(*pattern, english)) return T(key, *args);
    }
    return std::nullopt;
}

} // namespace

std::string ErrorWords::reason(const std::string& english)
{
    if (Loc::current() == Loc::Lang::en) return english;
    if (const auto told = known(english)) return *told;
    return T("error.library", {{"text", english}});
}

std::string ErrorWords::reason(const std::exception& error)
{
    return reason(std::string(error.what()));
}

std::string ErrorWords::of(const std::exception& error)
{
    if (const auto* own = dynamic_cast<const TamloError*>(&error)) {
        const std::string text =
            Loc::current() == Loc::Lang::en ? own->text() : known(own->text()).value_or(own->text());
        switch (own->kind()) {
        case TamloError::Kind::io:
            return T("error.io", {{"text", text}});
        case TamloError::Kind::invalidArgument:
            return T("error.invalidArgument", {{"text", text}});
        case TamloError::Kind::unsupported:
            return T("error.unsupported", {{"text", text}});
        case TamloError::Kind::cancelled:
            return T("error.cancelled");
        case TamloError::Kind::gpuAborted:
            break;
        }
    }
    if (dynamic_cast<const platform::PlatformError*>(&error)) return reason(error);
    if (const auto* system = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return system->path1().string() + ": " + reason(system->code().message());
    if (dynamic_cast<const std::bad_alloc*>(&error)) return reason("not enough memory");
    return error.what();
}

} // namespace tamlo
