// FlagCache: what profiles say about themselves, remembered by name, so that a listing opens each file once.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace tamlo {

class FlagCache {
public:
    /// The remembered flag, else what `read` tells, which runs without the lock.
    template <typename Read>
    bool flag(const std::string& key, Read&& read)
    {
        std::uint64_t seen = 0;
        {
            const std::lock_guard guard(lock_);
            const auto known = flags_.find(key);
            if (known != flags_.end()) return known->second;
            seen = changes_;
        }
        const bool value = read();
        const std::lock_guard guard(lock_);
        if (seen == changes_) flags_[key] = value; // else the file may have changed while it was read
        return value;
    }

    /// After a file has changed.
    void forget(const std::string& key)
    {
        const std::lock_guard guard(lock_);
        flags_.erase(key);
        ++changes_;
    }

private:
    std::mutex lock_;
    std::uint64_t changes_ = 0;
    std::map<std::string, bool> flags_;
};

} // namespace tamlo
