// What an undo brings back and what it leaves: the picture and the roll go back, what was found out about
// files, and what is no step, stays as it is now.
#pragma once

#include "app/project/project.h"

namespace tamlo {

/// The snapshot with the present's filter, sizes, name and files; a frame whose picture is the same keeps the
/// record of its export. linksFiles: the step linked files, and takes them back with it.
Project withPresentFiles(const Project& snapshot, const Project& present, bool linksFiles);

} // namespace tamlo
