#include "app/shell/crop_aspect.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace tamlo {

std::span<const CropAspectKind::Named> CropAspectKind::named()
{
    static constexpr Named kNamed[] = {{1, 1}, {5, 4}, {3, 2}, {4, 3}, {16, 9}};
    return kNamed;
}

const std::vector<CropAspectKind>& CropAspectKind::ladder()
{
    static const std::vector<CropAspectKind> kinds = [] {
        std::vector<CropAspectKind> out{free(), format()};
        for (const Named& one : named()) out.push_back(of(one.ratio()));
        return out;
    }();
    return kinds;
}

std::string CropAspectKind::title(bool portrait) const
{
    constexpr double kSame = 1e-6, kSquare = 0.005;
    if (kind != Kind::ratio || !(ratio > 0)) return {};
    for (Named one : named()) {
        if (std::abs(one.ratio() - ratio) >= kSame) continue;
        if (portrait) std::swap(one.width, one.height);
        return std::to_string(one.width) + ":" + std::to_string(one.height);
    }
    const double shown = portrait ? 1 / ratio : ratio;
    if (std::abs(shown - 1) < kSquare) return "1:1";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f:1", shown);
    return text;
}

bool hasAspect(double widthOverHeight, double aspect)
{
    constexpr double kTolerance = 0.006;
    if (widthOverHeight >= 1 || aspect < 1)
        return std::abs(widthOverHeight - aspect) < kTolerance * (aspect >= 1 ? aspect : 1);
    return std::abs(widthOverHeight - 1 / aspect) < kTolerance;
}

} // namespace tamlo
