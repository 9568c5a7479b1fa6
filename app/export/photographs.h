// Photographs: the sources of a roll, which no file is ever written over, under whatever name or link.
#pragma once

#include "app/project/roll.h"
#include "platform/file_info.h"

#include <filesystem>
#include <set>
#include <string>

namespace tamlo {

class Photographs {
public:
    /// Looks at each source. One that is away is known by its path.
    explicit Photographs(const Roll& roll);

    /// The path is a source's, or leads to one.
    bool contains(const std::filesystem::path& path) const;

private:
    std::set<platform::FileID> files_;
    std::set<std::string> paths_;
};

} // namespace tamlo
