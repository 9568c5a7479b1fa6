// words: the texts of the tables as Qt takes them.
#pragma once

#include "core/text/loc.h"

#include <QString>

namespace tamlo::ui {

/// The text of a key in the language in force.
QString word(const std::string& key, const Loc::Args& args = {});
/// UTF-8 both ways.
QString qt(std::string_view text);
std::string utf8(const QString& text);

} // namespace tamlo::ui
