#include "cli/progress.h"

#include "core/text/loc.h"
#include "platform/console.h"
#include "platform/unicode.h"

#include <algorithm>
#include <cmath>
#include <iostream>

namespace tamlo::cli {

Progress::Progress(std::size_t pictureCount, bool quiet)
    : pictureCount_(pictureCount), terminal_(platform::errorIsTerminal()), quiet_(quiet)
{}

Progress::~Progress()
{
    clear();
}

void Progress::beginPicture(const std::string& name)
{
    ++picture_;
    name_ = name;
    phase_.clear();
    percentShown_ = -1;
    if (terminal_ || quiet_) return;
    if (pictureCount_ > 1) std::cerr << '[' << picture_ << '/' << pictureCount_ << "] ";
    std::cerr << T("cli.developing", {{"file", name_}}) << std::endl;
}

void Progress::phase(const std::string& name, double fraction)
{
    if (!terminal_ || quiet_) return;
    const int percent = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * 100));
    if (name == phase_ && percent == percentShown_) return;
    phase_ = name;
    fraction_ = percent / 100.0;
    percentShown_ = percent;
    draw();
    drawn_ = true;
}

void Progress::clear()
{
    if (drawn_) std::cerr << "\r\x1b[K" << std::flush;
    drawn_ = false;
}

void Progress::draw() const
{
    constexpr int kBarWidth = 24;
    const int filled = static_cast<int>(std::lround(fraction_ * kBarWidth));
    std::string line;
    if (pictureCount_ > 1) line = std::to_string(picture_) + "/" + std::to_string(pictureCount_) + " ";
    line += "[" + std::string(static_cast<std::size_t>(filled), '#') +
            std::string(static_cast<std::size_t>(kBarWidth - filled), '.') + "] " +
            std::to_string(percentShown_) + " % " + phase_ + "  " + name_;
    const auto columns = static_cast<std::size_t>(std::max(platform::terminalColumns() - 1, 1));
    line = platform::firstCharacters(line, columns); // a wrapped line could not be rewritten
    std::cerr << '\r' << line << "\x1b[K" << std::flush;
}

} // namespace tamlo::cli
