// FlagCache: what profiles say about themselves, remembered by name, so that a listing opens each file once.
#pragma once

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
        {
            const std::lock_guard guard(lock_);
            const auto known = flags_.find(key);
            if (known != flags_.end()) return known->second;
        }
        const bool value = read();
        const std::lock_guard guard(lock_);
        flags_[key] = value;
        return value;
    }

    /// After a file has changed.
    void forget(const std::string& key)
    {
        const std::lock_guard guard(lock_);
        flags_.erase(key);
    }

private:
    std::mutex lock_;
    std::map<std::string, bool> flags_;
};

} // namespace tamlo
