#include "app/project/file_url.h"

namespace tamlo {

namespace {

constexpr std::string_view kScheme = "file://";
// RFC 3986: what a path may hold as it stands.
constexpr std::string_view kPlain = "-._~!$&'()*+,;=:@/";

bool isPlain(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           kPlain.find(static_cast<char>(c)) != std::string_view::npos;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

} // namespace

std::string fileURL(std::string_view path)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out(kScheme);
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain(byte)) {
            out += c;
        } else {
            out += '%';
            out += kDigits[byte >> 4];
            out += kDigits[byte & 15];
        }
    }
    return out;
}

std::optional<std::string> pathOfFileURL(std::string_view url)
{
    constexpr std::string_view kThisMachine = "localhost";
    if (!url.starts_with(kScheme)) return std::nullopt;
    url.remove_prefix(kScheme.size());
    if (url.starts_with(kThisMachine)) url.remove_prefix(kThisMachine.size());
    if (!url.starts_with('/')) return std::nullopt;
    std::string path;
    for (std::size_t i = 0; i < url.size(); ++i) {
        char c = url[i];
        if (c == '%') {
            const int high = i + 2 < url.size() ? hexDigit(url[i + 1]) : -1;
            const int low = i + 2 < url.size() ? hexDigit(url[i + 2]) : -1;
            if (high < 0 || low < 0) return std::nullopt;
            c = static_cast<char>(high << 4 | low);
            i += 2;
        }
        if (c == '\0') return std::nullopt; // no path holds one
        path += c;
    }
    return path;
}

} // namespace tamlo
