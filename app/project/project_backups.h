// ProjectBackups: a copy of the project's file is kept before each write of it, and the copies are thinned by
// age: many of the last hour, a few older ones, none past ninety days. A copy bears the time at which its
// version was written. Nothing here ever stops a save.
#pragma once

#include "app/project/project.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::ProjectBackups {

/// All times are seconds since 1970.
struct Item {
    std::filesystem::path url;
    double date = 0;
    std::optional<std::size_t> frames; ///< absent where they were not counted, or can't be
    std::int64_t bytes = 0;

    bool operator==(const Item&) const = default;
};

struct Tier {
    double ageSeconds;    ///< up to this age
    double bucketSeconds; ///< one copy of so many seconds stays; 0: all do
};
inline constexpr std::array<Tier, 5> tiers{
    {{1'800, 0}, {3'600, 600}, {86'400, 1'800}, {1'209'600, 86'400}, {7'776'000, 604'800}}};

/// Six hexadecimal digits of a project's place.
std::string tag(const std::filesystem::path& url);
/// The folder of a project's copies.
std::filesystem::path dir(const std::filesystem::path& url);
/// "2024-05-17T21-04-09", by the local clock.
std::string stamp(double date);
/// Of a copy, from its name; absent for any other file. Where the file's own time differs by whole quarter
/// hours, the machine has changed its time zone since, and the file's own time is told.
std::optional<double> date(const std::filesystem::path& url);

/// The copies in a folder, newest first. frames: each is read and its frames are counted.
std::vector<Item> list(const std::filesystem::path& folder, bool frames);
/// Those that stay, newest first. At most 103 of at most 100 MiB together; the newest always stays.
std::vector<Item> keepers(std::vector<Item> items, double now);
/// Deletes all others of a project; returns how many.
std::size_t prune(const std::filesystem::path& url, double now);
/// Copies the file that a project is about to be written over, then prunes.
void keep(const std::filesystem::path& before, double now);

struct Usage {
    std::size_t files = 0;
    std::int64_t bytes = 0;
};
/// Of all projects together.
Usage usage();
/// Deletes what is older than so many days, of all projects; returns how many.
std::size_t purge(double days, double now);

/// The project of a copy, under a name that tells when it was made. Errors: TamloError for the user.
Project restored(const Item& item, const ProfileStore& store);

} // namespace tamlo::ProjectBackups
