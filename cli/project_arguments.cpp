#include "cli/project_arguments.h"

#include "app/export/sheet_plan.h"
#include "app/shell/crop_draft.h"
#include "cli/rack.h"
#include "core/text/loc.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tamlo::cli {
namespace {

/// A verb whose arguments land in a struct of its own, which becomes the command when the verb is called.
template <typename Arguments>
struct Verb {
    CLI::App* app;
    std::shared_ptr<Arguments> arguments;
};

template <typename Arguments>
Verb<Arguments> addVerb(CLI::App& project, const char* name, const char* helpKey, ProjectCommand& into)
{
    CLI::App* app = project.add_subcommand(name, T(helpKey));
    const auto arguments = std::make_shared<Arguments>();
    app->callback([arguments, &into] { into = *arguments; });
    return {app, arguments};
}

template <typename Value>
CLI::Option* place(CLI::App& verb, const char* name, Value& into, const char* helpKey)
{
    return verb.add_option(name, into, T(helpKey))->required()->type_name("");
}

void takeRoll(CLI::App& verb, RollArguments& into)
{
    place(verb, "ROLL", into.roll, "cli.help.project.roll");
}

void takeFrames(CLI::App& verb, RollArguments& into)
{
    takeRoll(verb, into);
    place(verb, "FRAMES", into.frames, "cli.help.project.frames");
}

void takeFrame(CLI::App& verb, RollArguments& into)
{
    takeRoll(verb, into);
    place(verb, "FRAME", into.frames, "cli.help.project.frame");
}

/// One of a few words.
void choice(CLI::Option* option, const std::vector<std::string>& words)
{
    std::string shown;
    for (const std::string& word : words) shown += (shown.empty() ? "" : "|") + word;
    option->check(CLI::IsMember(words))->type_name(shown)->option_text(shown);
}

void describeIntake(CLI::App& project, ProjectCommand& into)
{
    for (const bool isNew : {true, false}) {
        const auto verb = isNew ? addVerb<ProjectAddArguments>(project, "new", "cli.help.project.new", into)
                                : addVerb<ProjectAddArguments>(project, "add", "cli.help.project.add", into);
        verb.arguments->isNew = isNew;
        takeRoll(*verb.app, *verb.arguments);
        CLI::Option* inputs =
            place(*verb.app, "PHOTO|FOLDER", verb.arguments->inputs, "cli.help.project.inputs");
        if (isNew) inputs->required(false);
        choice(verb.app->add_option("--pairs", verb.arguments->pairs, T("cli.help.project.pairs")),
               {"raw", "jpeg", "both"});
        if (isNew)
            verb.app->add_option("--title", verb.arguments->title, T("cli.help.project.title"))
                ->type_name("TEXT");
    }
}

void describeReading(CLI::App& project, ProjectCommand& into)
{
    const auto show = addVerb<ProjectShowArguments>(project, "show", "cli.help.project.show", into);
    takeFrames(*show.app, *show.arguments);
    show.app->get_option("FRAMES")->required(false);
    show.app->add_flag("--json", show.arguments->json, T("cli.help.jsonObject"));
    const auto check = addVerb<ProjectCheckArguments>(project, "check", "cli.help.project.check", into);
    takeRoll(*check.app, *check.arguments);
    check.app->add_flag("--json", check.arguments->json, T("cli.help.jsonObject"));
}

void describeEdits(CLI::App& project, ProjectCommand& into)
{
    const auto set = addVerb<ProjectSetArguments>(project, "set", "cli.help.project.set", into);
    takeFrames(*set.app, *set.arguments);
    place(*set.app, "KEY=VALUE", set.arguments->settings, "cli.help.project.settings");
    const auto preset = addVerb<ProjectPresetArguments>(project, "preset", "cli.help.project.preset", into);
    takeFrames(*preset.app, *preset.arguments);
    place(*preset.app, "ID|FILE", preset.arguments->preset, "cli.help.preset");
    preset.app->add_option("--blocks", preset.arguments->blocks, T("cli.help.project.blocks"))
        ->type_name("NAME,NAME");
    const auto eye =
        addVerb<ProjectAutoPrintArguments>(project, "autoprint", "cli.help.project.autoprint", into);
    takeFrames(*eye.app, *eye.arguments);
    const auto mark = addVerb<ProjectMarkArguments>(project, "mark", "cli.help.project.mark", into);
    takeFrames(*mark.app, *mark.arguments);
    choice(place(*mark.app, "MARK", mark.arguments->mark, "cli.help.project.markWord"),
           {"pick", "reject", "none"});
    const auto turn = addVerb<ProjectTurnArguments>(project, "turn", "cli.help.project.turn", into);
    takeFrames(*turn.app, *turn.arguments);
    choice(place(*turn.app, "TURN", turn.arguments->turn, "cli.help.project.turnWord"),
           {"right", "left", "flip-h", "flip-v", "reset"});
    const auto reset = addVerb<ProjectResetArguments>(project, "reset", "cli.help.project.reset", into);
    takeFrames(*reset.app, *reset.arguments);
    reset.app->add_option("--block", reset.arguments->block, T("cli.help.project.block"))->type_name("NAME");
    const auto remove = addVerb<ProjectRemoveArguments>(project, "remove", "cli.help.project.remove", into);
    takeFrames(*remove.app, *remove.arguments);
}

void describeArranging(CLI::App& project, ProjectCommand& into)
{
    const auto order = addVerb<ProjectOrderArguments>(project, "order", "cli.help.project.order", into);
    takeRoll(*order.app, *order.arguments);
    place(*order.app, "ORDER|FRAMES", order.arguments->frames, "cli.help.project.orderWord");
    CLI::Option* before =
        order.app->add_option("--before", order.arguments->before, T("cli.help.project.before"));
    CLI::Option* after =
        order.app->add_option("--after", order.arguments->after, T("cli.help.project.after"));
    before->type_name("FRAME")->excludes(after);
    after->type_name("FRAME");
    const auto crop = addVerb<ProjectCropArguments>(project, "crop", "cli.help.project.crop", into);
    takeFrames(*crop.app, *crop.arguments);
    place(*crop.app, "CROP", crop.arguments->crop, "cli.help.project.cropWord")->required(false);
    crop.app->add_option("--ratio", crop.arguments->ratio, T("cli.help.project.ratio"))
        ->type_name("W:H|format");
    crop.app->add_option("--level", crop.arguments->levelDegrees, T("cli.help.project.level"))
        ->check(CLI::Range(-CropDraft::kMostDegrees, CropDraft::kMostDegrees))
        ->type_name("DEG")
        ->option_text("DEG");
    const auto reroll = addVerb<ProjectRerollArguments>(project, "reroll", "cli.help.project.reroll", into);
    takeFrames(*reroll.app, *reroll.arguments);
    choice(place(*reroll.app, "STREAM", reroll.arguments->stream, "cli.help.project.stream"),
           {"film", "frame", "print", "table", "develop"});
}

void describeCopying(CLI::App& project, ProjectCommand& into)
{
    const auto copy = addVerb<ProjectCopyArguments>(project, "copy", "cli.help.project.copy", into);
    takeFrame(*copy.app, *copy.arguments);
    copy.app->add_option("--block", copy.arguments->block, T("cli.help.project.block"))->type_name("NAME");
    const auto paste = addVerb<ProjectPasteArguments>(project, "paste", "cli.help.project.paste", into);
    takeFrames(*paste.app, *paste.arguments);
    place(*paste.app, "FILE", paste.arguments->file, "cli.help.project.envelope")->required(false);
    const auto apply = addVerb<ProjectApplyArguments>(project, "apply", "cli.help.project.apply", into);
    takeFrame(*apply.app, *apply.arguments);
    choice(apply.app->add_option("--to-all", apply.arguments->toAll, T("cli.help.project.toAll")),
           {"empty", "every"});
}

void describePreview(CLI::App& project, ProjectCommand& into)
{
    const auto preview =
        addVerb<ProjectPreviewArguments>(project, "preview", "cli.help.project.preview", into);
    takeFrame(*preview.app, *preview.arguments);
    preview.app->add_option("-o", preview.arguments->output, T("cli.help.project.previewOutput"))
        ->required()
        ->type_name("OUT.png");
    choice(preview.app->add_option("--tier", preview.arguments->tier, T("cli.help.project.tier")),
           {"proxy", "screen", "master"});
    preview.app->add_option("--fit", preview.arguments->fit, T("cli.help.project.fit"))->type_name("WxH");
}

void describeExportChoices(CLI::App& verb, ProjectExportArguments& into)
{
    choice(verb.add_option("--naming", into.naming, T("cli.help.export.naming")),
           {"source", "tamlo", "number_source", "number", "custom", "name"});
    verb.add_option("--text", into.text, T("cli.help.export.text"))->type_name("TEXT");
    choice(verb.add_option("--type", into.type, T("cli.help.export.type")), {"jpg", "tif", "png"});
    verb.add_option("--quality", into.quality, T("cli.help.export.quality"))
        ->check(CLI::Range(1, 100))
        ->type_name("Q")
        ->option_text("Q");
    choice(verb.add_option("--scale", into.scale, T("cli.help.export.scale")), {"1", "0.5", "0.25"});
    choice(verb.add_option("--social", into.social, T("cli.help.export.social"))
               ->expected(0, 1)
               ->default_str("1080"),
           {"1080", "2048"});
}

void describeExport(CLI::App& project, ProjectCommand& into)
{
    const auto verb = addVerb<ProjectExportArguments>(project, "export", "cli.help.project.export", into);
    ProjectExportArguments& to = *verb.arguments;
    takeFrames(*verb.app, to);
    verb.app->get_option("FRAMES")->required(false);
    choice(verb.app->add_option("--set", to.set, T("cli.help.export.set")),
           {"selected", "not-rejected", "all"});
    verb.app->add_option("--to", to.to, T("cli.help.export.to"))->required()->type_name("DIR");
    describeExportChoices(*verb.app, to);
    choice(verb.app->add_option("--on-conflict", to.onConflict, T("cli.help.export.onConflict")),
           {"cancel", "replace", "copy"});
    verb.app->add_flag("--skip-existing", to.skipExisting, T("cli.help.export.skipExisting"));
    verb.app->add_flag("--resume", to.resume, T("cli.help.export.resume"));
    CLI::Option* shard =
        verb.app->add_option("--shard", to.shard, T("cli.help.export.shard"))->type_name("K/N");
    verb.app->add_flag("--record", to.record, T("cli.help.export.record"))->needs(shard);
    verb.app->add_flag("--no-record", to.noRecord, T("cli.help.export.noRecord"));
    verb.app->add_flag("--dry-run", to.dryRun, T("cli.help.export.dryRun"));
    verb.app->add_flag("--json", to.json, T("cli.help.export.json"));
}

void describeSheet(CLI::App& project, ProjectCommand& into)
{
    const auto verb = addVerb<ProjectSheetArguments>(project, "sheet", "cli.help.project.sheet", into);
    takeRoll(*verb.app, *verb.arguments);
    verb.app->add_option("-o", verb.arguments->output, T("cli.help.sheet.output"))
        ->required()
        ->type_name("SHEET.pdf|PAGE.png|PAGES.html");
    verb.app->add_option("--cols", verb.arguments->cols, T("cli.help.sheet.cols"))
        ->check(CLI::Range(1, SheetExporter::kMostCols))
        ->type_name("N")
        ->option_text("N");
    verb.app->add_flag("--originals", verb.arguments->originals, T("cli.help.sheet.originals"));
    verb.app->add_option("--page", verb.arguments->page, T("cli.help.sheet.page"))->type_name("N");
    verb.app->add_flag("--json", verb.arguments->json, T("cli.help.export.json"));
}

void describeFiles(CLI::App& project, ProjectCommand& into)
{
    const auto locate = addVerb<ProjectLocateArguments>(project, "locate", "cli.help.project.locate", into);
    takeRoll(*locate.app, *locate.arguments);
    place(*locate.app, "FOLDER|FRAME", locate.arguments->frames, "cli.help.project.where");
    place(*locate.app, "FILE", locate.arguments->file, "cli.help.project.file")->required(false);
    locate.app->add_flag("--force", locate.arguments->force, T("cli.help.project.force"));
    const auto backups =
        addVerb<ProjectBackupsArguments>(project, "backups", "cli.help.project.backups", into);
    takeRoll(*backups.app, *backups.arguments);
    backups.app->get_option("ROLL")->required(false);
    backups.app->add_flag("--json", backups.arguments->json, T("cli.help.jsonArray"));
    backups.app->add_flag("--usage", backups.arguments->usage, T("cli.help.project.usage"));
    backups.app->add_option("--purge", backups.arguments->purgeDays, T("cli.help.project.purge"))
        ->check(CLI::Range(0, 36500))
        ->type_name("DAYS")
        ->option_text("DAYS");
    const auto restore =
        addVerb<ProjectRestoreArguments>(project, "restore", "cli.help.project.restore", into);
    takeRoll(*restore.app, *restore.arguments);
    place(*restore.app, "STAMP", restore.arguments->stamp, "cli.help.project.stamp");
    restore.app->add_option("-o", restore.arguments->output, T("cli.help.project.output"))
        ->required()
        ->type_name("NEW.tamlo");
    const auto recent = addVerb<ProjectRecentArguments>(project, "recent", "cli.help.project.recent", into);
    recent.app->add_flag("--json", recent.arguments->json, T("cli.help.jsonArray"));
    recent.app->add_flag("--clear", recent.arguments->clear, T("cli.help.project.clear"));
}

} // namespace

void describeProject(CLI::App& app, ProjectCommand& into)
{
    CLI::App* project = app.add_subcommand("project", T("cli.help.project"));
    project->require_subcommand(1);
    describeIntake(*project, into);
    describeReading(*project, into);
    describeEdits(*project, into);
    describeArranging(*project, into);
    describeCopying(*project, into);
    describePreview(*project, into);
    describeExport(*project, into);
    describeSheet(*project, into);
    describeFiles(*project, into);
    for (CLI::App* verb : project->get_subcommands(nullptr)) {
        verb->fallthrough();
        verb->get_help_ptr()->group(T("cli.help.options"));
    }
}

void describeRack(CLI::App& command, RackArguments& into)
{
    takeFrame(command, into);
    command.add_flag("--json", into.json, T("cli.help.jsonObject"));
}

} // namespace tamlo::cli
