// Fingerprint: what a source is recognised by, wherever it lies: its size and a hash of a sample of its
// bytes. Everything that is kept about a picture is keyed on it, so that a moved folder loses nothing.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace tamlo {

struct Fingerprint {
    std::int64_t size = 0;  ///< bytes
    double mtime = 0;       ///< seconds since 1970, 0 if unknown; no part of the identity
    std::uint64_t hash = 0; ///< XXH64 of the sample

    /// Of a file: the hash covers its first mebibyte, and of a file above 1,114,112 bytes its last 64
    /// kibibytes too. Absent when the file can't be read.
    static std::optional<Fingerprint> read(const std::filesystem::path& file);

    bool sameContent(const Fingerprint& other) const { return size == other.size && hash == other.hash; }

    bool operator==(const Fingerprint&) const = default;
};

/// A fingerprint, and the first mebibyte that was read for it: what else is asked of the file stands there as
/// a rule, and a disk that waits for each read is not asked twice.
struct FileSample {
    Fingerprint fingerprint;
    std::vector<char> head;

    static std::optional<FileSample> read(const std::filesystem::path& file);
};

} // namespace tamlo
