#include "cli/export_record.h"

#include "app/project/project_file.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <stdexcept>

namespace tamlo::cli {
namespace {

/// As often as an open project is saved by itself: each save keeps a copy of the one before.
constexpr std::chrono::seconds kRecordEvery{60};

void note(Project& project, const ExportedFrame& one, double now)
{
    const auto place = project.frames.find(one.frame->id);
    if (!place) return;
    const Frame& frame = project.frames[*place];
    if (!(frame.process == one.frame->process) || frame.crop != one.frame->crop ||
        frame.orient != one.frame->orient)
        return; // it has been changed meanwhile
    Frame& noted = project.frames.edit(*place);
    noted.exportedAt = Date::since1970(now);
    noted.exportedName = one.file.filename().string();
}

} // namespace

void ExportRecord::add(const ExportedFrame& frame)
{
    waiting_.push_back(frame);
    if (Clock::now() - last_ >= kRecordEvery) flush();
}

void ExportRecord::flush()
{
    last_ = Clock::now();
    if (!records_ || waiting_.empty()) return;
    try {
        const double now =
            std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
        ProjectFile file(roll_);
        Project project = Project::decode(file.read(), ProfileStore::shared());
        for (const ExportedFrame& one : waiting_) note(project, one, now);
        if (file.write(project.encoded(), now) == ProjectFile::Written::changedOnDisk)
            throw std::runtime_error(T("project.changedOnDisk"));
        waiting_.clear();
        problem_.clear();
    } catch (const std::exception& error) {
        problem_ = ErrorWords::of(error); // tried again with the next frames
    }
}

} // namespace tamlo::cli
