// tamlo project copy, paste, apply.

#include "app/project/settings_clipboard.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "cli/project_settings.h"
#include "cli/usage_error.h"
#include "core/profiles/catalogue/user_files.h"

#include <iostream>
#include <iterator>
#include <ostream>

namespace tamlo::cli {
namespace {

std::string textOf(const std::string& file)
{
    if (file != "-") return UserFiles::read(file);
    std::string text(std::istreambuf_iterator<char>(std::cin), {});
    return text;
}

} // namespace

int run(RollSession& session, const ProjectCopyArguments& arguments, std::ostream& results)
{
    const auto blocks = arguments.block ? blocksNamed(*arguments.block) : PresetSchema::Blocks();
    const FrameID id = session.frame(arguments.frames);
    const Copying& copying = session.model().copying;
    results << (blocks.empty() ? copying.settingsEnvelope(id)
                               : copying.blockEnvelope(id, blocksTitle(blocks), blocks))
            << std::endl;
    return 0;
}

int run(RollSession& session, const ProjectPasteArguments& arguments, std::ostream& results)
{
    const std::string text = textOf(arguments.file);
    const auto pasted = session.model().copying.paste(text, session.frames(arguments.frames));
    if (!pasted) throw UsageError(T("cli.project.noEnvelope", {{"file", arguments.file}}));
    for (const std::string& note : pasted->notes) tellNote(note);
    if (pasted->frames > 0) session.save();
    results << Loc::string("cli.project.changed", static_cast<std::int64_t>(pasted->frames)) << std::endl;
    return 0;
}

int run(RollSession& session, const ProjectApplyArguments& arguments, std::ostream& results)
{
    const FrameID id = session.frame(arguments.frames);
    if (!session.project().frame(id)->process)
        throw UsageError(T("cli.project.noProcess", {{"text", arguments.frames}}));
    if (arguments.toAll)
        session.questions().applyChoice = *arguments.toAll == "every" ? ApplyTo::every : ApplyTo::onlyEmpty;
    const Project before = session.project();
    session.model().spreading.applyToAll(id);
    if (session.questions().cancelled > 0)
        throw UsageError(T("cli.project.needsToAll", {{"text", arguments.frames}}));
    std::size_t changed = 0;
    for (std::size_t i = 0; i < before.frames.size(); ++i)
        changed += before.frames.ref(i) != session.project().frames.ref(i);
    if (changed > 0) session.save();
    results << Loc::string("cli.project.changed", static_cast<std::int64_t>(changed)) << std::endl;
    return 0;
}

} // namespace tamlo::cli
