// PresetError: why a preset can't be read, saved or taken in, in the user's words.
#pragma once

#include <exception>
#include <string>

namespace tamlo {

class PresetError : public std::exception {
public:
    explicit PresetError(std::string message, bool idTaken = false)
        : message_(std::move(message)), idTaken_(idTaken)
    {}

    const std::string& message() const noexcept { return message_; }
    /// An import met a preset of the same id, and was not told what to do with it.
    bool idTaken() const noexcept { return idTaken_; }
    const char* what() const noexcept override { return message_.c_str(); }

private:
    std::string message_;
    bool idTaken_;
};

} // namespace tamlo
