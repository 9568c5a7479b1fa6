// Whatever dies or fails, and at whichever call: the pictures of a cache are whole or not there, and the next
// session goes on.
#include "tests/preview/cache_work.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

constexpr int kMostCalls = 300;

class CacheFaults : public ::testing::Test {
protected:
    /// A cache with a picture, and a run on it with a fault at a call. lasts: it stays from then on.
    /// Returns the calls that were counted; none where the run was killed.
    std::optional<int> run(const std::string& fault, int at, bool lasts)
    {
        fs::remove_all(folder_);
        ProxyCache({folder_, [] { return CacheWork::kNow; }}).store(CacheWork::source(0), CacheWork::key(0));
        const std::string out = scratch_ / "out";
        const pid_t child = fork();
        if (child == 0) {
            dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
            setenv("LD_PRELOAD", TAMLO_FAULT_SHIM, 1);
            setenv("TAMLO_FAULT", fault.c_str(), 1);
            setenv("TAMLO_FAULT_AT", std::to_string(at).c_str(), 1);
            if (lasts) setenv("TAMLO_FAULT_LASTS", "1", 1);
            execl(TAMLO_FAULT_CHILD, TAMLO_FAULT_CHILD, folder_.c_str(), nullptr);
            _exit(99);
        }
        int state = 0;
        waitpid(child, &state, 0);
        if (WIFSIGNALED(state)) {
            EXPECT_EQ(WTERMSIG(state), SIGKILL);
            return std::nullopt;
        }
        EXPECT_EQ(WEXITSTATUS(state), 0);
        return std::atoi(readFile(out).c_str());
    }
    void everywhere(const std::string& fault, bool lasts)
    {
        int at = 1;
        for (bool wasReached = true; wasReached && at < kMostCalls; ++at) {
            SCOPED_TRACE(fault + " at call " + std::to_string(at));
            const auto calls = run(fault, at, lasts);
            wasReached = !calls || *calls >= at;
            CacheWork(folder_).expectSound();
        }
        EXPECT_GT(at, 20) << "the shim doesn't count";
        EXPECT_LT(at, kMostCalls);
    }

    ScratchFolder scratch_;
    const std::string folder_ = scratch_ / "cache";
};

TEST_F(CacheFaults, AKillAtAnyCall)
{
    everywhere("before", false);
    everywhere("after", false);
}

TEST_F(CacheFaults, ACallThatFails)
{
    everywhere(std::to_string(EIO), false);
}

TEST_F(CacheFaults, ADiskThatIsFullFromThereOn)
{
    everywhere(std::to_string(ENOSPC), true);
}

TEST_F(CacheFaults, AFolderThatCanOnlyBeRead)
{
    ASSERT_TRUE(run(std::to_string(EROFS), 1, true));
    ProxyCache cache({folder_, [] { return CacheWork::kNow; }});
    EXPECT_TRUE(cache.read(CacheWork::key(0))) << "what is there serves";
    EXPECT_EQ(cache.usage().files, 1);
    CacheWork(folder_).expectSound();
}

} // namespace
} // namespace tamlo::test
