#include "core/profiles/formats/decode_error.h"

#include "core/text/loc.h"

namespace tamlo {

std::string JsonPath::text() const
{
    const std::string before = parent ? parent->text() : std::string();
    if (index >= 0) return before + "[" + std::to_string(index) + "]";
    if (key.empty()) return before;
    return before.empty() ? std::string(key) : before + "." + std::string(key);
}

DecodeError DecodeError::notJson(std::string_view parserText)
{
    return {Reason::notJson, {}, T("json.notJson", {{"reason", parserText}})};
}

DecodeError DecodeError::missingKey(const JsonPath& at, std::string_view key, std::string_view expected)
{
    const std::string path = JsonPath{&at, key}.text();
    return {Reason::missingKey, path, T("json.missingKey", {{"key", path}, {"expected", expected}})};
}

DecodeError DecodeError::wrongType(const JsonPath& at, std::string_view expected, std::string_view found)
{
    const std::string path = at.text();
    return {Reason::wrongType, path,
            path.empty() ? T("json.wrongDocument", {{"expected", expected}, {"found", found}})
                         : T("json.wrongType", {{"key", path}, {"expected", expected}, {"found", found}})};
}

DecodeError DecodeError::wrongCount(const JsonPath& at, std::size_t expected, std::size_t found)
{
    const std::string path = at.text();
    DecodeError error(Reason::wrongCount, path,
                      T("json.wrongCount", {{"key", path}, {"expected", expected}, {"found", found}}));
    error.found_ = found;
    return error;
}

DecodeError DecodeError::wrongText(const JsonPath& at, std::string_view text, std::string_view allowed)
{
    const std::string path = at.text();
    return {Reason::wrongText, path,
            T("json.wrongText", {{"key", path}, {"allowed", allowed}, {"found", text}})};
}

std::string DecodeError::key() const
{
    const auto dot = path_.rfind('.');
    return dot == std::string::npos ? path_ : path_.substr(dot + 1);
}

std::string DecodeError::parentPath() const
{
    const auto dot = path_.rfind('.');
    return dot == std::string::npos ? std::string() : path_.substr(0, dot);
}

} // namespace tamlo
