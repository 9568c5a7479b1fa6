// CropAspectKind: the ratios that a crop is held to.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tamlo {

struct CropAspectKind {
    enum class Kind { free, format, ratio };

    Kind kind = Kind::free;
    double ratio = 0; ///< long over short side, of a `ratio`

    static CropAspectKind free() { return {}; }
    static CropAspectKind format() { return {Kind::format, 0}; }
    static CropAspectKind of(double ratio) { return {Kind::ratio, ratio}; }

    struct Named {
        int width, height;
        double ratio() const { return static_cast<double>(width) / height; }
    };
    /// Ratios that have a name.
    static std::span<const Named> named();
    /// What is offered, in this order.
    static const std::vector<CropAspectKind>& ladder();

    /// "3:2", "2:3" when it stands, "2.39:1"; empty for the kinds that have none.
    std::string title(bool portrait) const;

    bool operator==(const CropAspectKind&) const = default;
};

/// Whether a width over a height is a ratio of long over short, lying or standing.
bool hasAspect(double widthOverHeight, double aspect);

} // namespace tamlo
