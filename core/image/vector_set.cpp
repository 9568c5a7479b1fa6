#include "core/image/vector_set.h"

#include <hwy/targets.h>

namespace tamlo {

std::string vectorSet()
{
    const std::int64_t supported = hwy::SupportedTargets();
    return hwy::TargetName(supported & -supported); // the lowest bit is the best of them
}

} // namespace tamlo
