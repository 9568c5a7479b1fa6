#include "core/process/altprint/paper_base.h"

namespace tamlo {

Vec3f AltPrint::resolveBase(const PaperProfile& paper, const RenderOptions& options)
{
    const auto narrowed = [](double r, double g, double b) {
        return Vec3f{static_cast<float>(r), static_cast<float>(g), static_cast<float>(b)};
    };
    const std::string name = options.paperBase && !options.paperBase->empty()
                                 ? *options.paperBase
                                 : paper.base.value_or("white_rag");
    for (const auto& [known, rgb] : paperBases)
        if (known == name) return narrowed(rgb[0], rgb[1], rgb[2]);
    if (paper.baseRgb && paper.baseRgb->size() == 3)
        return narrowed((*paper.baseRgb)[0], (*paper.baseRgb)[1], (*paper.baseRgb)[2]);
    const Vec3d& rag = paperBases[0].second;
    return narrowed(rag[0], rag[1], rag[2]);
}

} // namespace tamlo
