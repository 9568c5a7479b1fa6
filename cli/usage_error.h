// The command line can't be carried out as given: a wrong option, an unknown name, a conflict of outputs.
// Found before any picture is opened; the program ends with status 2.
#pragma once

#include <stdexcept>

namespace tamlo::cli {

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace tamlo::cli
