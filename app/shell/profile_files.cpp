#include "app/shell/profile_files.h"

#include "app/shell/app_model.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

namespace {

std::string titleIn(const std::string& data, const std::string& id)
{
    const JSONValue profile = JSONValue::parse(data, nullptr, false);
    return Loc::pick(stringValue(memberOf(profile, "name")).value_or(id),
                     stringValue(memberOf(profile, "name_en")));
}

bool names(const ProcessSettings& settings, const PresetSchema::Reference& row, const std::string& name)
{
    if (row.key == "stock") return settings.stock == name;
    if (row.key == "lens") return settings.lens == name;
    if (row.key == "paper") return settings.paper == name;
    const OptionRow* option = findOption(row.key);
    Json value;
    if (option) option->write(settings.options, value);
    return value == name;
}

} // namespace

std::string ProfileFiles::titleOf(ProfileKind kind, const std::string& name) const
{
    try {
        return titleIn(model_.store().data(kind, name), name);
    } catch (const std::exception&) {
        return name;
    }
}

std::size_t ProfileFiles::framesUsing(ProfileKind kind, const std::string& name) const
{
    const Roll& roll = model_.project().frames;
    return static_cast<std::size_t>(std::count_if(roll.begin(), roll.end(), [&](const Frame& frame) {
        return frame.process && std::ranges::any_of(PresetSchema::references(), [&](const auto& row) {
                   return row.kind == kind && names(*frame.process, row, name);
               });
    }));
}

void ProfileFiles::fail(const std::exception& error)
{
    model_.tellFailure(T("profiles.writeFailed", {{"error", ErrorWords::of(error)}}));
}

void ProfileFiles::changed()
{
    model_.lists.rebuildLists();
    model_.seams().views.renderAllThumbs();
    if (model_.selection.screen() == Screen::develop) model_.seams().views.renderCurrent(0);
}

void ProfileFiles::deleteProfile(ProfileKind kind, const std::string& name)
{
    const std::string title = titleOf(kind, name);
    std::string note = T("profiles.deleteNote");
    std::string list;
    for (const std::string& id : model_.store().presetsUsing(kind, name))
        list += (list.empty() ? "" : ", ") + id;
    if (!list.empty()) note = T("profiles.usedByPresets", {{"list", list}}) + " " + note;
    if (const std::size_t frames = framesUsing(kind, name))
        note = Loc::string("profiles.usedByFrames", static_cast<std::int64_t>(frames)) + " " + note;
    model_.seams().questions.deleteProfile({T("profiles.deleteTitle", {{"name", title}}), note},
                                           Answer<bool>([this, kind, name](std::optional<bool> yes) {
                                               if (yes.value_or(false)) trash(kind, name);
                                           }));
}

void ProfileFiles::trash(ProfileKind kind, const std::string& name)
{
    model_.beginAction();
    const std::string title = titleOf(kind, name);
    try {
        deleted_.push_back({kind, name, model_.store().deleteUserProfile(kind, name)});
    } catch (const std::exception& error) {
        return fail(error);
    }
    changed();
    model_.tell(T("profiles.trashed", {{"name", title}}));
}

void ProfileFiles::restoreLastDeletedProfile()
{
    if (deleted_.empty()) return;
    model_.beginAction();
    const DeletedProfile last = deleted_.back();
    const std::string name = model_.store().freeName(last.kind, last.name);
    try {
        model_.store().restoreUserProfile(last.kind, name, last.trash);
    } catch (const std::exception& error) {
        return fail(error);
    }
    deleted_.pop_back();
    changed();
    model_.tell(T("profiles.restored", {{"name", titleOf(last.kind, name)}}));
}

void ProfileFiles::importProfile(const Path& file)
{
    model_.beginAction();
    messages_.clear();
    Incoming incoming;
    bool isTaken = false;
    try {
        ProfileStore::Incoming read = model_.store().inspectImport(file);
        if (read.kind == ProfileKind::presets) return model_.presetFiles.importPresets({file});
        incoming = {read.kind, read.id, titleIn(read.data, read.title), std::move(read.data)};
        isTaken = read.conflicts;
    } catch (const ProfileValidator::Failure& failure) {
        messages_ = failure.messages();
        return model_.tellFailure(file.filename().string() + ": " + failure.what());
    } catch (const std::exception& error) {
        messages_ = {ErrorWords::of(error)};
        return model_.tellFailure(messages_.front());
    }
    if (!isTaken) return take(incoming, PresetConflict::ask);
    const bool mayReplace = !model_.store().isBuiltin(incoming.kind, incoming.id);
    const QuestionText text{
        T("profiles.existsTitle"),
        T(mayReplace ? "profiles.idTaken" : "profiles.idTakenBuiltin", {{"id", incoming.id}})};
    model_.seams().questions.idTaken(
        text, mayReplace,
        Answer<PresetConflict>([this, incoming, mayReplace](std::optional<PresetConflict> choice) {
            if (choice == PresetConflict::copy || (choice == PresetConflict::replace && mayReplace))
                take(incoming, *choice);
        }));
}

void ProfileFiles::take(const Incoming& incoming, PresetConflict conflict)
{
    ProfileStore& store = model_.store();
    std::string id = incoming.id;
    if (conflict == PresetConflict::copy) id = store.freeName(incoming.kind, id);
    std::optional<Path> replaced;
    try {
        // What is replaced is thrown away, not written over: it can be brought back.
        if (conflict == PresetConflict::replace) replaced = store.deleteUserProfile(incoming.kind, id);
        store.saveUserProfile(incoming.kind, id, incoming.data);
    } catch (const std::exception& error) {
        fail(error);
        if (!replaced) return;
        try {
            store.restoreUserProfile(incoming.kind, id, *replaced);
        } catch (const std::exception&) {
            deleted_.push_back({incoming.kind, id, *replaced}); // it lies there until the disk takes it
        }
        return;
    }
    if (replaced) deleted_.push_back({incoming.kind, id, *replaced});
    changed();
    model_.tell(T("profiles.added", {{"name", incoming.title}, {"id", id}}));
}

std::optional<std::string> ProfileFiles::duplicateProfile(ProfileKind kind, const std::string& name)
{
    model_.beginAction();
    const std::string id = model_.store().freeName(kind, name + "_copy");
    try {
        model_.store().duplicateProfile(kind, name, id);
    } catch (const std::exception& error) {
        fail(error);
        return std::nullopt;
    }
    changed();
    model_.tell(T("profiles.added", {{"name", titleOf(kind, id)}, {"id", id}}));
    return id;
}

void ProfileFiles::exportProfile(ProfileKind kind, const std::string& name, const Path& to)
{
    model_.beginAction();
    try {
        model_.store().exportProfile(kind, name, to);
    } catch (const std::exception& error) {
        return fail(error);
    }
    model_.tell(T("profiles.exported", {{"file", to.filename().string()}}));
}

} // namespace tamlo
