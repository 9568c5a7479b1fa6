// The switches by which one can look at the tiers from outside: a line on standard error for each thing that
// happens to one (TAMLO_TIER_DEBUG), and each picture that is shown as a file (TAMLO_DUMP_FRAME). Nothing
// depends on them.
#pragma once

#include "core/io/ready_image.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tamlo {

class TierLog {
public:
    /// Reads the environment.
    TierLog();

    struct State {
        std::string tier; ///< its letter
        std::int64_t longSide = 0, shown = 0, full = 0;
    };
    /// "[tier] {event} {tier} {long} px · shown {shown} · full {full}"
    void event(const std::string& what, const State& state) const;
    void dump(const ReadyImage& image, const std::string& tier);

private:
    bool tells_ = false;
    std::optional<std::filesystem::path> folder_;
    int counter_ = 0;
};

} // namespace tamlo
