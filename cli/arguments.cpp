#include "cli/arguments.h"

#include "cli/usage_error.h"
#include "core/text/loc.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace tamlo::cli {
namespace {

constexpr const char* kFooter = R"(
Exit status: 0 when all is done, 1 when a picture could not be read, developed or written, 2 when the command
line can't be carried out as given, 130 when interrupted. Results go to standard output, all else to standard
error. A picture is never written over its source.)";

/// "key=value", the form of a setting, and no option of our own.
bool isSetting(const std::string& text)
{
    const std::size_t equals = text.find('=');
    return equals != std::string::npos && equals > 0 &&
           std::all_of(text.begin(), text.begin() + equals,
                       [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; });
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
    const char* help;
};

/// Options of the render that are asked for often enough to have a name beside --set.
constexpr NamedOption kNamedOptions[] = {
    {"--filter-cut", "filter_cut", "ID", "Colour filter (amount: --set filter_cut_amount=0.7)"},
    {"--filter-diffusion", "filter_diffusion", "ID",
     "Diffusion filter (amount: --set filter_diffusion_amount=0.5)"},
    {"--filter-rays", "filter_rays", "ID", "Star or streak filter (rotation: --set rays_angle=20)"},
    {"--filter-grad", "filter_grad", "ID", "Graduated filter (line: --set grad_pos=0.2 grad_angle=10)"},
    {"--crop", "crop", "X,Y,W,H[,ANGLE]",
     "Part of the picture, in fractions of its width and height from the top left, and its tilt in degrees"},
    {"--rotate", "rotate", "DEG", "Turn the picture clockwise by quarters: 0, 90, 180 or 270"},
    {"--format", "format", "FORMAT", "Film format: 135, half, 120, sheet, 4x5 or plate"},
    {"--frame-size", "frame_size", "SIZE", "Frame size in that format, such as 6x7 or xpan"},
    {"--print-cm", "print_cm", "CM", "Long side of the print in centimetres"},
    {"--sheet-cm", "sheet_cm", "CM", "Long side of the sheet; the print is what its borders leave"},
    {"--border", "border", "FRACTION", "Border of the print, as a fraction of the picture's long side"},
};

void describeNamed(CLI::App& command, RenderArguments& into)
{
    for (const NamedOption& option : kNamedOptions) {
        const std::string key = option.key;
        command
            .add_option_function<std::string>(
                option.name, [&into, key](const std::string& text) { into.named[key] = text; }, option.help)
            ->type_name(option.value);
    }
    command.add_flag_callback(
        "--mirror", [&into] { into.named["mirror"] = "true"; }, "Mirror the picture");
}

void describeRender(CLI::App& command, RenderArguments& into)
{
    command.add_option("INPUT", into.inputs, "Photographs: JPEG, PNG, TIFF, HEIC or camera RAW")->required();
    command.add_option("--preset", into.preset, "Recipe (see: tamlo list presets), or a preset's file")
        ->type_name("ID|FILE");
    command.add_option("--film", into.film, "Film (see: tamlo list films; default: portra400)")
        ->type_name("ID");
    command.add_option("--lens", into.lens, "Lens (see: tamlo list lenses; default: modern_clean)")
        ->type_name("ID");
    command
        .add_option("--paper", into.paper,
                    "Paper or scanner (default: color_ra4 for a colour negative, else what suits the film)")
        ->type_name("ID");
    describeNamed(command, into);
    command.add_option("--set", into.settings, "Set an option of the render, such as print_ev=0.3 grade=3")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--options", into.optionsFile,
                    "Options of the render from a JSON file; --set goes on top")
        ->type_name("FILE.json");
    command.add_option("--seed", into.seed, "Seed of grain and other chance (default: from the file's name)")
        ->type_name("N");
    command.add_option("--long", into.longPx, "Long side of the finished picture at most, in pixels")
        ->type_name("PX")
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{100000}));
    command.add_option("--scale", into.scale, "Size of the finished picture, such as 0.5, at most 1")
        ->type_name("FACTOR")
        ->check(CLI::Range(0.01, 1.0));
}

void describeDevelop(CLI::App& command, DevelopArguments& into)
{
    describeRender(command, into);
    auto* output =
        command.add_option("-o", into.output, "The file to write (.jpg, .png, .tif)")->type_name("FILE");
    command
        .add_option("--out-dir", into.outFolder,
                    "Folder for the pictures, NAME-tamlo.jpg each (default: the current folder)")
        ->type_name("DIR")
        ->excludes(output);
    command.add_option("--quality", into.quality, "JPEG quality, 1 to 100")
        ->type_name("Q")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
}

void describeMeasure(CLI::App& command, MeasureArguments& into)
{
    command.add_option("FILM", into.film, "Film (see: tamlo list films)")->required();
    command.add_option("--paper", into.paper, "Also measure a print on this paper")->type_name("ID");
    command
        .add_option(
            "--set", into.settings,
            "Set an option that changes the material, such as push=1 grain_rms=true grain_engine=classic")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command.add_flag("--json", into.json, "As a JSON object");
    command.add_option("--plot", into.plot, "Also draw a data sheet")->type_name("FILE.svg");
}

