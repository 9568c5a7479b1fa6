// A file opened for reading, closed with its owner.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tamlo::platform {

class InputFile {
public:
    /// Errors: PlatformError when it is missing, unreadable, a directory or no ordinary file.
    explicit InputFile(const std::string& path);

    std::FILE* handle() const noexcept { return file_.get(); }
    /// Fills `bytes` from where the file stands; returns how many there were.
    std::size_t readHead(std::span<char> bytes) const;
    /// The same from a place of the file, and nothing else: no more is read than was asked for. Where the
    /// file stands for the other reads stays.
    std::size_t readAt(std::int64_t place, std::span<char> bytes) const;
    /// The rest of the file. Errors: PlatformError, also for more than any picture needs.
    std::vector<std::uint8_t> readAll() const;

private:
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> file_;
};

} // namespace tamlo::platform
