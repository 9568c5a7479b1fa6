#include "cli/session.h"

#include "cli/interrupted.h"
#include "cli/messages.h"
#include "cli/parser_error.h"
#include "cli/project.h"
#include "cli/session_screen.h"
#include "cli/usage_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/error_words.h"
#include "platform/console.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

namespace tamlo::cli {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kConcerns[] = {"document", "roll",   "selection", "frame", "tiles", "status",
                                     "files",    "export", "lists",     "crop",  "ab"};

/// A new roll is named in its line, and the list of rolls is nobody's.
bool namesNoOpenRoll(const std::string& verb)
{
    return verb == "new" || verb == "recent";
}

/// A verb of `tamlo project` from a line without ROLL. Errors: UsageError.
ProjectCommand projectCommand(const Words& words, const std::filesystem::path& roll)
{
    CLI::App app;
    ProjectCommand command;
    describeProject(app, command);
    Words reversed(words.rbegin(), words.rend() - 1);
    if (!namesNoOpenRoll(words[0])) reversed.push_back(roll.string());
    reversed.insert(reversed.end(), {words[0], "project"});
    try {
        app.parse(std::move(reversed)); // takes them from the back
    } catch (const CLI::ParseError& error) {
        throw UsageError(T("cli.parserError", {{"error", inOurWords(error)}}));
    }
    return command;
}

bool isProjectVerb(const std::string& word)
{
    CLI::App app;
    ProjectCommand command;
    describeProject(app, command);
    const auto verbs = app.get_subcommand("project")->get_subcommands(nullptr);
    return std::ranges::any_of(verbs, [&](const CLI::App* verb) { return verb->get_name() == word; });
}

int runWords(LiveSession& session, const Words& words, std::ostream& results)
{
    if (runScreenVerb(session, words, results)) return 0;
    if (isProjectVerb(words[0])) {
        if (session.roll().empty() && !namesNoOpenRoll(words[0]))
            throw UsageError(T("cli.session.needsRoll"));
        const ProjectCommand command = projectCommand(words, session.roll());
        if (const auto status = runInSession(session, command, results)) return *status;
        if (const auto status = runOn(session, command, results)) return *status;
    }
    throw UsageError(
        T("cli.session.noVerb", {{"verb", words[0]}, {"list", joined(screenVerbs(), T("common.and"))}}));
}

Json eventOf(const ChangeSet& change, const AppModel& model)
{
    Json out{{"event", "changed"}, {"concerns", Json::array()}};
    for (std::size_t i = 0; i < std::size(kConcerns); ++i)
        if (change.concerns.has(static_cast<Concern>(i))) out["concerns"].push_back(kConcerns[i]);
    const auto labels = [&](const char* key, const std::vector<FrameID>& ids) {
        if (ids.empty()) return;
        out[key] = Json::array();
        for (const FrameID& id : ids) out[key].push_back(model.project().label(id));
    };
    labels("frames", change.frames);
    labels("tiles", change.tiles);
    if (!change.rows.empty()) out["rows"] = change.rows.size();
    if (change.concerns.has(Concern::status)) out["status"] = model.status();
    return out;
}

/// Runs lines, told as text or as events.
class Runner {
public:
    Runner(const SessionArguments& arguments, std::ostream& results)
        : json_(arguments.json), results_(results)
    {
        if (!json_) return;
        subscription_ = session_.model().subscribe(ConcernSet::all(), [this](const ChangeSet& change) {
            results_ << eventOf(change, session_.model()).dump() << std::endl;
        });
    }

    void run(const std::string& line)
    {
        ++line_;
        try {
            const Words words = wordsOf(line);
            if (!words.empty()) tellDone(words, attempt(words));
        } catch (const UsageError& error) {
            fail(error.what(), 2);
        } catch (const Interrupted&) {
            throw;
        } catch (const std::exception& error) {
            fail(ErrorWords::of(error), 1);
        }
    }

    LiveSession& session() { return session_; }
    int status() const { return status_; }

private:
    int attempt(const Words& words)
    {
        text_.str("");
        session_.questions().cancelled = 0;
        const int status = runWords(session_, words, text_);
        session_.turn();
        return status;
    }

    void tellDone(const Words& words, int status)
    {
        status_ = std::max(status_, status);
        std::string text = text_.str();
        if (!json_) {
            results_ << text << std::flush;
            return;
        }
        while (text.ends_with('\n')) text.pop_back();
        results_ << Json{{"event", "done"}, {"verb", words[0]}, {"status", status}, {"text", text}}.dump()
                 << std::endl;
    }

    void fail(const std::string& what, int status)
    {
        status_ = std::max(status_, status);
        if (json_)
            results_ << Json{{"event", "failed"}, {"line", line_}, {"error", what}}.dump() << std::endl;
        tell(T("cli.session.failedLine", {{"n", line_}, {"error", what}}));
    }

    bool json_;
    std::ostream& results_;
    std::ostringstream text_;
    int line_ = 0, status_ = 0;
    LiveSession session_;
    Subscription subscription_;
};

void runAll(Runner& runner, std::istream& lines)
{
    for (std::string line; std::getline(lines, line);) runner.run(line);
}

} // namespace

void describeSession(CLI::App& command, SessionArguments& into)
{
    command.add_option("ROLL", into.roll, T("cli.help.project.roll"))->type_name("");
    command.add_option("SCRIPT", into.script, T("cli.help.session.script"))->type_name("");
    command.add_option("-c", into.commands, T("cli.help.session.command"))
        ->type_name("COMMAND")
        ->expected(1)
        ->take_all();
    command.add_flag("--json", into.json, T("cli.help.session.json"));
}

std::vector<std::string> wordsOf(const std::string& line)
{
    Words out;
    bool isWord = false;
    char quote = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quote == 0 && (c == ' ' || c == '\t' || c == '\r')) {
            isWord = false;
            continue;
        }
        if (quote == 0 && !isWord && c == '#') break;
        if (!isWord) out.emplace_back();
        isWord = true;
        if (c == quote && quote != 0)
            quote = 0;
        else if (quote == 0 && (c == '"' || c == '\''))
            quote = c;
        else
            out.back() += c == '\\' && quote != '\'' && i + 1 < line.size() ? line[++i] : c;
    }
    if (quote != 0) throw UsageError(T("cli.session.openQuote"));
    return out;
}

int runSession(const SessionArguments& arguments, std::ostream& results)
{
    platform::catchStopSignals();
    std::ifstream file;
    const bool readsFile = arguments.script && *arguments.script != "-";
    if (readsFile) {
        file.open(*arguments.script);
        if (!file) throw UsageError(T("cli.noFile", {{"file", *arguments.script}}));
    }
    Runner runner(arguments, results);
    if (arguments.roll) runner.session().openRoll(*arguments.roll);
    for (const std::string& command : arguments.commands) runner.run(command);
    if (readsFile)
        runAll(runner, file);
    else if (arguments.script || arguments.commands.empty())
        runAll(runner, std::cin);
    runner.session().model().selection.backToGrid(); // what is being cropped is applied, as on a screen
    runner.session().saveNow();
    return runner.status();
}

} // namespace tamlo::cli
