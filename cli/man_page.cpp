#include "cli/man_page.h"

#include "cli/arguments.h"
#include "cli/messages.h"
#include "cli/option_help.h"
#include "core/profiles/presets/preset_schema.h"

#include <algorithm>
#include <set>

namespace tamlo::cli {
namespace {

/// Text as the formatter takes it: no hyphenated dash, no backslash, no line that begins a request.
std::string escaped(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else
            out += c;
    }
    return out.starts_with('.') || out.starts_with('\'') ? "\\&" + out : out;
}

std::string bold(const std::string& text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text)
{
    return "\\fI" + escaped(text) + "\\fR";
}

std::string section(const std::string& title)
{
    return ".SH " + escaped(title) + "\n";
}

/// A term with its words below it.
std::string entry(const std::string& term, const std::string& words)
{
    return ".TP\n" + term + "\n" + escaped(words) + "\n";
}

std::string entry(const OptionDescription& option)
{
    std::string term;
    for (const std::string& name : option.names) term += (term.empty() ? "" : ", ") + bold(name);
    if (!option.value.empty()) term += (term.empty() ? "" : " ") + italic(option.value);
    return entry(term, option.help);
}

/// The options of `like`, which the page tells before, are not told again.
std::string commandSection(const CommandDescription& command, const CommandDescription& like)
{
    const auto isTold = [&](const OptionDescription& option) {
        return &command != &like && std::ranges::any_of(like.options, [&](const OptionDescription& one) {
            return one.names == option.names && one.help == option.help;
        });
    };
    const auto count = std::ranges::count_if(command.options, isTold);
    constexpr std::ptrdiff_t kManyShared = 5;
    std::string usage = "tamlo " + command.name;
    for (const OptionDescription& argument : command.arguments) usage += " " + argument.value;
    std::string out = ".SS " + escaped(usage) + "\n" + escaped(command.help) + ".\n";
    for (const OptionDescription& argument : command.arguments) out += entry(argument);
    for (const OptionDescription& option : command.options)
        if (option.names.back() != "--help" && !(count > kManyShared && isTold(option))) out += entry(option);
    if (count > kManyShared) out += ".P\n" + escaped(T("cli.man.asCommand", {{"name", like.name}})) + "\n";
    return out;
}

std::string optionEntry(const OptionRow& row)
{
    const OptionInWords words = inWords(row);
    std::string about = words.meaning + ". ";
    about += words.range.empty() ? words.type : words.range;
    if (!words.unit.empty()) about += " (" + words.unit + ")";
    about += "; " + T("cli.man.default", {{"value", words.standard}}) + ".";
    if (!words.synonyms.empty())
        about += " " + T("cli.optionHelp.synonyms") + ": " + joined(words.synonyms, T("common.and")) + ".";
    return entry(bold(words.key), about);
}

/// The options of the render, by the blocks of a darkroom, and those of no block at the end.
std::string optionSections()
{
    std::string out;
    std::set<std::string> told;
    const auto tell = [&](const OptionRow& row) {
        out += optionEntry(row);
        told.insert(row.key);
    };
    for (const PresetBlock block : PresetSchema::order()) {
        out += ".SS " + escaped(T(std::string(PresetSchema::titleKey(block)))) + "\n";
        for (const std::string_view key : PresetSchema::keys(block))
            if (const OptionRow* row = findOption(key)) tell(*row);
    }
    out += ".SS " + escaped(T("cli.man.others")) + "\n";
    for (const OptionRow& row : optionTable())
        if (!told.contains(row.key)) tell(row);
    return out;
}

std::string examples()
{
    const std::pair<const char*, const char*> lines[] = {
        {"tamlo develop IMG_0042.NEF -o print.jpg --film \"Tri-X\" --paper bw_fb_warm",
         "cli.man.example.one"},
        {"tamlo develop --preset kodachrome_rain --out-dir prints --long 2400 holiday/",
         "cli.man.example.folder"},
        {"tamlo develop *.NEF --set exposure=+1/3 contrast=3 --name \"{stem}-{film}.{ext}\"",
         "cli.man.example.name"},
        {"source <(tamlo completion bash)", "cli.man.example.completion"}};
    std::string out;
    for (const auto& [line, key] : lines) out += entry(bold(line), T(key));
    return out;
}

std::string environment()
{
    std::string out;
    for (const char* name : {"TAMLO_USER_DIR", "TAMLO_PROXY_DIR", "TAMLO_PROFILES", "TAMLO_PROFILE",
                             "TAMLO_SERVICE", "TAMLO_TIER_DEBUG", "TAMLO_DUMP_FRAME"})
        out += entry(bold(name), T(std::string("cli.man.environment.") + name));
    return out;
}

} // namespace

std::string manPage()
{
    const std::vector<CommandDescription> commands = describeCommands();
    const CommandDescription& program = commands.front();
    std::string out = ".TH TAMLO 1 \"\" \"" + escaped(versionText()) + "\" \"Tamlo\"\n";
    out += section(T("cli.man.name")) + "tamlo \\- " + escaped(T("cli.man.summary")) + "\n";
    out += section(T("cli.man.synopsis")) + ".B tamlo\n" + italic(T("cli.help.commandMark")) + " [" +
           italic(T("cli.help.optionsMark")) + "]\n";
    out += section(T("cli.man.description")) + escaped(T("cli.man.about")) + "\n";
    out += section(T("cli.man.commands"));
    for (std::size_t i = 1; i < commands.size(); ++i) out += commandSection(commands[i], commands[1]);
    out += section(T("cli.man.anywhere"));
    for (const OptionDescription& option : program.options) out += entry(option);
    out += section(T("cli.man.render")) + escaped(T("cli.man.aboutRender")) + "\n" + optionSections();
    out += section(T("cli.man.status")) + escaped(T("cli.help.footer")) + "\n";
    out += section(T("cli.man.environment")) + environment();
    out += section(T("cli.man.examples")) + examples();
    return out;
}

} // namespace tamlo::cli
