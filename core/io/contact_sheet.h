// ContactSheet: captioned pictures as one HTML page that needs nothing beside it but what its pictures name.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tamlo::ContactSheet {

struct Figure {
    std::string caption;
    std::string src; ///< a path or URL, or the picture itself as a "data:" URL; empty for none
};
struct Row {
    std::string name;
    std::vector<Figure> figures;
};

/// A picture's bytes as a "data:" URL.
std::string dataUrl(const std::vector<std::uint8_t>& jpeg);

/// Writes the page whole or not at all, in UTF-8, making its folder where it is missing; returns the written
/// path. imageWidth: widest that a picture is shown, CSS pixels. Errors: TamloError io.
std::filesystem::path write(const std::filesystem::path& url, const std::vector<Row>& rows,
                            const std::string& title, int imageWidth);

} // namespace tamlo::ContactSheet
