// The process that is really rendered: a frame's own, with all that belongs to the frame and the project
// folded into its options. What the screen shows and what an export writes both come from here.
#pragma once

#include "app/preview/proxy_file.h"
#include "app/project/roll.h"
#include "core/pipeline/backend.h"

#include <optional>
#include <string>

namespace tamlo {

class ProfileStore;

/// base: the process to render, the frame's own as a rule. stats: of the frame's source, absent for a picture
/// that is no RAW file. cropGate: the project's rule. roll: of which the frame is one, absent where no number
/// is printed on its edge.
ProcessSettings renderProcess(const ProcessSettings& base, const Frame& frame,
                              const std::optional<SourceExposure::Stats>& stats,
                              const std::optional<std::string>& cropGate, const Roll* roll = nullptr);

/// The number on a film's edge: the options' own, else the frame's place in its roll, from 1 on.
void foldFrameNumber(RenderOptions& options, const Frame& frame, const Roll* roll);

/// What an untouched RAW frame is multiplied by; 1 for every other picture.
double originalGain(const std::optional<SourceExposure::Stats>& stats);

/// The profiles that a process names. Errors: ProfileError, TamloError.
RenderChoices choicesOf(const ProcessSettings& process, const ProfileStore& store);

} // namespace tamlo
