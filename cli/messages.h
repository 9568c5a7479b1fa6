// What the program says beside its results: whole lines on standard error, in the user's language.
#pragma once

#include "core/text/loc.h"

#include <iostream>
#include <string>
#include <vector>

namespace tamlo::cli {

inline void tell(const std::string& message)
{
    std::cerr << "tamlo: " << message << std::endl;
}

/// Something that the user should know and that stops nothing.
inline void tellNote(const std::string& note)
{
    tell(T("cli.note", {{"text", note}}));
}

/// "a, b and c", with the word for "and" or "or".
inline std::string joined(const std::vector<std::string>& names, const std::string& lastWord)
{
    std::string out;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) out += i + 1 == names.size() ? " " + lastWord + " " : ", ";
        out += names[i];
    }
    return out;
}

} // namespace tamlo::cli
