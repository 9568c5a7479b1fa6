#include "cli/completion.h"

#include "cli/arguments.h"
#include "cli/catalogue.h"
#include "cli/option_words.h"
#include "cli/usage_error.h"
#include "core/text/loc.h"

#include <algorithm>
#include <map>

namespace tamlo::cli {
namespace {

using Kind = ProfileStore::Kind;
using Words = std::vector<std::string>;

std::string joinedBy(const Words& words, const char* separator)
{
    std::string out;
    for (const std::string& word : words) out += (out.empty() ? "" : separator) + word;
    return out;
}

/// Within single quotes of a shell. `backslash`: how it writes a quote there.
std::string quoted(const std::string& text, const char* quote)
{
    std::string out = "'";
    for (const char c : text) out += c == '\'' ? std::string(quote) : std::string(1, c);
    return out + "'";
}

/// Filters that act in a slot, by their type.
Words filtersOf(const ProfileStore& store, const std::string& type)
{
    Words ids;
    for (const std::string& id : store.list(Kind::filters)) {
        try {
            if (store.filterProfile(id).type == type) ids.push_back(id);
        } catch (const std::exception&) {
            continue; // a user's file that is no filter can't be chosen
        }
    }
    return ids;
}

Words optionKeys(const char* after)
{
    Words keys;
    for (const OptionRow& row : optionTable()) keys.push_back(row.key + std::string(after));
    for (const Synonym& row : synonyms()) keys.push_back(std::string(row.word) + after);
    keys.push_back(std::string(kIsoWord) + after);
    return keys;
}

/// What may stand after an option: the words that complete it; none where a file or a number is wanted.
std::map<std::string, Words> valuesOfOptions(const ProfileStore& store)
{
    std::map<std::string, Words> values{{"--film", store.list(Kind::films)},
                                        {"--lens", store.list(Kind::lenses)},
                                        {"--paper", store.list(Kind::papers)},
                                        {"--preset", store.list(Kind::presets)},
                                        {"--filter-cut", filtersOf(store, "cut")},
                                        {"--filter-diffusion", filtersOf(store, "diffusion")},
                                        {"--filter-rays", filtersOf(store, "rays")},
                                        {"--filter-grad", filtersOf(store, "grad")},
                                        {"--set", optionKeys("=")},
                                        {"--lang", {"en", "ru"}},
                                        {"--fit", {"crop", "inside"}},
                                        {"--on-conflict", {"replace", "copy", "cancel"}}};
    for (const char* option : {"--format", "--frame-size", "--rotate"}) {
        std::string key = option + 2;
        std::ranges::replace(key, '-', '_');
        for (const std::string_view text : findOption(key)->allowed) values[option].emplace_back(text);
    }
    return values;
}

/// The values of options that have a set of them, for --set: "format" to "135", "120" and so on.
std::map<std::string, Words> valuesOfKeys(const std::map<std::string, Words>& options)
{
    std::map<std::string, Words> values;
    for (const OptionRow& row : optionTable()) {
        if (row.type == OptionType::boolean) values[row.key] = {"true", "false"};
        for (const std::string_view text : row.allowed) values[row.key].emplace_back(text);
    }
    for (const char* slot : {"filter-cut", "filter-diffusion", "filter-rays", "filter-grad"}) {
        std::string key = slot;
        std::ranges::replace(key, '-', '_');
        values[key] = options.at(std::string("--") + slot);
    }
    return values;
}

/// What may stand as the first argument of a command; nothing where it is a file.
std::map<std::string, Words> firstArguments(const ProfileStore& store,
                                            const std::vector<CommandDescription>& commands)
{
    Words topics = optionKeys("");
    for (const CommandDescription& command : commands)
        if (!command.name.empty()) topics.push_back(command.name);
    return {{"list", listedKinds()},
            {"show", singularKinds()},
            {"export", singularKinds()},
            {"measure", store.list(Kind::films)},
            {"help", topics},
            {"completion", {"bash", "zsh", "fish"}}};
}

/// Ids of a kind, the second argument of show and export.
std::map<std::string, Words> idsByKind(const ProfileStore& store)
{
    std::map<std::string, Words> ids;
    for (const std::string& word : singularKinds()) ids[word] = store.list(kindNamed(word));
    return ids;
}

Words optionNames(const CommandDescription& command)
{
    Words names;
    for (const OptionDescription& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

struct Material {
    std::vector<CommandDescription> commands;
    Words names; ///< of the commands
    std::map<std::string, Words> options, keys, first, ids;
};

/// "  a) words='x y' ;;" for each entry of a map.
std::string cases(const std::map<std::string, Words>& entries, const std::string& indent)
{
    std::string out;
    for (const auto& [key, words] : entries)
        out += indent + key + ") words=" + quoted(joinedBy(words, " "), "'\\''") + " ;;\n";
    return out;
}

/// bash and zsh share the part that finds the words: the shells differ in how they hand over the line, and in
/// how they take the answer.
std::string findWords(const Material& material)
{
    std::map<std::string, Words> options;
    for (const CommandDescription& command : material.commands)
        options[command.name.empty() ? "''" : command.name] = optionNames(command);
    return "    local words='' files=''\n"
           "    case $previous in\n" +
           cases(material.options, "    ") +
           "    -o|--out-dir|--options|--plot) files=yes ;;\n"
           "    *)\n"
           "        case $current in\n"
           "        -*) case $command in\n" +
           cases(options, "            ") +
           "            esac ;;\n"
           "        *=*) case ${current%%=*} in\n" +
           cases(material.keys, "            ") +
           "            esac ;;\n"
           "        *)\n"
           "            files=yes\n"
           "            case $command in\n"
           "            '') files='' words=" +
           quoted(joinedBy(material.names, " "), "'\\''") + " ;;\n" + cases(material.first, "            ") +
           "            esac\n"
           "            case $command-$previous in\n"
           "            show-*|export-*) case $previous in\n" +
           cases(material.ids, "                ") +
           "                esac ;;\n"
           "            esac ;;\n"
           "        esac ;;\n"
           "    esac\n";
}

std::string bash(const Material& material)
{
    return "# Completion of tamlo for bash: source <(tamlo completion bash)\n"
           "_tamlo() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command=''\n"
           "    # The shell takes \"key=value\" apart at the sign.\n"
           "    if [[ $previous == = ]]; then\n"
           "        current=${COMP_WORDS[COMP_CWORD-2]}=$current previous=''\n"
           "    elif [[ $current == = ]]; then\n"
           "        current=${COMP_WORDS[COMP_CWORD-1]}= previous=''\n"
           "    fi\n"
           "    (( COMP_CWORD > 1 )) && command=${COMP_WORDS[1]}\n" +
           findWords(material) +
           "    local part=$current\n"
           "    [[ $current == *=* ]] && part=${current#*=}\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$part\"))\n"
           "    [[ $files == yes ]] && COMPREPLY+=($(compgen -f -- \"$part\"))\n"
           "    [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace\n"
           "    return 0\n"
           "}\n"
           "complete -o filenames -F _tamlo tamlo\n";
}

std::string zsh(const Material& material)
{
    return "#compdef tamlo\n"
           "# Completion of tamlo for zsh: source <(tamlo completion zsh), or this file as _tamlo in $fpath\n"
           "_tamlo() {\n"
           "    local line=(\"${words[@]}\")\n"
           "    local current=${line[CURRENT]} previous=${line[CURRENT-1]} command=''\n"
           "    [[ $current == *=* ]] && previous=''\n"
           "    (( CURRENT > 2 )) && command=${line[2]}\n" +
           findWords(material) +
           "    [[ $current == *=* ]] && compset -P '*='\n"
           "    local offers=(${(s: :)words})\n"
           "    if [[ ${offers[1]} == *= ]]; then\n"
           "        compadd -S '' -a offers\n"
           "    else\n"
           "        compadd -a offers\n"
           "    fi\n"
           "    [[ $files == yes ]] && _files\n"
           "    return 0\n"
           "}\n"
           "if [[ $funcstack[1] == _tamlo ]]; then _tamlo \"$@\"; else compdef _tamlo tamlo; fi\n";
}

std::string fish(const Material& material)
{
    const auto line = [](const std::string& condition, const std::string& rest) {
        return "complete -c tamlo -n '" + condition + "' " + rest + "\n";
    };
    const auto with = [](const Words& words) { return "-a " + quoted(joinedBy(words, " "), "\\'"); };
    std::string out = "# Completion of tamlo for fish: tamlo completion fish | source\n";
    for (const CommandDescription& command : material.commands) {
        const std::string condition =
            command.name.empty() ? "__fish_use_subcommand" : "__fish_seen_subcommand_from " + command.name;
        if (!command.name.empty())
            out +=
                line("__fish_use_subcommand", "-f -a " + command.name + " -d " + quoted(command.help, "\\'"));
        for (const OptionDescription& option : command.options) {
            std::string rest;
            for (const std::string& name : option.names)
                rest += name.starts_with("--") ? "-l " + name.substr(2) + " " : "-s " + name.substr(1) + " ";
            const auto values = material.options.find(option.names.back());
            if (values != material.options.end())
                rest += "-x " + with(values->second) + " ";
            else if (!option.value.empty())
                rest += "-r ";
            out += line(condition, rest + "-d " + quoted(option.help, "\\'"));
        }
        if (const auto words = material.first.find(command.name); words != material.first.end())
            out += line(condition, "-f " + with(words->second));
        if (command.name == "show" || command.name == "export")
            for (const auto& [kind, ids] : material.ids)
                out += line(condition + "; and __fish_seen_subcommand_from " + kind, "-f " + with(ids));
    }
    return out;
}

} // namespace

std::string completionScript(const std::string& shell, const ProfileStore& store)
{
    Material material{describeCommands(), {}, valuesOfOptions(store), {}, {}, idsByKind(store)};
    material.keys = valuesOfKeys(material.options);
    material.first = firstArguments(store, material.commands);
    for (const CommandDescription& command : material.commands)
        if (!command.name.empty()) material.names.push_back(command.name);
    if (shell == "bash") return bash(material);
    if (shell == "zsh") return zsh(material);
    if (shell == "fish") return fish(material);
    throw UsageError(T("cli.noSuchShell", {{"name", shell}}));
}

} // namespace tamlo::cli
