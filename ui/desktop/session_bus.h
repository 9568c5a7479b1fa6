// The session bus: whether there is one, and the one instance of the program on it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tamlo::ui {

/// Without one nothing is asked of D-Bus, whose library would start a bus of its own.
bool hasSessionBus();

/// The name under which the desktop starts the program, "app.tamlo.Tamlo". Whoever has it opens what later
/// starts were given.
class SingleInstance {
public:
    using Files = std::vector<std::string>; ///< absolute paths

    /// Gives the files to the instance that has the name, and brings its window to the front. False: there is
    /// none.
    static bool handOver(const Files& files);

    /// Takes the name, where it is free. open: with no files, only to the front.
    explicit SingleInstance(std::function<void(Files)> open);
    ~SingleInstance();

private:
    class Door;
    std::unique_ptr<Door> door_;
};

} // namespace tamlo::ui
