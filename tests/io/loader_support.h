// Helpers of the loader's tests: sample paths, scratch files, and plain statistics over decoded pixels.
#pragma once

#include "core/image/tamlo_error.h"
#include "core/io/encoded_decode.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace tamlo::test {

inline std::filesystem::path sample(const std::string& name)
{
    return std::filesystem::path(TAMLO_SAMPLES) / name;
}

/// A folder of this test alone, removed with its owner.
class ScratchFolder {
public:
    ScratchFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("tamlo-loader-" + std::to_string(getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
        std::string flat = path_.filename().string();
        for (char& c : flat)
            if (c == '/') c = '_';
        path_.replace_filename(flat);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

inline std::vector<char> readBytes(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const std::filesystem::path& path, const std::vector<char>& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// Text of the TamloError that `call` throws; empty when it throws none.
inline std::string errorOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const TamloError& error) {
        EXPECT_EQ(error.kind(), TamloError::Kind::io);
        return error.what();
    }
    return {};
}

/// Mean absolute difference of two bitmaps over R, G and B, in 8-bit steps.
inline double meanDifference(const ImageLoader::EncodedDecode& a, const ImageLoader::EncodedDecode& b)
{
    if (a.width != b.width || a.height != b.height) return 255.0;
    const auto count = static_cast<std::size_t>(a.width * a.height * 4);
    const auto from = a.rgba.bytes(count), to = b.rgba.bytes(count);
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        if (i % 4 != 3) sum += std::abs(int{from[i]} - int{to[i]});
    return sum / static_cast<double>(count) * 4.0 / 3.0;
}

} // namespace tamlo::test
