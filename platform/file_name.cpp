#include "platform/file_name.h"

namespace tamlo::platform {

std::string cutToFileName(std::string_view name, std::size_t most)
{
    if (name.size() <= most) return std::string(name);
    constexpr auto kLongestCharacter = 4;
    const auto isContinuation = [&](std::size_t i) {
        return (static_cast<unsigned char>(name[i]) & 0xC0) == 0x80;
    };
    std::size_t end = most;
    // Names need not be UTF-8: what has no beginning of a character nearby is cut at the byte.
    for (int i = 0; i < kLongestCharacter && end > 0 && isContinuation(end); ++i) --end;
    return std::string(name.substr(0, isContinuation(end) ? most : end));
}

} // namespace tamlo::platform
