// A file as the metadata library reads it: no byte beyond those that it asks for.
#pragma once

#include "platform/input_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>

#include <exiv2/exiv2.hpp>

namespace tamlo::platform {

/// A file for the metadata library that reads what it is asked for and no more, and from memory what was
/// read before: through buffers of its own it would read a large PNG for the sake of its chunks' names.
/// Parsers of TIFF and its kin look at the file's pages in place instead.
class SampledFile final : public Exiv2::FileIo {
public:
    SampledFile(const std::filesystem::path& path, std::span<const char> head)
        : Exiv2::FileIo(path.string()), input_(path.string()), head_(head)
    {}

    int open() override
    {
        place_ = 0;
        atEnd_ = false;
        return Exiv2::FileIo::open();
    }
    using Exiv2::FileIo::read;
    long read(Exiv2::byte* bytes, long count) override
    {
        const std::span into(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(std::max(count, 0L)));
        std::size_t got = 0;
        if (place_ < std::ssize(head_)) {
            const auto known = head_.subspan(static_cast<std::size_t>(place_));
            got = std::min(known.size(), into.size());
            std::copy_n(known.begin(), got, into.begin());
        }
        if (got < into.size())
            got += input_.readAt(place_ + static_cast<std::int64_t>(got), into.subspan(got));
        atEnd_ = got < into.size();
        place_ += static_cast<std::int64_t>(got);
        return static_cast<long>(got);
    }
    int getb() override
    {
        Exiv2::byte one = 0;
        return read(&one, 1) == 1 ? one : EOF;
    }
    int seek(long offset, Position from) override
    {
        const std::int64_t base = from == beg ? 0 : from == cur ? place_ : static_cast<std::int64_t>(size());
        if (base + offset < 0) return 1;
        place_ = base + offset;
        atEnd_ = false;
        return 0;
    }
    long tell() const override { return static_cast<long>(place_); }
    bool eof() const override { return atEnd_; }
    int error() const override { return 0; } // a read that fails throws

private:
    InputFile input_;
    std::span<const char> head_;
    std::int64_t place_ = 0;
    bool atEnd_ = false;
};

} // namespace tamlo::platform
