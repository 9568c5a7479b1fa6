// What a run of the export tells at its end, in one line.
#pragma once

#include "app/export/export_run.h"

#include <string>
#include <vector>

namespace tamlo {

struct ExportReport {
    ExportOutcome outcome;
    std::vector<std::string> skipped; ///< names of frames without an original
    std::vector<std::string> changed; ///< written from a file that is another picture than the frame knew
    std::string singleLabel;          ///< of the frame of a run for one; empty for a batch

    std::string text() const;
};

/// "a.jpg, b.jpg, c.jpg and 2 more".
std::string firstNames(const std::vector<std::string>& names);

} // namespace tamlo
