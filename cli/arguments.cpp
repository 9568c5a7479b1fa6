#include "cli/arguments.h"

#include "cli/catalogue.h"
#include "cli/messages.h"
#include "cli/option_help.h"
#include "cli/parser_error.h"
#include "cli/usage_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace tamlo::cli {
namespace {

/// "key=value", the form of a setting, and no option of our own.
bool isSetting(const std::string& text)
{
    const std::size_t equals = text.find('=');
    return equals != std::string::npos && equals > 0 && text[0] != '-' &&
           std::all_of(text.begin(), text.begin() + equals, [](char c) {
               return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-';
           });
}

/// One --set may be followed by several settings; the parser wants --set before each of them.
std::vector<std::string> withEachSettingNamed(const std::vector<std::string>& arguments)
{
    std::vector<std::string> out;
    bool afterSetting = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--") {
            out.insert(out.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i), arguments.end());
            break;
        }
        if (arguments[i] == "--set" && i + 1 < arguments.size()) {
            out.push_back(arguments[i++]);
            out.push_back(arguments[i]);
            afterSetting = true;
            continue;
        }
        afterSetting = afterSetting && isSetting(arguments[i]);
        if (afterSetting) out.emplace_back("--set");
        out.push_back(arguments[i]);
    }
    return out;
}

struct NamedOption {
    const char* name;
    const char* key; ///< of the option of the render
    const char* value;
    const char* helpKey;
};

/// Options of the render that are asked for often enough to have a name beside --set.
constexpr NamedOption kNamedOptions[] = {
    {"--exposure", "ev", "EV", "cli.help.exposure"},
    {"--iso", "iso", "N", "cli.help.iso"},
    {"--contrast", "grade", "GRADE", "cli.help.contrast"},
    {"--filter-cut", "filter_cut", "ID", "cli.help.filterCut"},
    {"--filter-diffusion", "filter_diffusion", "ID", "cli.help.filterDiffusion"},
    {"--filter-rays", "filter_rays", "ID", "cli.help.filterRays"},
    {"--filter-grad", "filter_grad", "ID", "cli.help.filterGrad"},
    {"--crop", "crop", "X,Y,W,H[,ANGLE]", "cli.help.crop"},
    {"--rotate", "rotate", "DEG", "cli.help.rotate"},
    {"--format", "format", "FORMAT", "cli.help.format"},
    {"--frame-size", "frame_size", "SIZE", "cli.help.frameSize"},
    {"--print-cm", "print_cm", "CM", "cli.help.printCm"},
    {"--sheet-cm", "sheet_cm", "CM", "cli.help.sheetCm"},
    {"--border", "border", "FRACTION", "cli.help.border"},
};

void describeNamed(CLI::App& command, RenderArguments& into)
{
    for (const NamedOption& option : kNamedOptions) {
        const std::string key = option.key;
        command
            .add_option_function<std::string>(
                option.name, [&into, key](const std::string& text) { into.named[key] = text; },
                T(option.helpKey))
            ->type_name(option.value);
    }
    command.add_flag_callback(
        "--mirror", [&into] { into.named["mirror"] = "true"; }, T("cli.help.mirror"));
}

/// The option shown with its value's name alone, without the parser's English words on type and range.
void showAs(CLI::Option* option, const char* value)
{
    option->type_name(value)->option_text(value);
}

/// An argument without a name, told by its place.
template <typename Value>
CLI::Option* addArgument(CLI::App& command, const char* name, Value& into, const std::string& help)
{
    return command.add_option(name, into, help)->required()->type_name("");
}

