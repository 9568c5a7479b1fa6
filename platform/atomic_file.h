// A file that appears whole or not at all: bytes go to a file without a name in the target's folder, are
// flushed to the disk, and take the target's name in one step. Whatever fails or dies before that, what stood
// under the target's name still stands there. Where the file system has no files without a name, and for the
// instant in which an older file is replaced, a temporary name stands in the folder; one that a killed
// program left is removed by the next write there.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace tamlo::platform {

/// cache: not flushed to the disk, for what can be made again and is checked when it is read.
enum class Durability { durable, cache };

class AtomicFile {
public:
    /// A target that is a symbolic link is followed, so that the file it names is the one replaced; its
    /// permissions are kept. Errors: PlatformError with the system's reason.
    explicit AtomicFile(const std::string& target, Durability durability = Durability::durable);
    /// Leaves nothing behind unless commit() succeeded.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends bytes; asks the checkpoint between pieces. Errors: PlatformError, a full disk among them.
    void write(std::span<const std::uint8_t> bytes);
    /// The time that the file will bear, seconds since 1970, instead of that of its last write. Where it
    /// can't be set the usual one holds.
    void setModified(double seconds);
    /// Flushes to the disk, closes and renames. Errors: PlatformError; the target is then untouched. That
    /// the folder can't be flushed is no failure: after a power cut either file may stand there, whole.
    void commit();

private:
    void openUnnamed();
    void openNamed();
    void giveName(bool replaces);

    std::filesystem::path target_;
    std::filesystem::path temporary_; ///< empty while the file has no name
    int descriptor_ = -1;
    Durability durability_;
};

/// Writes a text or bytes whole. Errors: PlatformError; the target is then as it was.
void writeWhole(const std::string& target, std::span<const std::uint8_t> bytes,
                Durability durability = Durability::durable);
void writeWhole(const std::string& target, const std::string& text,
                Durability durability = Durability::durable);

/// Removes temporaries that killed programs left in a folder; those of a living one stay. A durable write
/// does it for its own folder. Never fails.
void sweepTemporaries(const std::filesystem::path& folder);

} // namespace tamlo::platform
