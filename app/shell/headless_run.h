// The headless run: opens a photograph as a user would, waits until all is there that a user would see, and
// writes the picture on screen. It takes the same road as a session at a screen, so that a run that succeeds
// proves the whole of it.
#pragma once

#include "app/shell/application.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tamlo {

class HeadlessRun {
public:
    struct Result {
        std::string line; ///< for standard error
        int status = 0;
    };

    /// done: called once, on the main thread.
    HeadlessRun(Application& application, platform::MainLoop& loop, std::function<void(Result)> done);

    /// input: a photograph, or a folder of them. sheet: where a page of the contact sheet goes.
    void runSmokeTest(const std::filesystem::path& input, const std::filesystem::path& output,
                      std::optional<std::filesystem::path> sheet = {});

private:
    void poll();
    bool isReady();
    void finish();
    void writeSheet();
    void fail();
    void end(Result result);

    Application& application_;
    platform::MainLoop& loop_;
    std::function<void(Result)> done_;
    std::filesystem::path output_;
    std::optional<std::filesystem::path> sheet_;
    int ticks_ = 0;
    bool isImporting_ = true;
    platform::Timer timer_;
};

} // namespace tamlo
