// Whatever dies or fails, and at whichever call: a roll is as it was before or after, and nothing temporary
// lies beside it once the next write has been made.
#include "app/project/project_backups.h"
#include "app/project/project_file.h"
#include "app/project/project_registry.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/preferences.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tamlo {
namespace {

namespace fs = std::filesystem;

constexpr int kMostCalls = 200;

class FaultsTest : public ::testing::Test {
protected:
    FaultsTest()
    {
        setenv("TAMLO_USER_DIR", user_.c_str(), 1);
        setenv("XDG_RUNTIME_DIR", (scratch_ / "run").c_str(), 1);
        fs::create_directories(scratch_ / "rolls");
        Project roll = test::rollOf(4);
        old_ = roll.encoded();
        roll.frames.edit(2).mark = Mark::selected;
        new_ = roll.encoded();
        test::writeFile(scratch_ / "new", new_);
        test::writeFile(scratch_ / "old", old_);
    }
    ~FaultsTest() override
    {
        unsetenv("TAMLO_USER_DIR");
        unsetenv("XDG_RUNTIME_DIR");
    }

    pid_t start(const std::vector<std::string>& arguments, const std::string& fault = "", int at = 0) const
    {
        const pid_t child = fork();
        if (child != 0) return child;
        const int out = open((scratch_ / "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = open((scratch_ / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        if (at > 0) {
            setenv("LD_PRELOAD", TAMLO_FAULT_SHIM, 1);
            setenv("TAMLO_FAULT", fault.c_str(), 1);
            setenv("TAMLO_FAULT_AT", std::to_string(at).c_str(), 1);
        }
        std::vector<char*> argv{const_cast<char*>(TAMLO_FAULT_CHILD)};
        for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        execv(TAMLO_FAULT_CHILD, argv.data());
        _exit(99);
    }

    /// Runs the program with each fault at each call, `before` ahead of and `after` behind each run.
    void everyFaultAtEveryCall(const std::vector<std::string>& arguments, const std::function<void()>& before,
                               const std::function<void()>& after)
    {
        int killed = 0, failed = 0, passed = 0;
        for (const std::string& fault : {std::string("before"), std::string("after"), std::to_string(ENOSPC),
                                         std::to_string(EIO), std::to_string(EACCES)}) {
            int at = 1;
            for (bool wasReached = true; wasReached; ++at) {
                SCOPED_TRACE(fault + " at call " + std::to_string(at));
                before();
                int state = 0;
                waitpid(start(arguments, fault, at), &state, 0);
                if (WIFSIGNALED(state)) {
                    ASSERT_EQ(WTERMSIG(state), SIGKILL);
                    ++killed;
                } else {
                    ASSERT_TRUE(WEXITSTATUS(state) == 0 || WEXITSTATUS(state) == 3)
                        << WEXITSTATUS(state) << test::readFile(scratch_ / "err");
                    ++(WEXITSTATUS(state) == 3 ? failed : passed);
                    wasReached = std::stoi(test::readFile(scratch_ / "out")) >= at;
                }
                after();
                ASSERT_LT(at, kMostCalls);
            }
            EXPECT_GT(at, 8) << "the shim doesn't count";
        }
        RecordProperty("killed", killed);
        RecordProperty("failed", failed);
        RecordProperty("passed", passed);
        std::cout << killed << " killed, " << failed << " failed with a sentence, " << passed
                  << " went on without\n";
        EXPECT_GT(killed, 10);
        EXPECT_GT(failed, 10);
    }

    void expectNothingTemporary() const
    {
        for (const std::string& name : scratch_.listing())
            EXPECT_EQ(name.find(".tamlo-"), std::string::npos) << name;
    }

    void makeOldRoll() const
    {
        fs::remove_all(fs::path(user_) / "backups");
        test::writeFile(roll_, old_);
        fs::last_write_time(roll_, fs::file_time_type::clock::now() - std::chrono::seconds(100));
    }
    void expectWholeRoll() const
    {
        const std::string text = test::readFile(roll_);
        EXPECT_TRUE(text == old_ || text == new_) << text.size();
        EXPECT_EQ(Project::decode(text, ProfileStore::shared()).frames.size(), 4u);
        for (const auto& copy : ProjectBackups::list(ProjectBackups::dir(roll_), false))
            EXPECT_EQ(test::readFile(copy.url), old_);
        if (text == new_) {
            EXPECT_TRUE(test::readFile(scratch_ / "err").empty());
        }
        ProjectFile next(roll_); // nobody's lock is left
        next.read();
        EXPECT_EQ(next.write("next", 1'800'000'100), ProjectFile::Written::done);
        expectNothingTemporary();
    }

    test::ScratchFolder scratch_;
    const std::string user_ = scratch_ / "user", roll_ = scratch_ / "rolls/roll.tamlo";
    std::string old_, new_;
};

TEST_F(FaultsTest, ASaveAndItsCopy)
{
    everyFaultAtEveryCall(
        {"save", roll_, scratch_ / "new"}, [&] { makeOldRoll(); },
        [&] {
            if (test::readFile(scratch_ / "err").empty()) return expectWholeRoll();
            EXPECT_EQ(test::readFile(roll_), new_); // by the second try
            expectNothingTemporary();
        });
}

TEST_F(FaultsTest, ASaveWhereEveryFileNeedsAName)
{
    setenv("TAMLO_NO_TMPFILE", "1", 1);
    everyFaultAtEveryCall(
        {"save", roll_, scratch_ / "new"}, [&] { makeOldRoll(); },
        [&] {
            if (test::readFile(scratch_ / "err").empty()) expectWholeRoll();
        });
    unsetenv("TAMLO_NO_TMPFILE");
}

TEST_F(FaultsTest, TheRegistry)
{
    ProjectRegistry::Entries before;
    everyFaultAtEveryCall(
        {"registry", user_},
        [&] {
            fs::remove_all(user_);
            ProjectRegistry registry(user_);
            registry.opened("/r/old.tamlo", 3, 100);
            before = registry.load();
        },
        [&] {
            ProjectRegistry registry(user_);
            auto now = registry.load();
            for (const auto& [id, entry] : before) EXPECT_EQ(now[id], entry);
            EXPECT_LE(now.size(), 2u);
            EXPECT_TRUE(registry.opened("/r/next.tamlo", 1, 300));
            EXPECT_FALSE(registry.metDamage());
            expectNothingTemporary();
        });
}

TEST_F(FaultsTest, ThePreferences)
{
    platform::FilePreferences preferences;
    everyFaultAtEveryCall(
        {"preference"},
        [&] {
            fs::remove_all(user_);
            preferences.setText("old", "kept");
        },
        [&] {
            EXPECT_EQ(preferences.text("old"), "kept");
            preferences.setText("next", "text");
            expectNothingTemporary();
        });
}

// TAMLO_KILLS=1000 kills so many.
TEST_F(FaultsTest, KillsAtRandomMoments)
{
    const char* wanted = std::getenv("TAMLO_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 60;
    std::mt19937 random(11);
    int olds = 0;
    for (int i = 0; i < kills; ++i) {
        makeOldRoll();
        const pid_t child = start({"saves", roll_, scratch_ / "new", scratch_ / "old"});
        std::this_thread::sleep_for(std::chrono::microseconds(2'000 + random() % 60'000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string text = test::readFile(roll_);
        ASSERT_TRUE(text == old_ || text == new_);
        olds += text == old_ ? 1 : 0;
    }
    std::cout << kills << " kills, " << olds << " found the older roll\n";
    makeOldRoll();
    ProjectFile next(roll_);
    next.read();
    next.write(new_, 1'800'000'000);
    expectNothingTemporary();
}

} // namespace
} // namespace tamlo
