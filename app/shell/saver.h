// Saver: the open project and its file. Opening, saving with a copy of what is replaced, and the save that
// comes by itself. Encoding and writing happen on a queue of their own, on a copy; the main thread only takes
// the copy and the result.
#pragma once

#include "app/project/project_backups.h"
#include "app/project/project_file.h"
#include "app/shell/background.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tamlo {

class AppModel;

class Saver {
public:
    using Path = std::filesystem::path;
    /// How a save ended: nothing where the project stands in its file, else the sentence for the user.
    using Done = std::function<void(std::optional<std::string> problem)>;

    /// write: the project is held, and no other program can open it so.
    enum class Access { read, write };

    explicit Saver(AppModel& model);

    /// Opens a project in place of the present one. A file that can't be read leaves that one and tells why.
    bool open(const Path& url, Access access = Access::write);
    /// A new project. url: of the file that it is going to have, where that is known; the file is not there
    /// yet.
    void adopt(Project project, std::optional<Path> url = std::nullopt);
    /// Opens a backup as a new project without a file.
    bool restore(const ProjectBackups::Item& item);

    using Over = ProjectFile::Over;
    /// Writes the project. A failure is told, and everything stays in memory. A file that another program has
    /// changed or put there is written over only on purpose, `anything`: a screen has asked. `done` is called
    /// on the main thread.
    void saveProject(const Path& to, Done done = {}, Over over = Over::expected);
    /// The save that comes by itself: nothing for a project without a file, or that stands there already.
    void autosave();
    /// Saves by itself every 60 seconds from now on.
    void startAutosave();

    /// The project is not what stands in its file.
    bool hasChanges() const;
    /// Another program has changed the file since; this project can only be saved as a copy.
    bool isChangedOnDisk() const { return changedOnDisk_; }

private:
    struct Waiting {
        Path to;
        Done done;
        Over over;
    };
    /// A save that has ended.
    struct Ended {
        Project project; ///< what was to be written
        std::shared_ptr<ProjectFile> file;
        bool changedOnDisk = false;
        std::optional<std::string> problem;
    };

    void enqueue(Waiting save);
    void beginNext();
    void finish(Ended ended);
    std::shared_ptr<ProjectFile> fileFor(const Path& to) const;
    static Ended written(Project project, std::shared_ptr<ProjectFile> file, const Path& to, Over over,
                         double date);

    AppModel& model_;
    std::shared_ptr<ProjectFile> file_; ///< holds the lock of the open project; none when it has no file
    std::optional<Project> saved_;      ///< what stands there
    bool changedOnDisk_ = false;
    std::deque<Waiting> waiting_; ///< the first is under way: the next needs to know what it has written
    platform::Timer autosaveTimer_;
    Background background_;
};

} // namespace tamlo
