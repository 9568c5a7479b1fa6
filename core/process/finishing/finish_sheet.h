// The last work on a print that has its margins: marks pressed into the sheet, a mat over it, a table under
// it. Decides what goes on first. Measures are millimetres of the print through printPxUm. Domain:
// display-linear; a mat or a table makes the image larger.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/options/render_options.h"

#include <optional>
#include <string>

namespace tamlo::Pipeline {

struct FinishPlan {
    struct Table {
        std::string kind;
        double thicknessMm = 0.0; ///< of what lies on the table
        bool useMask = false;
    };
    bool matFirst = false; ///< the marks are pressed into the board
    RenderOptions embossOpts;
    std::optional<Table> table;
};

/// noSheet: there is nothing to lay on a table.
FinishPlan finishPlan(const RenderOptions& options, double sheetThicknessMm, bool noSheet);

/// The whole finishing. cardMask: coverage of a card with cut corners, absent for a sheet.
/// Errors: invalidArgument for a table that does not exist.
RGBImage finishSheet(RGBImage image, const RenderOptions& options, double sheetThicknessMm,
                     const std::optional<Plane>& cardMask, bool noSheet);

} // namespace tamlo::Pipeline
