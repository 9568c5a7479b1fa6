// ProfileStore: the user's own profiles: saving, trash, names, copies and files from elsewhere.

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/loc.h"

namespace tamlo {

namespace fs = std::filesystem;

using ProfileValidator::Failure;

namespace {

bool isFile(const fs::path& path)
{
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

} // namespace

/// The name is a profile's, be it hidden or one that can't be rendered.
bool ProfileStore::isTaken(Kind kind, const std::string& name) const
{
    return isBuiltin(kind, name) || isFile(userFile(kind, name));
}

fs::path ProfileStore::saveUserProfile(Kind kind, const std::string& name, std::string_view data)
{
    if (!UserFiles::staysInFolder(name)) throw Failure({T("profiles.err.badName", {{"name", name}})});
    ProfileValidator::validate(kind, data, *this);
    const fs::path file = userFile(kind, name);
    // A preset keeps the version that its keys are meant in.
    UserFiles::write(file, kind == Kind::presets ? std::string(data) : ProfileValidator::stamped(data));
    forget(kind, name);
    return file;
}

fs::path ProfileStore::deleteUserProfile(Kind kind, const std::string& name)
{
    const fs::path file = userFile(kind, name);
    if (!UserFiles::staysInFolder(name) || !isFile(file))
        throw Failure({T("profiles.err.notUsers", {{"name", name}})});
    fs::path to = trashFolder(kind) / file.filename();
    std::error_code ignored;
    for (int number = 1; fs::exists(to, ignored); ++number)
        to = trashFolder(kind) / (name + "-" + std::to_string(number) + file.extension().string());
    UserFiles::move(file, to);
    forget(kind, name);
    return to;
}

void ProfileStore::restoreUserProfile(Kind kind, const std::string& name, const Path& from)
{
    if (!UserFiles::staysInFolder(name)) throw Failure({T("profiles.err.badName", {{"name", name}})});
    UserFiles::move(from, userFile(kind, name));
    forget(kind, name);
}

void ProfileStore::renameUserProfile(Kind kind, const std::string& from, const std::string& to)
{
    if (!UserFiles::staysInFolder(from) || !isFile(userFile(kind, from)))
        throw Failure({T("profiles.err.builtinRename")});
    if (!UserFiles::staysInFolder(to)) throw Failure({T("profiles.err.badName", {{"name", to}})});
    if (isTaken(kind, to)) throw Failure({T("profiles.err.taken", {{"name", to}})});
    UserFiles::move(userFile(kind, from), userFile(kind, to));
    forget(kind, from);
    forget(kind, to);
}

fs::path ProfileStore::duplicateProfile(Kind kind, const std::string& name, const std::string& id)
{
    if (isTaken(kind, id)) throw Failure({T("profiles.err.taken", {{"name", id}})});
    const std::string text = data(kind, name);
    Json profile;
    try {
        profile = parseJsonText(text);
    } catch (const DecodeError& error) {
        throw Failure({error.what()});
    }
    if (profile.is_object() && profile.contains("name")) profile["name"] = id;
    return saveUserProfile(kind, id, prettyJson(profile));
}

void ProfileStore::exportProfile(Kind kind, const std::string& name, const Path& to) const
{
    UserFiles::write(to, data(kind, name));
}

ProfileStore::Incoming ProfileStore::inspectImport(const Path& url) const
{
    Incoming incoming;
    incoming.data = UserFiles::read(url);
    std::optional<Kind> kind;
    try {
        kind = ProfileValidator::guessKind(incoming.data);
    } catch (const DecodeError& error) {
        throw Failure({error.what()});
    }
    if (!kind) throw Failure({T("profiles.err.noKind")});
    incoming.kind = *kind;
    incoming.id = url.stem().string();
    incoming.title = ProfileValidator::validate(*kind, incoming.data, *this);
    incoming.conflicts = isTaken(*kind, incoming.id);
    return incoming;
}

std::string ProfileStore::freeName(Kind kind, const std::string& base) const
{
    std::string name = base;
    for (int number = 2; isTaken(kind, name); ++number) name = base + "_" + std::to_string(number);
    return name;
}

} // namespace tamlo
