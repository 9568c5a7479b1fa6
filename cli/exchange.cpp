#include "cli/exchange.h"

#include "cli/catalogue.h"
#include "cli/input_files.h"
#include "cli/messages.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/paper_hints.h"
#include "core/profiles/formats/profile_json.h"
#include "core/text/error_words.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
using Kind = ProfileKind;
using ProfileValidator::Failure;

std::string kindTitle(Kind kind)
{
    return T("profiles.kind." + std::string(rawText(kind)));
}

void tellNoteOn(const fs::path& file, const std::string& note)
{
    tellNote(file.string() + ": " + note);
}

/// What a file's readers find beside the numbers, and nothing that a user may have misspelled.
bool ridesAlong(const std::string& key)
{
    return key == "format" || key == "id" || key.ends_with("note") || key.ends_with("iso") ||
           key.ends_with("rms_granularity");
}

/// The profile's name in the language in force.
std::string titleOf(const ProfileStore::Incoming& incoming)
{
    const JSONValue profile = JSONValue::parse(incoming.data);
    return Loc::pick(incoming.title, stringValue(memberOf(profile, "name_en")));
}

std::vector<std::string> unknownKeys(Kind kind, const std::string& data)
{
    std::vector<std::string> keys;
    if (kind == Kind::films) keys = ProfileJSON::unknownKeys<FilmProfile>(data);
    if (kind == Kind::lenses) keys = ProfileJSON::unknownKeys<LensProfile>(data);
    if (kind == Kind::papers) keys = ProfileJSON::unknownKeys<PaperProfile>(data);
    if (kind == Kind::filters) keys = ProfileJSON::unknownKeys<FilterProfile>(data);
    std::erase_if(keys, ridesAlong);
    return keys;
}

void tellUnknownKeys(const fs::path& file, Kind kind, const std::string& data)
{
    std::string list;
    for (const std::string& key : unknownKeys(kind, data)) list += (list.empty() ? "" : ", ") + key;
    if (!list.empty()) tellNoteOn(file, T("cli.unknownKeys", {{"list", list}}));
}

/// A film's matrix of another size than three by three, which the render passes over.
void tellPassedOver(const fs::path& file, Kind kind, const std::string& data)
{
    if (kind != Kind::films) return;
    const auto couplers = ProfileJSON::decode<FilmProfile>(data).couplers;
    if (!couplers) return;
    const auto tell = [&](const char* key, const std::optional<ProfileMatrix>& matrix) {
        if (matrix && !asMatrix3(*matrix)) tellNoteOn(file, T("cli.matrixPassedOver", {{"key", key}}));
    };
    tell("couplers.matrix", couplers->matrix);
    tell("couplers.matrix_ds", couplers->matrixDs);
}

/// What of a profile is hardly meant.
void tellHints(const fs::path& file, Kind kind, const std::string& data)
{
    if (kind != Kind::papers) return;
    for (const std::string& hint : ProfileValidator::hints(ProfileJSON::decode<PaperProfile>(data)))
        tellNoteOn(file, hint);
}

bool isPreset(const std::string& data)
{
    return ProfileValidator::guessKind(data) == Kind::presets;
}

/// A preset as it would be taken in, with the profiles inside it.
std::string checkPreset(const fs::path& file, const std::string& data, const ProfileStore& store)
{
    const PresetDocument document = PresetDocument::validate(PresetDocument::decode(data), store, true);
    for (const std::string& note : document.warnings) tellNoteOn(file, note);
    for (const Kind kind : kProfileKinds) {
        const JSONValue* profiles = objectValue(memberOf(document.embedded(), rawText(kind)));
        if (!profiles || kind == Kind::presets) continue;
        for (const auto& [name, profile] : profiles->items())
            ProfileValidator::validate(kind, profile.dump(), store);
    }
    return document.name();
}

