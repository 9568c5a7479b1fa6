// The page that shows all photographs of the window to a person: a row a state, English beside Russian, all
// sizes of one state together.
#pragma once

#include "tools/screens/states.h"

#include <QStringList>

namespace tamlo::screens {

/// "1920x1080@1": device pixels, and how many of them a point has.
const QStringList& sizes();
const QStringList& languages();
QString pictureName(const State& state, const QString& size, const QString& language);
/// index.html beside the pictures; of those that are there.
void writePage(const QString& folder);

} // namespace tamlo::screens
