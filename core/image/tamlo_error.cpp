#include "core/image/tamlo_error.h"

#include <utility>

namespace tamlo {

const char* rawText(GPUAbort::Kind kind)
{
    switch (kind) {
    case GPUAbort::Kind::timeout:
        return "timeout";
    case GPUAbort::Kind::interactivity:
        return "interactivity";
    case GPUAbort::Kind::memory:
        return "memory";
    case GPUAbort::Kind::removed:
        return "removed";
    case GPUAbort::Kind::fault:
        break;
    }
    return "fault";
}

std::string GPUAbort::description() const
{
    return std::string("GPU aborted (") + rawText(kind) + ", code " + std::to_string(code) + "): " + text;
}

TamloError TamloError::io(const std::string& text)
{
    return {Kind::io, "I/O error: ", text};
}

TamloError TamloError::invalidArgument(const std::string& text)
{
    return {Kind::invalidArgument, "Invalid argument: ", text};
}

TamloError TamloError::unsupported(const std::string& text)
{
    return {Kind::unsupported, "Unsupported: ", text};
}

TamloError TamloError::gpuAborted(GPUAbort abort)
{
    TamloError error(Kind::gpuAborted, "", abort.description());
    error.abort_ = std::move(abort);
    return error;
}

TamloError TamloError::cancelled()
{
    return {Kind::cancelled, "", "Рендер отменён: запрос устарел"};
}

} // namespace tamlo
