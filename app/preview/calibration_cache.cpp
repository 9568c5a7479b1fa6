#include "app/preview/calibration_cache.h"

#include "app/project/whole_file.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/formats/json_codec.h"
#include "platform/atomic_file.h"
#include "platform/content_hash.h"
#include "platform/platform_error.h"

#include <bit>
#include <optional>
#include <utility>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

using Record = Grain::CalibrationRecord;

/// More than a film has in use, over the sizes and developments that a user comes by.
constexpr std::size_t kMostRecords = 128;

/// Values as their bits: they come back as they were.
Json jsonOf(const std::set<Record>& records)
{
    Json list = Json::array();
    for (const Record& record : records) {
        Json bits = Json::array();
        for (const float value : record.values) bits.push_back(std::bit_cast<std::uint32_t>(value));
        list.push_back({{"key", record.key}, {"values", std::move(bits)}});
    }
    return list;
}

std::string checkOf(const Json& list, const std::string& build)
{
    return std::to_string(platform::xxHash64(build + "\n" + list.dump()));
}

/// Nothing for a file that another build has written, or that is not whole.
std::set<Record> parsed(const std::string& text, const std::string& build)
{
    std::set<Record> out;
    try {
        const Json json = parseJsonText(text);
        if (!json.is_object() || !json.contains("records") || !json["records"].is_array() ||
            !json.contains("check") || json["check"] != checkOf(json["records"], build))
            return {};
        for (const Json& one : json["records"]) {
            Record record;
            record.key = one.at("key").get<std::vector<std::int64_t>>();
            for (const auto bits : one.at("values").get<std::vector<std::uint32_t>>())
                record.values.push_back(std::bit_cast<float>(bits));
            if (out.size() < kMostRecords) out.insert(std::move(record));
        }
    } catch (const DecodeError&) {
        return {};
    } catch (const Json::exception&) {
        return {};
    }
    return out;
}

} // namespace

CalibrationCache::CalibrationCache(fs::path folder, std::string build)
    : folder_(std::move(folder)), build_(std::move(build))
{}

fs::path CalibrationCache::fileOf(const std::string& name) const
{
    return folder_ / (name + ".json");
}

std::size_t CalibrationCache::recall(const std::string& filmProfile)
{
    const std::string name = platform::sha256(filmProfile);
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = known_.find(name); found != known_.end()) return found->second.size();
    }
    Records records;
    try {
        if (const auto text = readWholeIfThere(fileOf(name))) records = parsed(*text, build_);
    } catch (const TamloError&) {
        // A file that can't be read is no file.
    }
    std::erase_if(records, [](const Record& record) { return !Grain::addCalibration(record); });
    const std::lock_guard lock(mutex_);
    Records& known = known_[name];
    known.merge(records);
    return known.size();
}

void CalibrationCache::during(const std::string& filmProfile, const std::function<void()>& work)
{
    recall(filmProfile);
    std::vector<Record> found;
    try {
        const Grain::CalibrationNotes notes(found);
        work();
    } catch (...) {
        keep(filmProfile, found);
        throw;
    }
    keep(filmProfile, found);
}

void CalibrationCache::keep(const std::string& filmProfile, const std::vector<Record>& records)
{
    const std::string name = platform::sha256(filmProfile);
    Records all;
    {
        const std::lock_guard lock(mutex_);
        Records& known = known_[name];
        const std::size_t before = known.size();
        for (const Record& record : records)
            if (known.size() < kMostRecords) known.insert(record);
        if (known.size() == before) return;
        all = known;
    }
    try {
        std::error_code ignored;
        fs::create_directories(folder_, ignored);
        platform::sweepTemporaries(folder_);
        const Json list = jsonOf(all);
        const Json json{{"check", checkOf(list, build_)}, {"records", list}};
        platform::writeWhole(fileOf(name).string(), json.dump() + "\n", platform::Durability::cache);
    } catch (const platform::PlatformError&) {
        // It is found again next time.
    }
}

} // namespace tamlo
