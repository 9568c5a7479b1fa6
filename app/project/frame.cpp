#include "app/project/frame.h"

#include "core/image/random.h"

namespace tamlo {

std::string Frame::fileName() const
{
    const auto slash = url.rfind('/');
    return slash == std::string::npos ? url : url.substr(slash + 1);
}

std::uint32_t Frame::effectiveSeed() const
{
    return seed ? *seed : FrameSeed::crc32(id.text());
}

} // namespace tamlo
