#include "core/process/mat/canvas.h"

#include "core/image/tamlo_error.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

void Finishing::checkCanvas(Size canvas)
{
    if (canvas.width <= kLargestCanvasPx / std::max<std::int64_t>(canvas.height, 1)) return;
    throw TamloError::unsupported(T("finish.tooLarge", {{"width", canvas.width}, {"height", canvas.height}}));
}

} // namespace tamlo
