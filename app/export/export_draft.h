// ExportDraft: what an export is asked to write, as a dialogue holds it and the preferences keep it.
#pragma once

#include "app/export/export_naming.h"
#include "app/project/project.h"
#include "platform/preferences.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

struct ExportDraft {
    enum class Type { jpg, tif, png };
    /// The sets by their index, in whatever order a dialogue shows them; the first three are ExportSet's.
    static constexpr int kPickedIndex = 3;

    std::optional<FrameID> single; ///< absent: a batch
    std::vector<FrameID> picked;   ///< the selection when it was opened
    int setIndex = 0;
    ExportNaming::Mode naming = ExportNaming::defaultMode;
    std::string customText, nameText;
    std::optional<std::string> folderPath;
    Type type = Type::jpg;
    double scale = 1; ///< 1, 0.5 or 0.25
    bool social = false;
    std::int64_t socialPx = 1080; ///< 1080 by width, 2048 by the long side
    bool reveal = false;

    /// As the last export left it. What is no such value counts as the default.
    static ExportDraft load(const platform::Preferences& preferences);
    /// Errors: PlatformError.
    void store(platform::Preferences& preferences) const;

    /// The preferences' draft for one frame, or for a batch. picked: selected in the grid.
    static ExportDraft of(const Project& project, const platform::Preferences& preferences,
                          const std::optional<FrameID>& single, std::vector<FrameID> picked);
    /// The frames that it writes, in the order of the roll.
    std::vector<FrameID> frames(const Project& project) const;
    /// The extension, without its dot.
    std::string ext() const { return std::string(rawText(type)); }

    static std::string_view rawText(Type type);
    static std::optional<Type> typeOf(std::string_view text);
};

} // namespace tamlo
