#include "cli/parser_error.h"

#include "core/text/loc.h"

#include <algorithm>
#include <regex>

namespace tamlo::cli {
namespace {

/// The parser hands over nothing but its English sentence; these are the ones it has. Brackets hold what is
/// told.
struct Sentence {
    const char* pattern;
    const char* key;
    std::vector<std::string> fields; ///< what each bracket is
};

const std::vector<Sentence>& sentences()
{
    static const std::vector<Sentence> all{
        {"A subcommand is required", "cli.parser.needsCommand", {}},
        {"(.+) is required", "cli.parser.needsArgument", {"name"}},
        {"The following arguments? (?:was|were) not expected: (.+)", "cli.parser.unexpected", {"list"}},
        {"(\\S+): \\d+ required .* missing", "cli.parser.needsValue", {"option"}},
        {"(\\S+):? .*requires? (?:at least )?\\d+ argument.*", "cli.parser.needsValue", {"option"}},
        {"Could not convert: (\\S+) = (.*)", "cli.parser.noNumber", {"option", "value"}},
        {"(\\S+): Value (.+) not in range \\[?(\\S+) (?:-|to) ([^\\s\\]]+)\\]?",
         "cli.parser.range",
         {"option", "value", "low", "high"}},
        {"(\\S+): (.*) not in \\{(.*)\\}", "cli.parser.oneOf", {"option", "value", "list"}},
        {"(\\S+) excludes (\\S+)", "cli.parser.excludes", {"first", "second"}},
    };
    return all;
}

} // namespace

std::string inOurWords(const CLI::ParseError& error)
{
    std::string text = error.what();
    std::ranges::replace(text, '\n', ' ');
    while (!text.empty() && text.back() == ' ') text.pop_back();
    for (const Sentence& one : sentences()) {
        std::smatch match;
        if (!std::regex_match(text, match, std::regex(one.pattern))) continue;
        Loc::Args args;
        for (std::size_t i = 0; i < one.fields.size(); ++i) {
            std::string value = match[i + 1];
            if (one.fields[i] == "list") value = std::regex_replace(value, std::regex(",\\s*|\\s+"), ", ");
            args.emplace_back(one.fields[i], value);
        }
        return T(one.key, args);
    }
    return text;
}

} // namespace tamlo::cli