void describeRender(CLI::App& command, RenderArguments& into)
{
    addArgument(command, "INPUT", into.inputs, T("cli.help.input"));
    command.add_option("--preset", into.preset, T("cli.help.preset"))->type_name("ID|FILE");
    command.add_option("--like", into.like, T("cli.help.like"))->type_name("PRINT");
    command.add_option("--film", into.film, T("cli.help.film"))->type_name("ID");
    command.add_option("--lens", into.lens, T("cli.help.lens"))->type_name("ID");
    command.add_option("--paper", into.paper, T("cli.help.paper"))->type_name("ID");
    describeNamed(command, into);
    command.add_option("--set", into.settings, T("cli.help.set"))
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command.add_option("--options", into.optionsFile, T("cli.help.optionsFile"))->type_name("FILE.json");
    command.add_option("--seed", into.seed, T("cli.help.seed"))->type_name("N");
    showAs(command.add_option("--long", into.longPx, T("cli.help.long"))
               ->check(CLI::Range(std::int64_t{1}, std::int64_t{100000})),
           "PX");
    showAs(command.add_option("--fit", into.fit, T("cli.help.fit"))->check(CLI::IsMember({"crop", "inside"})),
           "crop|inside");
    showAs(command.add_option("--scale", into.scale, T("cli.help.scale"))->check(CLI::Range(0.01, 1.0)),
           "FACTOR");
}

void describeDevelop(CLI::App& command, DevelopArguments& into)
{
    describeRender(command, into);
    auto* output = command.add_option("-o", into.output, T("cli.help.output"));
    showAs(output, "FILE");
    showAs(command.add_option("--out-dir", into.outFolder, T("cli.help.outFolder"))->excludes(output), "DIR");
    showAs(command.add_option("--name", into.name, T("cli.help.name"))->excludes(output), "PATTERN");
    command.add_flag("--skip-existing", into.skipExisting, T("cli.help.skipExisting"));
    command.add_flag("--quiet", into.quiet, T("cli.help.quiet"));
    command.add_flag("--json", into.json, T("cli.help.jsonLines"));
    showAs(command.add_option("--quality", into.quality, T("cli.help.quality", {{"default", into.quality}}))
               ->check(CLI::Range(1, 100)),
           "Q");
    command.add_flag("--auto-print", into.autoPrint, T("cli.help.autoPrint"));
    command.add_flag_callback(
        "--no-auto-print", [&into] { into.autoPrint = false; }, T("cli.help.noAutoPrint"));
    command.add_flag("--tolerant", into.tolerant, T("cli.help.tolerant"));
    command.add_option("--author", into.author, T("cli.help.author"))->type_name("NAME");
    command.add_option("--copyright", into.copyright, T("cli.help.copyright"))->type_name("NOTICE");
    command.add_flag_callback(
        "--no-recipe", [&into] { into.recipe = false; }, T("cli.help.noRecipe"));
}

void describeMeasure(CLI::App& command, MeasureArguments& into)
{
    command.add_option("FILM", into.film, T("cli.help.measureFilm"))->type_name("");
    command.add_option("--paper", into.paper, T("cli.help.measurePaper"))->type_name("ID");
    command.add_option("--set", into.settings, T("cli.help.measureSet"))
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command.add_flag("--json", into.json, T("cli.help.jsonObject"));
    command.add_option("--plot", into.plot, T("cli.help.plot"))->type_name("FILE.svg");
}

/// Commands that keep the catalogue.
void describeCatalogue(CLI::App& app, ListArguments& list, ShowArguments& show, CheckArguments& check,
                       ImportArguments& import, ExportArguments& exported)
{
    const std::string oneKind = joined(singularKinds(), T("common.or"));
    auto* listCommand = app.add_subcommand("list", T("cli.help.list"));
    addArgument(*listCommand, "KIND", list.kind, joined(listedKinds(), T("common.or")));
    listCommand->add_flag("--json", list.json, T("cli.help.jsonArray"));
    listCommand->add_flag("--ids", list.ids, T("cli.help.ids"));
    auto* showCommand = app.add_subcommand("show", T("cli.help.show"));
    addArgument(*showCommand, "KIND", show.kind,
                joined({"film", "lens", "paper", "filter", "preset", "recipe"}, T("common.or")));
    addArgument(*showCommand, "ID", show.id, T("cli.help.idOrPrint"));
    showCommand->add_flag("--json", show.json, T("cli.help.recipeJson"));
    auto* checkCommand = app.add_subcommand("check", T("cli.help.check"));
    addArgument(*checkCommand, "FILE", check.files, T("cli.help.profileFiles"));
    auto* importCommand = app.add_subcommand("import", T("cli.help.import"));
    addArgument(*importCommand, "FILE", import.files, T("cli.help.profileFiles"));
    const std::map<std::string, PresetConflict> answers{{"replace", PresetConflict::replace},
                                                        {"copy", PresetConflict::copy},
                                                        {"cancel", PresetConflict::cancel}};
    showAs(importCommand
               ->add_option_function<std::string>(
                   "--on-conflict",
                   [&import, answers](const std::string& answer) { import.onConflict = answers.at(answer); },
                   T("cli.help.onConflict"))
               ->check(CLI::IsMember({"replace", "copy", "cancel"})),
           "ANSWER");
    auto* exportCommand = app.add_subcommand("export", T("cli.help.export"));
    addArgument(*exportCommand, "KIND", exported.kind, oneKind);
    addArgument(*exportCommand, "ID", exported.id, T("cli.help.id"));
    addArgument(*exportCommand, "FILE", exported.file, T("cli.help.exportFile"));
}

