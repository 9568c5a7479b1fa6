// Desktop: what a session tells and asks of the desktop around it: how far a long piece of work is, that it
// has ended, to show files in the file manager, how fast a double click is.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tamlo::platform {

class Desktop {
public:
    virtual ~Desktop() = default;

    /// The share that is done, 0 to 1; absent takes the indicator away.
    virtual void showProgress(std::optional<double> fraction) = 0;
    /// Told when a long piece of work has ended and the user may be elsewhere.
    virtual void notify(const std::string& title, const std::string& text) = 0;
    virtual void reveal(const std::vector<std::filesystem::path>& files) = 0;
    virtual double doubleClickSeconds() const = 0;
};

/// Without a screen: progress and notices become lines of text, each whole percent once.
class HeadlessDesktop : public Desktop {
public:
    explicit HeadlessDesktop(std::function<void(const std::string& line)> tell) : tell_(std::move(tell)) {}

    void showProgress(std::optional<double> fraction) override
    {
        const int percent = fraction ? static_cast<int>(*fraction * 100.0) : -1;
        if (std::exchange(percent_, percent) != percent && percent >= 0)
            tell_(std::to_string(percent) + " %");
    }
    void notify(const std::string& title, const std::string& text) override
    {
        tell_(text.empty() ? title : title + ": " + text);
    }
    void reveal(const std::vector<std::filesystem::path>& files) override
    {
        for (const std::filesystem::path& file : files) tell_(file.string());
    }
    double doubleClickSeconds() const override { return 0.4; } // what desktops have as their default

private:
    std::function<void(const std::string&)> tell_;
    int percent_ = -1;
};

} // namespace tamlo::platform
