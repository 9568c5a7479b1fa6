// The texts of Qt's own dialogues, for files and such, in the language of ours.
#pragma once

namespace tamlo::ui {

/// From Qt's catalogues, for the language in force; may be called again. After QApplication.
void useQtTexts();

} // namespace tamlo::ui
