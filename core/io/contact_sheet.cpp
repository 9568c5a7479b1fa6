#include "core/io/contact_sheet.h"

#include "core/image/tamlo_error.h"
#include "platform/atomic_file.h"
#include "platform/platform_error.h"
#include "platform/unicode.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace tamlo::ContactSheet {
namespace {

std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : platform::asUtf8(text)) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string head(const std::string& title, int imageWidth)
{
    const std::string widest = std::to_string(imageWidth) + "px";
    return "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>" + escaped(title) +
           "</title>\n<style>\n"
           "body { background: #141414; color: #ddd; font-family: sans-serif; margin: 24px; }\n"
           ".grid { display: flex; flex-wrap: wrap; gap: 12px; }\n"
           "figure { margin: 0; max-width: " +
           widest + "; overflow-wrap: anywhere; }\nimg { display: block; height: auto; max-width: " + widest +
           "; }\n"
           "figcaption { font-size: 12px; padding: 4px 0; }\n"
           "</style>\n</head>\n<body>\n<h1>" +
           escaped(title) + "</h1>\n";
}

} // namespace

std::string dataUrl(const std::vector<std::uint8_t>& jpeg)
{
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out = "data:image/jpeg;base64,";
    out.reserve(out.size() + (jpeg.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < jpeg.size(); i += 3) {
        const std::size_t here = std::min<std::size_t>(jpeg.size() - i, 3);
        std::uint32_t word = 0;
        for (std::size_t k = 0; k < 3; ++k) word = word << 8 | (k < here ? jpeg[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) out += k <= here ? kDigits[word >> (18 - 6 * k) & 63] : '=';
    }
    return out;
}

std::filesystem::path write(const std::filesystem::path& url, const std::vector<Row>& rows,
                            const std::string& title, int imageWidth)
{
    std::string page = head(title, imageWidth);
    for (const Row& row : rows) {
        page += "<div class=\"row\">\n<h2>" + escaped(row.name) + "</h2>\n<div class=\"grid\">\n";
        for (const Figure& figure : row.figures)
            page += "<figure>" +
                    (figure.src.empty() ? "" : "<img src=\"" + escaped(figure.src) + "\" loading=\"lazy\">") +
                    "<figcaption>" + escaped(figure.caption) + "</figcaption></figure>\n";
        page += "</div>\n</div>\n";
    }
    page += "</body>\n</html>\n";
    std::error_code problem;
    if (url.has_parent_path()) std::filesystem::create_directories(url.parent_path(), problem);
    try {
        platform::writeWhole(url.string(), page);
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(error.what());
    }
    return url;
}

} // namespace tamlo::ContactSheet
