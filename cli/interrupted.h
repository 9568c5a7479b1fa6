// The user has stopped the run; the program ends with status 130.
#pragma once

#include <exception>

namespace tamlo::cli {

struct Interrupted : std::exception {
    static constexpr int kStatus = 130;
    const char* what() const noexcept override { return "interrupted"; }
};

} // namespace tamlo::cli
