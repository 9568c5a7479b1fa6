#include "core/process/finishing/finish_sheet.h"

#include "core/process/finishing/sheet_finish.h"
#include "core/process/mat/mat.h"
#include "core/process/mat/table.h"
#include "core/process/mat/table_surface.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>

namespace tamlo {

Pipeline::FinishPlan Pipeline::finishPlan(const RenderOptions& options, double sheetThicknessMm, bool noSheet)
{
    constexpr double kOwnMarginMm = 3.0; // less than this is no room to press into
    FinishPlan plan;
    plan.embossOpts = options;
    const bool mat = Finishing::wantsMat(options);
    const double ppmm = 1000.0 / std::max(options.printPxUm, 1e-6);
    if (mat && Finishing::wantsEmboss(options) && options.borderPx < kOwnMarginMm * ppmm) {
        const Finishing::MatMargins margins = Finishing::matMargins(options);
        plan.matFirst = true;
        plan.embossOpts.borderPx = static_cast<double>(margins.m);
        plan.embossOpts.borderPxBottom = static_cast<double>(margins.mb);
        plan.embossOpts.plateInsetPx = 0.0;
    }
    if (Table::wantsTable(options) && !noSheet)
        plan.table = {Table::kind(options.table), mat ? options.matBevelMm : sheetThicknessMm, !mat};
    return plan;
}

RGBImage Pipeline::finishSheet(RGBImage image, const RenderOptions& options, double sheetThicknessMm,
                               const std::optional<Plane>& cardMask, bool noSheet)
{
    const FinishPlan plan = finishPlan(options, sheetThicknessMm, noSheet);
    if (plan.matFirst) {
        image = Finishing::applyMat(std::move(image), options);
        Finishing::applySheetFinish(image, plan.embossOpts);
    } else {
        Finishing::applySheetFinish(image, plan.embossOpts);
        image = Finishing::applyMat(std::move(image), options);
    }
    if (!plan.table) return image;
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::table);
    return Table::apply(image, plan.table->kind,
                        {options.tableWidthCm, options.printPxUm, plan.table->thicknessMm},
                        plan.table->useMask ? cardMask : std::nullopt, rng);
}

} // namespace tamlo
