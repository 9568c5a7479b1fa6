// What older project files say under keys that are no longer written: one process for the whole roll, prints
// beside the frames, one white balance for all.
#pragma once

#include "app/project/project.h"
#include "core/profiles/formats/json_codec.h"

namespace tamlo {

/// Gives the frames what "prints", "process" and "wbMode" say. Errors: DecodeError naming the key.
void readOlderKeys(Project& project, const Json& json, const JsonPath& at);

} // namespace tamlo
