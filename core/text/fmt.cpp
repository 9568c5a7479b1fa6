#include "core/text/fmt.h"

#include <cstdio>

namespace tamlo {

std::string Fmt::number(double value, int digits)
{
    std::string text(static_cast<std::size_t>(std::snprintf(nullptr, 0, "%.*f", digits, value)), '\0');
    std::snprintf(text.data(), text.size() + 1, "%.*f", digits, value);
    if (text.find('.') == std::string::npos) return text;
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string Fmt::significant(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

} // namespace tamlo
