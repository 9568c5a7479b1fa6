// Preferences that outlive a run: values by key. On disk they are the file "preferences" of the user's
// folder, a line "key=value" each, which every program of this user shares: it is read anew for each
// question, and a change reads, changes and writes it under a lock.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tamlo::platform {

/// The stored text; absent when there is none, or no file that can be read.
std::optional<std::string> preference(const std::string& key);

/// Stores a text, or removes it when absent; all other keys stay. Line feeds in the value become blanks.
/// Errors: PlatformError with the system's reason; the file is then as it was.
void setPreference(const std::string& key, const std::optional<std::string>& value);

class Preferences {
public:
    virtual ~Preferences() = default;

    /// Errors of all setters: PlatformError; what was stored still is.
    virtual std::optional<std::string> text(const std::string& key) const = 0;
    virtual void setText(const std::string& key, const std::optional<std::string>& value) = 0;

    /// A value that is no such thing counts as absent.
    std::optional<bool> flag(const std::string& key) const;
    void setFlag(const std::string& key, bool value);
    std::optional<double> number(const std::string& key) const;
    void setNumber(const std::string& key, double value);
    std::optional<std::vector<std::string>> list(const std::string& key) const;
    void setList(const std::string& key, const std::vector<std::string>& values);
};

/// Those of the user's folder.
class FilePreferences : public Preferences {
public:
    std::optional<std::string> text(const std::string& key) const override { return preference(key); }
    void setText(const std::string& key, const std::optional<std::string>& value) override
    {
        setPreference(key, value);
    }
};

} // namespace tamlo::platform