/// "develop, plan and export".
std::string commandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
    return joined(names, T("common.and"));
}

/// Headings, and the options that the parser brings. Before any command is added, which takes them over.
void describeProgram(CLI::App& app)
{
    app.get_formatter()->label("Usage", T("cli.help.usage"));
    app.get_formatter()->label("OPTIONS", T("cli.help.optionsMark"));
    app.get_formatter()->label("SUBCOMMAND", T("cli.help.commandMark"));
    app.get_formatter()->label("Positionals", T("cli.help.arguments"));
    app.get_formatter()->label("REQUIRED", ""); // the line of usage tells, in brackets, what may be left out
    app.option_defaults()->group(T("cli.help.options"));
    app.group(T("cli.help.commands"));
    app.footer(T("cli.help.footer"));
    app.require_subcommand(1);
    app.set_help_flag("-h,--help", T("cli.help.help"));
    app.set_version_flag("--version", versionText(), T("cli.help.version"));
}

/// The language after --lang, which is needed before anything is said.
void chooseLanguage(const std::vector<std::string>& arguments)
{
    constexpr std::string_view kOption = "--lang";
    for (std::size_t i = 0; i < arguments.size() && arguments[i] != "--"; ++i) {
        std::string_view value = arguments[i];
        if (!value.starts_with(kOption)) continue;
        value.remove_prefix(kOption.size());
        if (value.empty() && i + 1 < arguments.size())
            value = arguments[i + 1];
        else if (value.starts_with('='))
            value.remove_prefix(1);
        else
            continue;
        const std::optional<Loc::Lang> lang = Loc::langOf(value);
        if (!lang) throw UsageError(T("cli.badLang", {{"value", value}}));
        Loc::setOverride(lang);
    }
}

/// The help of the command that was called, of its verb where it has verbs.
std::string helpOf(const CLI::App& app)
{
    const CLI::App* called = &app;
    std::string before;
    while (!called->get_subcommands().empty()) {
        before += (before.empty() ? "" : " ") + called->get_name();
        called = called->get_subcommands().front();
    }
    return before.empty() ? app.help() : called->help(before);
}

/// The parser and where it puts what it reads.
struct CommandLine {
    CLI::App app{T("cli.help.app"), "tamlo"};
    DevelopArguments develop;
    PlanArguments plan;
    MeasureArguments measure;
    ListArguments list;
    ShowArguments show;
    CheckArguments check;
    ImportArguments import;
    ExportArguments exported;
    HelpArguments help;
    CompletionArguments completion;
    CacheArguments cache;
    RackArguments rack;
    SessionArguments session;
    ProjectCommand project;

