#include "tests/ui/window_session.h"
#include "ui/desktop/key_places.h"
#include "ui/kit/words.h"
#include "ui/screens/commands.h"

#include <QKeyEvent>
#include <QMenuBar>
#include <QTest>

#include <map>
#include <set>

namespace tamlo::ui {
namespace {

using Commands = WindowSession;

/// No two commands that act at one time have the same key.
void expectNoTwoShareAKey(const Desk& desk, const char* where)
{
    std::map<QString, std::string> taken;
    for (const Command& command : commands()) {
        if (!isEnabled(command, desk)) continue;
        for (const QKeySequence& key : keysOf(command)) {
            EXPECT_FALSE(key.isEmpty()) << command.id;
            const auto [at, isNew] = taken.try_emplace(key.toString(), command.id);
            EXPECT_TRUE(isNew) << where << ": " << utf8(key.toString()) << " of " << command.id << " and "
                               << at->second;
        }
    }
}

TEST_F(Commands, HaveTextsInBothLanguagesAndIdsOfTheirOwn)
{
    std::set<std::string> ids;
    for (const Command& command : commands()) {
        EXPECT_TRUE(ids.insert(command.id).second) << command.id;
        for (const Loc::Lang lang : {Loc::Lang::ru, Loc::Lang::en}) {
            EXPECT_TRUE(Loc::value(command.id, lang)) << command.id;
            EXPECT_TRUE(Loc::value(titleKey(command.menu), lang));
        }
    }
}

TEST_F(Commands, ShareNoKeyWhereverTheyAct)
{
    expectNoTwoShareAKey(window_.desk(), "empty");
    open(12);
    expectNoTwoShareAKey(window_.desk(), "grid");
    model().selection.openFrame(roll()[1].id);
    expectNoTwoShareAKey(window_.desk(), "develop");
    model().sides.enterAB();
    expectNoTwoShareAKey(window_.desk(), "two sides");
}

TEST_F(Commands, AnswerKeysByTheirPlaceOnALayoutThatIsNotLatin)
{
    const auto at = [](int key, const QString& text, quint32 place, Qt::KeyboardModifiers modifiers = {}) {
        return keyAtPlace(QKeyEvent(QEvent::KeyPress, key, modifiers, place, 0, 0, text));
    };
    EXPECT_EQ(at(0x417, QStringLiteral("з"), 33), QKeySequence(Qt::Key_P));
    EXPECT_EQ(at(0x42f, QStringLiteral("я"), 52, Qt::ControlModifier), QKeySequence(Qt::CTRL | Qt::Key_Z));
    EXPECT_EQ(at(0x42a, QStringLiteral("ъ"), 35), QKeySequence(Qt::Key_BracketRight));
    EXPECT_EQ(at(Qt::Key_P, QStringLiteral("p"), 33), std::nullopt);
    EXPECT_EQ(at(Qt::Key_Left, {}, 113), std::nullopt);
}

TEST_F(Commands, TakeTheirTextsAnewWhenTheLanguageChanges)
{
    const auto menus = [&] {
        QStringList titles;
        for (const QAction* menu : window_.menuBar()->actions()) titles << menu->text();
        return titles;
    };
    const QStringList english = menus();
    Loc::setOverride(Loc::Lang::ru);
    window_.retranslate();
    ASSERT_EQ(menus().size(), english.size());
    for (int i = 0; i < english.size(); ++i) EXPECT_NE(menus()[i], english[i]);
    EXPECT_EQ(menus().first(), word("menu.file"));
}

} // namespace
} // namespace tamlo::ui