void checkOne(const fs::path& file, const ProfileStore& store, std::ostream& results)
{
    const std::string data = UserFiles::read(file);
    Kind kind = Kind::presets;
    std::string title;
    if (isPreset(data)) {
        title = checkPreset(file, data, store);
    } else {
        const ProfileStore::Incoming incoming = store.inspectImport(file);
        kind = incoming.kind;
        title = titleOf(incoming);
        tellUnknownKeys(file, kind, data);
        tellPassedOver(file, kind, data);
        tellHints(file, kind, data);
    }
    results << file.string() << ": " << kindTitle(kind) << ", " << title << std::endl;
}

void importPreset(const fs::path& file, PresetConflict onConflict, ProfileStore& store, std::ostream& results)
{
    const PresetImportResult result = store.importPreset(file, onConflict);
    for (const std::string& note : result.warnings) tellNoteOn(file, note);
    if (result.action == PresetImportResult::Action::cancelled)
        return tellNoteOn(file, T("cli.importSkipped", {{"id", result.id}}));
    results << T("profiles.added", {{"name", store.presetDocument(result.id).name()}, {"id", result.id}})
            << std::endl;
}

void importProfile(const fs::path& file, PresetConflict onConflict, ProfileStore& store,
                   std::ostream& results)
{
    const ProfileStore::Incoming incoming = store.inspectImport(file);
    std::string id = incoming.id;
    if (incoming.conflicts) {
        if (onConflict == PresetConflict::cancel)
            return tellNoteOn(file, T("cli.importSkipped", {{"id", id}}));
        if (onConflict == PresetConflict::ask) throw PresetError(T("cli.idTaken", {{"id", id}}), true);
        if (onConflict == PresetConflict::copy)
            id = store.freeName(incoming.kind, id);
        else if (store.isBuiltin(incoming.kind, id))
            throw PresetError(T("cli.builtinStays", {{"id", id}}));
    }
    store.saveUserProfile(incoming.kind, id, incoming.data);
    tellUnknownKeys(file, incoming.kind, incoming.data);
    tellHints(file, incoming.kind, incoming.data);
    results << T("profiles.added", {{"name", titleOf(incoming)}, {"id", id}}) << std::endl;
}

/// Runs the work on each file; a failure is told with the file's name and the next one follows.
template <typename Work>
int forEachFile(const std::vector<fs::path>& files, Work&& work)
{
    int status = 0;
    const auto fail = [&](const fs::path& file, const std::string& text) {
        tell(namingInput(file, text));
        status = 1;
    };
    for (const fs::path& file : files) {
        try {
            work(file);
        } catch (const Failure& failure) {
            for (const std::string& message : failure.messages()) fail(file, message);
        } catch (const PresetError& error) {
            fail(file, error.what() + (error.idTaken() ? T("cli.conflictHint") : ""));
        } catch (const DecodeError& error) {
            fail(file, error.what());
        } catch (const TamloError& error) {
            fail(file, ErrorWords::of(error));
        }
    }
    return status;
}

} // namespace

int checkFiles(const CheckArguments& arguments, const ProfileStore& store, std::ostream& results)
{
    return forEachFile(arguments.files, [&](const fs::path& file) { checkOne(file, store, results); });
}

int importFiles(const ImportArguments& arguments, ProfileStore& store, std::ostream& results)
{
    return forEachFile(arguments.files, [&](const fs::path& file) {
        if (isPreset(UserFiles::read(file)))
            importPreset(file, arguments.onConflict, store, results);
        else
            importProfile(file, arguments.onConflict, store, results);
    });
}

void exportOne(const ExportArguments& arguments, const ProfileStore& store, std::ostream& results)
{
    const Kind kind = kindNamed(arguments.kind);
    const std::string id = profileNamed(store, kind, arguments.id);
    fs::path file = arguments.file;
    if (kind == Kind::presets) {
        try {
            file = store.exportPreset(id, file);
        } catch (const PresetError& error) {
            throw std::runtime_error(id + ": " + error.what());
        }
    } else {
        std::error_code ignored;
        if (fs::is_directory(file, ignored)) file /= id + ".tprofile";
        store.exportProfile(kind, id, file);
    }
    results << file.string() << std::endl;
}

} // namespace tamlo::cli
