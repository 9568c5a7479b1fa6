#include "app/export/export_draft.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <unordered_set>

namespace tamlo {
namespace {

constexpr const char *kNaming = "lastExportNaming", *kCustom = "lastExportCustomStem",
                     *kScale = "lastExportScale", *kHalf = "lastExportHalf", *kSocial = "lastExportSocial",
                     *kSocialPx = "lastExportSocialPx", *kReveal = "lastExportReveal",
                     *kType = "lastExportType";
constexpr std::array<std::string_view, 3> kTypes{"jpg", "tif", "png"};
constexpr std::int64_t kSocialWidth = 1080, kSocialLong = 2048;

double scaleIn(const platform::Preferences& preferences)
{
    const double scale = preferences.number(kScale).value_or(preferences.flag(kHalf) == true ? 0.5 : 1.0);
    return scale == 0.5 || scale == 0.25 ? scale : 1.0;
}

} // namespace

std::string_view ExportDraft::rawText(Type type)
{
    return kTypes[static_cast<std::size_t>(type)];
}

std::optional<ExportDraft::Type> ExportDraft::typeOf(std::string_view text)
{
    const auto found = std::ranges::find(kTypes, text);
    if (found == kTypes.end()) return std::nullopt;
    return static_cast<Type>(found - kTypes.begin());
}

ExportDraft ExportDraft::load(const platform::Preferences& preferences)
{
    ExportDraft draft;
    draft.naming = ExportNaming::fromText(preferences.text(kNaming).value_or("")).value_or(draft.naming);
    draft.customText = preferences.text(kCustom).value_or("");
    draft.type = typeOf(preferences.text(kType).value_or("")).value_or(draft.type);
    draft.scale = scaleIn(preferences);
    draft.social = preferences.flag(kSocial).value_or(false);
    draft.socialPx = preferences.number(kSocialPx) == kSocialLong ? kSocialLong : kSocialWidth;
    draft.reveal = preferences.flag(kReveal).value_or(false);
    return draft;
}

void ExportDraft::store(platform::Preferences& preferences) const
{
    preferences.setText(kNaming, std::string(ExportNaming::rawText(naming)));
    preferences.setText(kCustom, customText);
    preferences.setText(kType, ext());
    preferences.setNumber(kScale, scale);
    preferences.setFlag(kSocial, social);
    preferences.setNumber(kSocialPx, static_cast<double>(socialPx));
    preferences.setFlag(kReveal, reveal);
}

ExportDraft ExportDraft::of(const Project& project, const platform::Preferences& preferences,
                            const std::optional<FrameID>& single, std::vector<FrameID> picked)
{
    ExportDraft draft = load(preferences);
    draft.single = single;
    draft.picked = std::move(picked);
    if (single) {
        if (const FrameRef frame = project.frame(*single))
            draft.nameText = std::filesystem::path(frame->fileName()).stem().string();
        return draft;
    }
    draft.setIndex = static_cast<int>(project.lastExportSet);
    if (draft.naming == ExportNaming::Mode::name) draft.naming = ExportNaming::defaultMode;
    return draft;
}

std::vector<FrameID> ExportDraft::frames(const Project& project) const
{
    if (single) return {*single};
    std::vector<FrameID> out;
    const std::unordered_set<FrameID> chosen(picked.begin(), picked.end());
    for (const Frame& frame : project.frames)
        if (setIndex == kPickedIndex ? chosen.contains(frame.id)
                                     : includes(static_cast<ExportSet>(setIndex), frame.mark))
            out.push_back(frame.id);
    return out;
}

} // namespace tamlo
