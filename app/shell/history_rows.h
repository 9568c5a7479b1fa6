// The history as a list on screen shows it: what was done, when, and to which frames.
#pragma once

#include "app/project/frame.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

struct HistoryRow {
    std::string name;
    double date = 0;                 ///< seconds since 1970
    std::vector<std::string> frames; ///< labels of those that it changed, put in or took out; in roll order
    bool isUndone = false;
    /// What AppModel::undoTo takes to come to stand just after this step.
    std::size_t stepsLeft = 0;
};

/// The oldest first; what has been undone, and would be redone, follows what stands.
std::vector<HistoryRow> historyRows(const AppModel& model);

} // namespace tamlo
