// The core's error type. Every failure of the core is thrown as one of its kinds, with a text for the user.
#pragma once

#include <exception>
#include <string>

namespace tamlo {

/// Why an executor of compute passes gave up a render.
struct GPUAbort {
    enum class Kind { timeout, interactivity, memory, removed, fault };
    Kind kind = Kind::fault;
    int code = 0;
    std::string text;

    /// "GPU aborted (KIND, code N): TEXT".
    std::string description() const;
};

/// Raw text of an abort's kind: "timeout", "interactivity", "memory", "removed", "fault".
const char* rawText(GPUAbort::Kind kind);

class TamloError : public std::exception {
public:
    enum class Kind { io, invalidArgument, unsupported, gpuAborted, cancelled };

    static TamloError io(const std::string& text);
    static TamloError invalidArgument(const std::string& text);
    static TamloError unsupported(const std::string& text);
    static TamloError gpuAborted(GPUAbort abort);
    /// Not a failure: the answer to a render whose request went stale.
    static TamloError cancelled();

    Kind kind() const noexcept { return kind_; }
    /// The abort behind gpuAborted; of no meaning for the other kinds.
    const GPUAbort& abort() const noexcept { return abort_; }
    /// The sentence without the name of the kind.
    const std::string& text() const noexcept { return text_; }
    /// The description for the user, in UTF-8.
    const char* what() const noexcept override { return description_.c_str(); }

private:
    TamloError(Kind kind, const char* name, const std::string& text)
        : kind_(kind), text_(text), description_(name + text)
    {}

    Kind kind_;
    std::string text_;
    std::string description_;
    GPUAbort abort_;
};

} // namespace tamlo
