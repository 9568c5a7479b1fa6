#include "app/export/photographs.h"

#include "app/project/file_resolver.h"

namespace tamlo {
namespace {

/// The place that links lead to, also of a file that is not there.
std::string placeOf(const std::filesystem::path& path)
{
    std::error_code problem;
    const auto place = std::filesystem::weakly_canonical(path, problem);
    return problem ? FileResolver::standardised(path) : place.string();
}

} // namespace

Photographs::Photographs(const Roll& roll)
{
    for (const Frame& frame : roll) {
        paths_.insert(FileResolver::standardised(frame.url));
        paths_.insert(placeOf(frame.url));
        if (const auto info = platform::fileInfo(frame.url)) files_.insert(info->id);
    }
}

bool Photographs::contains(const std::filesystem::path& path) const
{
    if (const auto info = platform::fileInfo(path); info && files_.contains(info->id)) return true;
    return paths_.contains(FileResolver::standardised(path)) || paths_.contains(placeOf(path));
}

} // namespace tamlo
