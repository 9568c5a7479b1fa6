// Clipboard: what was copied, as data of named types and as plain text side by side. A desktop hands it to
// other programs; a session without a screen keeps it for itself.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace tamlo::platform {

class Clipboard {
public:
    virtual ~Clipboard() = default;

    virtual void clear() = 0;
    /// type: a media type, "application/…".
    virtual void setData(const std::string& type, std::string bytes) = 0;
    virtual void setText(std::string text) = 0;
    virtual std::optional<std::string> data(const std::string& type) const = 0;
    virtual std::optional<std::string> text() const = 0;
};

/// Lives and ends with the session.
class SessionClipboard : public Clipboard {
public:
    void clear() override { *this = {}; }
    void setData(const std::string& type, std::string bytes) override { data_[type] = std::move(bytes); }
    void setText(std::string text) override { text_ = std::move(text); }
    std::optional<std::string> data(const std::string& type) const override
    {
        const auto found = data_.find(type);
        return found == data_.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<std::string> text() const override { return text_; }

private:
    std::map<std::string, std::string> data_;
    std::optional<std::string> text_;
};

} // namespace tamlo::platform
