#include "ui/desktop/key_places.h"

#include <QKeyEvent>

#include <string_view>

namespace tamlo::ui {
namespace {

struct Row {
    quint32 first; ///< scan code
    std::string_view keys;
};
constexpr Row kRows[] = {
    {10, "1234567890-="}, {24, "QWERTYUIOP[]"}, {38, "ASDFGHJKL;'`"}, {51, "\\ZXCVBNM,./"}};
constexpr int kLastLatin = 0xff;

} // namespace

std::optional<QKeySequence> keyAtPlace(const QKeyEvent& event)
{
    const bool isLetter = event.key() > kLastLatin && event.key() < Qt::Key_Escape;
    if (!isLetter) return std::nullopt;
    for (const Row& row : kRows) {
        const quint32 code = event.nativeScanCode();
        if (code < row.first || code >= row.first + row.keys.size()) continue;
        const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
        return QKeySequence(QKeyCombination(modifiers, Qt::Key(row.keys[code - row.first])));
    }
    return std::nullopt;
}

} // namespace tamlo::ui
