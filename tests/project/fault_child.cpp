// The program that the tests of faults kill: one write of an application's file.
//   fault_child save ROLL NEW-TEXT-FILE | registry USER-FOLDER | preference | saves ROLL TEXT-FILE TEXT-FILE
// Exit: 0 written; 3 failed with one sentence, the old file whole, and written at the second try; others
// wrong.
#include "app/project/project_file.h"
#include "app/project/project_registry.h"
#include "core/image/tamlo_error.h"
#include "platform/platform_error.h"
#include "platform/preferences.h"
#include "tests/support/fault_arm.h"
#include "tests/support/scratch_folder.h"

#include <functional>
#include <iostream>

namespace {

using namespace tamlo;

constexpr double kNow = 1'800'000'000;

/// Empty when it went well, else the sentence.
std::string tryTo(const std::function<void()>& work)
{
    try {
        work();
        return {};
    } catch (const TamloError& error) {
        return error.what();
    } catch (const platform::PlatformError& error) {
        return error.what();
    }
}

int withFaults(const std::function<void()>& work, const std::function<bool()>& oldIsWhole)
{
    test::armFaults(true);
    const std::string sentence = tryTo(work);
    test::armFaults(false);
    std::cout << test::countedCalls() << std::endl;
    if (sentence.empty()) return 0;
    std::cerr << sentence << std::endl;
    if (sentence.find('\n') != std::string::npos) return 4;
    if (!oldIsWhole()) return 5;
    return tryTo(work).empty() ? 3 : 6;
}

void must(bool done)
{
    if (!done) throw platform::PlatformError("not written down");
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.at(0) == "save") {
        ProjectFile file(arguments.at(1));
        const std::string before = file.read(), after = test::readFile(arguments.at(2));
        return withFaults([&] { must(file.write(after, kNow) == ProjectFile::Written::done); },
                          [&] { return test::readFile(arguments.at(1)) == before; });
    }
    if (arguments.at(0) == "registry") {
        ProjectRegistry registry(arguments.at(1));
        const auto before = registry.load();
        return withFaults([&] { must(registry.opened("/r/new.tamlo", 7, kNow)); },
                          [&] { return registry.load() == before; });
    }
    if (arguments.at(0) == "preference") {
        platform::FilePreferences preferences;
        return withFaults([&] { preferences.setText("new", "text"); },
                          [&] { return preferences.text("old") == "kept" && !preferences.text("new"); });
    }
    ProjectFile file(arguments.at(1)); // until it is killed
    file.read();
    for (std::size_t i = 0;; ++i) file.write(test::readFile(arguments.at(2 + i % 2)), kNow);
}