/// Commands that keep the catalogue.
void describeCatalogue(CLI::App& app, ListArguments& list, ShowArguments& show, CheckArguments& check,
                       ImportArguments& import, ExportArguments& exported)
{
    auto* listCommand = app.add_subcommand("list", "List films, lenses, papers, filters or presets");
    listCommand->add_option("KIND", list.kind, "films, lenses, papers, filters or presets")->required();
    listCommand->add_flag("--json", list.json, "As a JSON array");
    auto* showCommand = app.add_subcommand("show", "Print a profile or a preset as JSON");
    showCommand->add_option("KIND", show.kind, "film, lens, paper, filter or preset")->required();
    showCommand->add_option("ID", show.id, "Its id, as told by tamlo list")->required();
    auto* checkCommand = app.add_subcommand("check", "Tell what is wrong with profiles and presets");
    checkCommand->add_option("FILE", check.files, "Files of profiles or presets")->required();
    auto* importCommand = app.add_subcommand("import", "Take profiles and presets into the catalogue");
    importCommand->add_option("FILE", import.files, "Files of profiles or presets")->required();
    const std::map<std::string, PresetConflict> answers{{"replace", PresetConflict::replace},
                                                        {"copy", PresetConflict::copy},
                                                        {"cancel", PresetConflict::cancel}};
    importCommand
        ->add_option(
            "--on-conflict", import.onConflict,
            "When the id is taken: replace, copy (take in under a free id) or cancel (skip the file)")
        ->type_name("ANSWER")
        ->transform(CLI::Transformer(answers).description("").name("ANSWER"))
        ->check(CLI::IsMember({"0", "1", "2", "3"}).description(""));
    auto* exportCommand = app.add_subcommand("export", "Write a profile or a preset to a file");
    exportCommand->add_option("KIND", exported.kind, "film, lens, paper, filter or preset")->required();
    exportCommand->add_option("ID", exported.id, "Its id, as told by tamlo list")->required();
    exportCommand->add_option("FILE", exported.file, "The file, or the folder for it")->required();
}

/// "develop, plan and export".
std::string commandNames(const CLI::App& app)
{
    std::string out;
    const auto commands = app.get_subcommands(nullptr);
    for (std::size_t i = 0; i < commands.size(); ++i) {
        if (i > 0) out += i + 1 == commands.size() ? " and " : ", ";
        out += commands[i]->get_name();
    }
    return out;
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
        if (!lang) throw UsageError("--lang takes ru or en, not '" + std::string(value) + "'");
        Loc::setOverride(lang);
    }
}

/// The parser's words as one sentence without line feeds.
std::string sentence(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

} // namespace

std::string versionText()
{
    return "tamlo " TAMLO_VERSION;
}

Command parseArguments(const std::vector<std::string>& arguments)
{
    chooseLanguage(arguments);
    CLI::App app("A digital darkroom: prints a photograph through a simulation of film.", "tamlo");
    app.set_version_flag("--version", versionText());
    app.footer(kFooter);
    app.require_subcommand(1);

    DevelopArguments develop;
    PlanArguments plan;
    MeasureArguments measure;
    ListArguments list;
    ShowArguments show;
    auto* developCommand = app.add_subcommand("develop", "Develop photographs and write finished pictures");
    describeDevelop(*developCommand, develop);
    auto* planCommand =
        app.add_subcommand("plan", "Tell size and scale of finished pictures, not drawing them");
    describeRender(*planCommand, plan);
    planCommand->add_flag("--json", plan.json, "As a JSON array");
    auto* measureCommand =
        app.add_subcommand("measure", "Measure a film, and a paper under it, as a data sheet does");
    describeMeasure(*measureCommand, measure);
    CheckArguments check;
    ImportArguments import;
    ExportArguments exported;
    describeCatalogue(app, list, show, check, import, exported);
    app.add_option("--lang", "Language of messages and names: ru or en")->type_name("LANG");
    for (CLI::App* command : app.get_subcommands(nullptr)) command->fallthrough();

    try {
        std::vector<std::string> reversed = withEachSettingNamed(arguments);
        std::reverse(reversed.begin(), reversed.end()); // the parser takes them from the back
        app.parse(std::move(reversed));
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        return Answer{chosen.empty() ? app.help() : chosen.front()->help("tamlo")};
    } catch (const CLI::CallForVersion&) {
        return Answer{versionText() + "\n"};
    } catch (const CLI::ParseError& error) {
        if (app.get_subcommands().empty() && !arguments.empty() && !arguments[0].starts_with("-"))
            throw UsageError("there is no command '" + arguments[0] + "'; there are " + commandNames(app));
        throw UsageError(sentence(error.what()) + " (tamlo --help tells the usage)");
    }
    if (developCommand->parsed()) return develop;
    if (planCommand->parsed()) return plan;
    if (measureCommand->parsed()) return measure;
    if (app.got_subcommand("list")) return list;
    if (app.got_subcommand("show")) return show;
    if (app.got_subcommand("check")) return check;
    if (app.got_subcommand("import")) return import;
    return exported;
}

} // namespace tamlo::cli
