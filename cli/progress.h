// What a run tells while it works: one line with a bar on a terminal, a plain line for each picture
// elsewhere, nothing when it is to be quiet. Everything goes to standard error; results are not its business.
#pragma once

#include <cstddef>
#include <string>

namespace tamlo::cli {

class Progress {
public:
    Progress(std::size_t pictureCount, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// A new picture begins.
    void beginPicture(const std::string& name);
    /// The phase of the picture and how much of the whole picture is done, 0 to 1.
    void phase(const std::string& name, double fraction);
    /// Takes the bar away, so that a message or a result can stand on a clean line.
    void clear();

private:
    void draw() const;

    std::size_t pictureCount_;
    std::size_t picture_ = 0;
    std::string name_, phase_;
    double fraction_ = 0;
    int percentShown_ = -1;
    bool terminal_, quiet_;
    bool drawn_ = false;
};

} // namespace tamlo::cli
