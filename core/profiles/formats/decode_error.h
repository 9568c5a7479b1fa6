// DecodeError: why a JSON value is not what a format asks for: the path of the key, what stood there and
// what was expected. Thrown by every decoder of this folder; the catalogue turns it into a text for the user.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace tamlo {

/// A place in a JSON document, linked on the stack from the innermost key to the root, so that a path is
/// only spelled when something is wrong with it.
struct JsonPath {
    const JsonPath* parent = nullptr;
    std::string_view key; ///< empty at the root and in a list
    long index = -1;      ///< place in a list

    /// "layers.r.gamma", "discs[0].id"; empty at the root.
    std::string text() const;
};

class DecodeError : public std::exception {
public:
    enum class Reason {
        notJson,    ///< the text is not JSON at all
        missingKey, ///< a required key is absent or null
        wrongType,  ///< another JSON type than expected
        wrongCount, ///< a triple of another length
        wrongText   ///< a text outside its set
    };

    static DecodeError notJson(std::string_view parserText);
    static DecodeError missingKey(const JsonPath& at, std::string_view key, std::string_view expected);
    static DecodeError wrongType(const JsonPath& at, std::string_view expected, std::string_view found);
    static DecodeError wrongCount(const JsonPath& at, std::size_t expected, std::size_t found);
    static DecodeError wrongText(const JsonPath& at, std::string_view text, std::string_view allowed);

    Reason reason() const noexcept { return reason_; }
    /// Path of the offending key, with the key itself.
    const std::string& path() const noexcept { return path_; }
    /// The last part of the path.
    std::string key() const;
    /// The path without the last part; empty when the key lies at the top.
    std::string parentPath() const;
    /// How many values stood in the place of a triple (wrongCount).
    std::size_t found() const noexcept { return found_; }
    const char* what() const noexcept override { return text_.c_str(); }

private:
    DecodeError(Reason reason, std::string path, std::string text)
        : reason_(reason), path_(std::move(path)), text_(std::move(text))
    {}

    Reason reason_;
    std::string path_;
    std::string text_;
    std::size_t found_ = 0;
};

} // namespace tamlo
