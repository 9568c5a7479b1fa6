// ProfileError: a profile that is not there, or that is not what its format says.
#pragma once

#include <exception>
#include <string>
#include <vector>

namespace tamlo {

class ProfileError : public std::exception {
public:
    enum class Kind { notFound, invalid };

    /// "No KIND profile 'NAME'. Available: a, b, c".
    static ProfileError notFound(const std::string& kind, const std::string& name,
                                 std::vector<std::string> available);
    /// "Invalid profile: " followed by the text.
    static ProfileError invalid(const std::string& text);

    Kind kind() const noexcept { return kind_; }
    /// The names there are (notFound).
    const std::vector<std::string>& available() const noexcept { return available_; }
    const char* what() const noexcept override { return text_.c_str(); }

private:
    ProfileError(Kind kind, std::string text) : kind_(kind), text_(std::move(text)) {}

    Kind kind_;
    std::string text_;
    std::vector<std::string> available_;
};

} // namespace tamlo