    CommandLine()
    {
        describeProgram(app);
        describeDevelop(*app.add_subcommand("develop", T("cli.help.develop")), develop);
        auto* planCommand = app.add_subcommand("plan", T("cli.help.plan"));
        describeRender(*planCommand, plan);
        planCommand->add_flag("--json", plan.json, T("cli.help.jsonArray"));
        describeMeasure(*app.add_subcommand("measure", T("cli.help.measure")), measure);
        describeCatalogue(app, list, show, check, import, exported);
        auto* helpCommand = app.add_subcommand("help", T("cli.help.helpCommand"));
        addArgument(*helpCommand, "TOPIC", help.topic, T("cli.help.topic"))->required(false);
        auto* completionCommand = app.add_subcommand("completion", T("cli.help.completion"));
        addArgument(*completionCommand, "SHELL", completion.shell, T("cli.help.shell"));
        describeProject(app, project);
        describeCache(*app.add_subcommand("cache", T("cli.help.cache")), cache);
        describeRack(*app.add_subcommand("rack", T("cli.help.rack")), rack);
        describeSession(*app.add_subcommand("session", T("cli.help.session")), session);
        app.add_option("--lang")->description(T("cli.help.lang"))->type_name("LANG");
        for (CLI::App* command : app.get_subcommands(nullptr)) {
            command->fallthrough();
            // The parser makes this one option before a command takes the defaults over.
            command->get_help_ptr()->group(T("cli.help.options"));
        }
    }

    const CLI::App* commandNamed(const std::string& name) const
    {
        for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
            if (command->get_name() == name) return command;
        return nullptr;
    }

    /// What was read, of the command that was given.
    Command taken() const
    {
        const std::string name = app.get_subcommands().front()->get_name();
        if (name == "develop") return develop;
        if (name == "plan") return plan;
        if (name == "measure") return measure;
        if (name == "list") return list;
        if (name == "show") return show;
        if (name == "check") return check;
        if (name == "import") return import;
        if (name == "completion") return completion;
        if (name == "project") return project;
        if (name == "cache") return cache;
        if (name == "rack") return rack;
        if (name == "session") return session;
        return exported;
    }
};

/// tamlo help: of the program, of a command, else of an option.
Command helpOn(CommandLine& line)
{
    const std::string& topic = line.help.topic;
    if (topic.empty()) return Answer{CommandLine().app.help()}; // one that has read a command tells of that
    if (const CLI::App* command = line.commandNamed(topic)) return Answer{command->help("tamlo")};
    return line.help;
}

OptionDescription describe(const CLI::Option& option)
{
    OptionDescription one;
    for (const std::string& name : option.get_snames()) one.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) one.names.push_back("--" + name);
    one.value = option.get_positional()       ? option.get_name()
                : option.get_type_size() == 0 ? ""
                                              : option.get_type_name();
    one.value.erase(
        std::min(one.value.find(':'), one.value.size())); // the parser's English words on the range
    one.help = option.get_description();
    return one;
}

CommandDescription describe(const CLI::App& app, const std::string& name)
{
    CommandDescription command{name, app.get_description(), {}, {}};
    for (const CLI::Option* option : app.get_options())
        (option->get_positional() ? command.arguments : command.options).push_back(describe(*option));
    return command;
}

} // namespace

std::string versionText()
{
    return "tamlo " TAMLO_VERSION;
}

std::vector<CommandDescription> describeCommands()
{
    CommandLine line;
    std::vector<CommandDescription> out{describe(line.app, "")};
    for (const CLI::App* command : line.app.get_subcommands(nullptr))
        out.push_back(describe(*command, command->get_name()));
    return out;
}

Command parseArguments(const std::vector<std::string>& arguments)
{
    chooseLanguage(arguments);
    CommandLine line;
    try {
        std::vector<std::string> reversed = withEachSettingNamed(arguments);
        std::reverse(reversed.begin(), reversed.end()); // the parser takes them from the back
        line.app.parse(std::move(reversed));
    } catch (const CLI::CallForHelp&) {
        return Answer{helpOf(line.app)};
    } catch (const CLI::CallForVersion&) {
        return Answer{versionText() + "\n"};
    } catch (const CLI::ParseError& error) {
        if (line.app.get_subcommands().empty() && !arguments.empty() && !arguments[0].starts_with("-"))
            throw UsageError(
                T("cli.noSuchCommand", {{"name", arguments[0]}, {"list", commandNames(line.app)}}));
        throw UsageError(T("cli.parserError", {{"error", inOurWords(error)}}));
    }
    if (line.app.got_subcommand("help")) return helpOn(line);
    return line.taken();
}

} // namespace tamlo::cli
