// A file is there whole or not at all, and nothing temporary stays beside it.
#include "platform/atomic_file.h"
#include "platform/file_name.h"
#include "platform/platform_error.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tamlo::platform {
namespace {

using test::ScratchFolder;
using Names = std::vector<std::string>;

/// The number of a process that is no more.
pid_t deadProcess()
{
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

std::string temporaryOf(pid_t process, const std::string& rest = "0-roll.tamlo")
{
    return ".tamlo-" + std::to_string(process) + "-" + rest;
}

TEST(AtomicFile, TheOldFileStandsUntilTheNewOneIsWhole)
{
    const ScratchFolder folder;
    const std::string target = folder / "roll";
    for (const Durability durability : {Durability::durable, Durability::cache}) {
        writeWhole(target, std::string("old"), durability);
        {
            AtomicFile file(target, durability);
            file.write(std::vector<std::uint8_t>(100'000, 'n'));
            EXPECT_EQ(test::readFile(target), "old");
        }
        EXPECT_EQ(test::readFile(target), "old");
        EXPECT_EQ(folder.listing(), Names{"roll"});
        writeWhole(target, std::string("new"), durability);
        EXPECT_EQ(test::readFile(target), "new");
        EXPECT_EQ(folder.listing(), Names{"roll"});
    }
}

TEST(AtomicFile, NamesOfEveryKind)
{
    const ScratchFolder folder;
    const Names names{std::string(255, 'x'), "-rf", "a\nb", "\xFF\xFE bytes", " ", "плёнка"};
    for (const std::string& name : names) {
        writeWhole(folder / name, name);
        writeWhole(folder / name, name + name);
        EXPECT_EQ(test::readFile(folder / name), name + name);
    }
    EXPECT_EQ(folder.listing().size(), names.size());
    EXPECT_THROW(writeWhole(folder / std::string(256, 'x'), names[0]), PlatformError);
    EXPECT_THROW(writeWhole(folder / "no such folder/roll", names[0]), PlatformError);
    EXPECT_THROW(writeWhole(folder.path(), names[0]), PlatformError);
}

TEST(AtomicFile, WhatAKilledProgramLeftIsSweptByTheNextWrite)
{
    const ScratchFolder folder;
    const pid_t dead = deadProcess();
    const Names kept{temporaryOf(getpid()),    // of a living process
                     temporaryOf(dead, "1-b"), // held by a writer: of a machine that shares the folder
                     ".tamlo-notes",           ".tamlo-12x-roll",
                     ".tamlo--3-roll",         "tamlo-" + std::to_string(dead) + "-0-roll"};
    for (const std::string& name : kept) test::writeFile(folder / name, "x");
    for (const char* rest : {"0-roll.tamlo", "17-\xFF"})
        test::writeFile(folder / temporaryOf(dead, rest), "x");
    const int held = open((folder / kept[1]).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);

    Names expected = kept;
    expected.push_back("roll");
    std::sort(expected.begin(), expected.end());
    writeWhole(folder / "roll", std::string("text"), Durability::cache); // sweeps nothing
    EXPECT_EQ(folder.listing().size(), expected.size() + 2);
    writeWhole(folder / "roll", std::string("text"));
    EXPECT_EQ(folder.listing(), expected);
    close(held);
    sweepTemporaries(folder.path());
    EXPECT_EQ(folder.listing().size(), expected.size() - 1);
}

TEST(AtomicFile, WritersOfOneTargetDoNotMeet)
{
    const ScratchFolder folder;
    const std::string target = folder / "roll";
    {
        std::vector<std::jthread> writers;
        for (char c = 'a'; c < 'g'; ++c)
            writers.emplace_back([&, c] {
                for (int i = 0; i < 40; ++i) writeWhole(target, std::string(5'000, c));
            });
    }
    const std::string text = test::readFile(target);
    EXPECT_EQ(text, std::string(5'000, text.at(0)));
    EXPECT_EQ(folder.listing(), Names{"roll"});
}

TEST(FileName, IsCutAtACharacter)
{
    const std::string cyrillic = "плёнка"; // two bytes each
    EXPECT_EQ(cutToFileName(cyrillic, 12), cyrillic);
    EXPECT_EQ(cutToFileName(cyrillic, 11), "плёнк");
    EXPECT_EQ(cutToFileName(cyrillic, 10), "плёнк");
    EXPECT_EQ(cutToFileName("a\xF0\x9F\x8E\x9E", 4), "a");
    EXPECT_EQ(cutToFileName(std::string(300, '\x80')).size(), 255u); // no text: at the byte
}

} // namespace
} // namespace tamlo::platform
