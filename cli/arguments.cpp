#include "cli/arguments.h"

#include "cli/usage_error.h"

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

struct FilterOption {
    const char* name;
    const char* key; ///< of the option of the render
    const char* help;
};

constexpr FilterOption kFilterOptions[] = {
    {"--filter-cut", "filter_cut", "Colour filter (amount: --set filter_cut_amount=0.7)"},
    {"--filter-diffusion", "filter_diffusion",
     "Diffusion filter (amount: --set filter_diffusion_amount=0.5)"},
    {"--filter-rays", "filter_rays", "Star or streak filter (rotation: --set rays_angle=20)"},
    {"--filter-grad", "filter_grad", "Graduated filter (line: --set grad_pos=0.2 grad_angle=10)"},
};

void describeFilters(CLI::App& command, DevelopArguments& into)
{
    for (const FilterOption& option : kFilterOptions) {
        const std::string key = option.key;
        command
            .add_option_function<std::string>(
                option.name, [&into, key](const std::string& id) { into.filters[key] = id; }, option.help)
            ->type_name("ID");
    }
}

void describeDevelop(CLI::App& command, DevelopArguments& into)
{
    command.add_option("INPUT", into.inputs, "Photographs: JPEG, PNG, TIFF, HEIC or camera RAW")->required();
    auto* output =
        command.add_option("-o", into.output, "The file to write (.jpg, .png, .tif)")->type_name("FILE");
    command
        .add_option("--out-dir", into.outFolder,
                    "Folder for the pictures, NAME-tamlo.jpg each (default: the current folder)")
        ->type_name("DIR")
        ->excludes(output);
    command.add_option("--film", into.film, "Film (see: tamlo list films)")
        ->type_name("ID")
        ->capture_default_str();
    command.add_option("--lens", into.lens, "Lens (see: tamlo list lenses)")
        ->type_name("ID")
        ->capture_default_str();
    command
        .add_option("--paper", into.paper,
                    "Paper or scanner (default: color_ra4 for a colour negative, else what suits the film)")
        ->type_name("ID");
    describeFilters(command, into);
    command
        .add_option("--set", into.settings, "Set an option of the render, such as print_ev=0.3 border=0.05")
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
    command.add_option("--quality", into.quality, "JPEG quality, 1 to 100")
        ->type_name("Q")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
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
    CLI::App app("A digital darkroom: prints a photograph through a simulation of film.", "tamlo");
    app.set_version_flag("--version", versionText());
    app.footer(kFooter);
    app.require_subcommand(1);

    DevelopArguments develop;
    ListArguments list;
    ShowArguments show;
    auto* developCommand = app.add_subcommand("develop", "Develop photographs and write finished pictures");
    describeDevelop(*developCommand, develop);
    auto* listCommand = app.add_subcommand("list", "List films, lenses, papers or filters");
    listCommand->add_option("KIND", list.kind, "films, lenses, papers or filters")->required();
    listCommand->add_flag("--json", list.json, "As a JSON array");
    auto* showCommand = app.add_subcommand("show", "Print a profile as JSON");
    showCommand->add_option("KIND", show.kind, "film, lens, paper or filter")->required();
    showCommand->add_option("ID", show.id, "Its id, as told by tamlo list")->required();

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
            throw UsageError("there is no command '" + arguments[0] + "'; there are develop, list and show");
        throw UsageError(sentence(error.what()) + " (tamlo --help tells the usage)");
    }
    if (developCommand->parsed()) return develop;
    if (listCommand->parsed()) return list;
    return show;
}

} // namespace tamlo::cli
