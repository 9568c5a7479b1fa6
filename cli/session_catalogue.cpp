// tamlo session: recipes and profiles. Each line says what a screen would ask.

#include "cli/catalogue.h"
#include "cli/messages.h"
#include "cli/project_settings.h"
#include "cli/session_words.h"
#include "core/profiles/catalogue/profile_store.h"

#include <ostream>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
using Words = SessionWords;

void tellStatus(LiveSession& session, std::ostream& results)
{
    needNoFailure(session);
    results << session.model().status() << '\n';
}

std::string presetAt(LiveSession& session, const Words& words)
{
    return profileNamed(session.model().store(), ProfileKind::presets, textAt(words, 1));
}

void applyPreset(LiveSession& session, const Words& words, std::ostream&)
{
    const auto blocks = words.size() > 2 ? blocksNamed(words[2]) : PresetSchema::Blocks();
    session.model().presets.applyPreset(presetAt(session, words), blocks);
    needNoFailure(session);
}

void savePreset(LiveSession& session, const Words& words, std::ostream& results)
{
    const std::map<std::string, PresetConflict> conflicts{{"replace", PresetConflict::replace},
                                                          {"copy", PresetConflict::copy}};
    session.questions().conflictChoice.reset();
    if (words.size() > 2) session.questions().conflictChoice = wordAt(words, 2, conflicts);
    session.questions().nameChoice = textAt(words, 1);
    session.model().presetFiles.savePresetPanel();
    if (session.questions().cancelled > 0)
        throw UsageError(T("preset.idTaken", {{"id", PresetSchema::slug(textAt(words, 1))}}));
    tellStatus(session, results);
}

void updatePreset(LiveSession& session, const Words& words, std::ostream& results)
{
    session.model().presetFiles.updatePresetFromCurrent(presetAt(session, words));
    tellStatus(session, results);
}

void renamePreset(LiveSession& session, const Words& words, std::ostream& results)
{
    textAt(words, 2);
    session.questions().nameChoice = restFrom(words, 2);
    session.model().presetFiles.renamePresetPanel(presetAt(session, words));
    tellStatus(session, results);
}

void duplicatePreset(LiveSession& session, const Words& words, std::ostream& results)
{
    session.model().presetFiles.duplicatePreset(presetAt(session, words));
    tellStatus(session, results);
}

void deletePreset(LiveSession& session, const Words& words, std::ostream& results)
{
    session.questions().deleteFromCatalogue = true; // saying it is the answer
    session.model().presetFiles.deletePreset(textAt(words, 1));
    tellStatus(session, results);
}

void showPreset(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().presetFiles.showPreset(textAt(words, 1));
    needNoFailure(session);
}

void exportPreset(LiveSession& session, const Words& words, std::ostream& results)
{
    session.model().presetFiles.exportPreset(presetAt(session, words), fs::absolute(textAt(words, 2)));
    tellStatus(session, results);
}

/// Files, after a word that says what becomes of ids that are taken.
std::vector<fs::path> incomingAt(LiveSession& session, const Words& words)
{
    session.questions().conflictChoice = wordAt<PresetConflict>(words, 1,
                                                                {{"cancel", PresetConflict::cancel},
                                                                 {"replace", PresetConflict::replace},
                                                                 {"copy", PresetConflict::copy}});
    textAt(words, 2);
    return {words.begin() + 2, words.end()};
}

void importPresets(LiveSession& session, const Words& words, std::ostream& results)
{
    session.model().presetFiles.importPresets(incomingAt(session, words));
    for (const std::string& note : session.model().presetFiles.notes()) tellNote(note);
    tellStatus(session, results);
}

void importProfiles(LiveSession& session, const Words& words, std::ostream& results)
{
    for (const fs::path& file : incomingAt(session, words)) {
        session.model().profileFiles.importProfile(file);
        tellStatus(session, results);
    }
}

void deleteProfile(LiveSession& session, const Words& words, std::ostream& results)
{
    session.questions().deleteFromCatalogue = true;
    const ProfileKind kind = kindNamed(textAt(words, 1));
    session.model().profileFiles.deleteProfile(kind, textAt(words, 2));
    tellStatus(session, results);
}

void restoreProfile(LiveSession& session, const Words&, std::ostream& results)
{
    session.model().profileFiles.restoreLastDeletedProfile();
    tellStatus(session, results);
}

void duplicateProfile(LiveSession& session, const Words& words, std::ostream& results)
{
    const ProfileKind kind = kindNamed(textAt(words, 1));
    session.model().profileFiles.duplicateProfile(
        kind, profileNamed(session.model().store(), kind, textAt(words, 2)));
    tellStatus(session, results);
}

} // namespace

const SessionVerbs& catalogueVerbs()
{
    static const SessionVerbs verbs{{"preset-apply", applyPreset},     {"preset-save", savePreset},
                                    {"preset-update", updatePreset},   {"preset-rename", renamePreset},
                                    {"preset-copy", duplicatePreset},  {"preset-delete", deletePreset},
                                    {"preset-show", showPreset},       {"preset-export", exportPreset},
                                    {"preset-import", importPresets},  {"profile-import", importProfiles},
                                    {"profile-delete", deleteProfile}, {"profile-restore", restoreProfile},
                                    {"profile-copy", duplicateProfile}};
    return verbs;
}

} // namespace tamlo::cli
