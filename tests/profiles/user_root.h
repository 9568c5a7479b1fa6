// What tests of the catalogue share: a scratch folder, the user's root below it, and Russian texts.
#pragma once

#include "core/profiles/catalogue/profile_validator.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

namespace tamlo {

/// A scratch folder with the environment pointed at it.
class UserRootTest : public testing::Test {
protected:
    using Path = std::filesystem::path;

    UserRootTest()
        : root_(std::filesystem::temp_directory_path() / ("tamlo_profiles_" + std::to_string(getpid())))
    {
        std::filesystem::remove_all(root_);
        std::filesystem::create_directories(root_);
        setenv("TAMLO_USER_DIR", (root_ / "user").c_str(), 1);
        unsetenv("TAMLO_PROFILES");
        Loc::setOverride(Loc::Lang::ru);
    }
    ~UserRootTest() override
    {
        Loc::setOverride(std::nullopt);
        unsetenv("TAMLO_USER_DIR");
        unsetenv("TAMLO_PROFILES");
        std::filesystem::remove_all(root_);
    }

    void write(const Path& relative, const std::string& text) const
    {
        std::filesystem::create_directories((root_ / relative).parent_path());
        std::ofstream(root_ / relative, std::ios::binary) << text;
    }

    static std::string read(const Path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// All that stands in the scratch folder: a file's path with its text, a folder's with "/".
    std::map<std::string, std::string> tree() const
    {
        std::map<std::string, std::string> out;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root_))
            out[entry.path().lexically_relative(root_).string()] =
                entry.is_directory() ? "/" : read(entry.path());
        return out;
    }

    /// The messages of the Failure that an action ends in; none when it succeeds.
    template <typename Action>
    static std::vector<std::string> messagesOf(Action&& action)
    {
        try {
            action();
        } catch (const ProfileValidator::Failure& failure) {
            return failure.messages();
        }
        return {};
    }

    Path root_;
};

} // namespace tamlo
