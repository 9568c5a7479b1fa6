// tamlo project: rolls from the command line. Each writing verb locks the roll, opens it, runs one workflow
// of the session, saves with a backup and closes. No question is asked: an option answers it, or the verb
// fails and names the option.
#pragma once

#include "cli/project_arguments.h"
#include "cli/project_session.h"

#include <iosfwd>

namespace tamlo::cli {

/// Returns the exit status: 0, or 1 where a file or a frame stood in the way. Errors: UsageError for what
/// can't be carried out; Interrupted; std::exception with a sentence for what failed.
int runProject(const ProjectCommand& command, std::ostream& results);

/// The same on a roll that is open already; nothing for a verb that is not about one roll's frames.
std::optional<int> runOn(RollSession& session, const ProjectCommand& command, std::ostream& results);

// The verbs that work on an open roll, then those that open what they need themselves. By file:
// project_intake.cpp, project_show.cpp, project_edit.cpp, project_copy.cpp, project_arrange.cpp,
// project_files.cpp, project_preview.cpp, project_export.cpp, project_sheet.cpp.
int run(RollSession& session, const ProjectAddArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectShowArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectCheckArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectSetArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectPresetArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectAutoPrintArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectMarkArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectTurnArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectCopyArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectPasteArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectApplyArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectResetArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectRemoveArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectOrderArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectCropArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectRerollArguments& arguments, std::ostream& results);
int run(RollSession& session, const ProjectLocateArguments& arguments, std::ostream& results);
int run(const ProjectBackupsArguments& arguments, std::ostream& results);
int run(const ProjectRestoreArguments& arguments, std::ostream& results);
int run(const ProjectRecentArguments& arguments, std::ostream& results);
int run(const ProjectPreviewArguments& arguments, std::ostream& results);
int run(const ProjectExportArguments& arguments, std::ostream& results);
int run(const ProjectSheetArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
