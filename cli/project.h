// tamlo project: rolls from the command line. Each writing verb locks the roll, opens it, runs one workflow
// of the session, saves with a backup and closes. No question is asked: an option answers it, or the verb
// fails and names the option.
#pragma once

#include "cli/project_arguments.h"

#include <iosfwd>

namespace tamlo::cli {

/// Returns the exit status: 0, or 1 where a file or a frame stood in the way. Errors: UsageError for what
/// can't be carried out; Interrupted; std::exception with a sentence for what failed.
int runProject(const ProjectCommand& command, std::ostream& results);

// The verbs, by file: project_intake.cpp, project_show.cpp, project_edit.cpp, project_copy.cpp,
// project_files.cpp, project_preview.cpp, project_export.cpp.
int run(const ProjectAddArguments& arguments, std::ostream& results);
int run(const ProjectShowArguments& arguments, std::ostream& results);
int run(const ProjectCheckArguments& arguments, std::ostream& results);
int run(const ProjectSetArguments& arguments, std::ostream& results);
int run(const ProjectPresetArguments& arguments, std::ostream& results);
int run(const ProjectMarkArguments& arguments, std::ostream& results);
int run(const ProjectTurnArguments& arguments, std::ostream& results);
int run(const ProjectCopyArguments& arguments, std::ostream& results);
int run(const ProjectPasteArguments& arguments, std::ostream& results);
int run(const ProjectApplyArguments& arguments, std::ostream& results);
int run(const ProjectResetArguments& arguments, std::ostream& results);
int run(const ProjectRemoveArguments& arguments, std::ostream& results);
int run(const ProjectLocateArguments& arguments, std::ostream& results);
int run(const ProjectBackupsArguments& arguments, std::ostream& results);
int run(const ProjectRestoreArguments& arguments, std::ostream& results);
int run(const ProjectRecentArguments& arguments, std::ostream& results);
int run(const ProjectPreviewArguments& arguments, std::ostream& results);
int run(const ProjectExportArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
