#include "tests/ui/rack_session.h"

#include "app/shell/rack_cards.h"
#include "ui/kit/kit_choice.h"
#include "ui/kit/words.h"
#include "ui/screens/shelf_cell.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <map>
#include <set>

namespace tamlo::ui {
namespace {

std::set<std::string> standing(const RackCardView& card)
{
    std::set<std::string> out;
    for (const RackControl* one : card.controls())
        if (one->isVisible()) out.insert(one->knob().option);
    return out;
}

TEST_F(RackTest, WhatStandsIsWhatActs)
{
    const char* films[] = {"trix400", "portra400",     "velvia50",          "polaroid_sx70",
                           "fp100c",  "collodion_wet", "three_plates_1909", "vision3_500t"};
    const char* papers[] = {"bw_neutral",       "bw_graded3", "color_ra4",    "scan_film", "platinum",
                            "bromoil_transfer", "crt_mono",   "inkjet_plain", "ambrotype"};
    const char* lenses[] = {"modern_clean", "imagon", "pinhole"};
    std::size_t at = 0;
    for (const char* film : films)
        for (const char* paper : papers) {
            ProcessSettings settings = ProcessSettings::fresh();
            settings.stock = film;
            settings.paper = paper;
            settings.lens = lenses[at++ % 3];
            settings.options.mat = at % 2 ? OptText("double") : std::nullopt;
            put(settings);
            SCOPED_TRACE(settings.stock + " on " + settings.paper + " by " + settings.lens);
            const auto rack = RackVisibility::of(*roll()[1].process, store_);
            ASSERT_TRUE(rack);
            for (const RackCard& card : rackCards(*rack)) {
                std::set<std::string> wanted;
                for (const RackKnob& one : card.knobs) wanted.insert(one.knob->option);
                if (rack->lens->discs) wanted.erase("glow_mult"), wanted.erase("glow_radius_mult");
                wanted.erase("src_lights"); // a RAW file has them
                if (rack->lens->apertureHint) wanted.erase("stop");
                EXPECT_EQ(standing(rack_->card(card.block)), wanted) << card.title;
            }
        }
}

/// What is wrong with the names and roles of a node and all below it.
void judge(QAccessibleInterface* node, const std::string& path, std::vector<std::string>& faults)
{
    const auto role = node->role();
    const QString name = node->text(QAccessible::Name);
    const std::string here = path + "/" + utf8(name);
    const bool acts = node->state().focusable && !node->state().invisible;
    if (acts && role != QAccessible::Client && name.isEmpty()) faults.push_back(here + ": no name");
    if (acts && (role == QAccessible::NoRole || role == QAccessible::Client))
        faults.push_back(here + ": no role");
    if (role == QAccessible::Slider) {
        const auto* value = node->valueInterface();
        if (!value || value->minimumValue().toDouble() >= value->maximumValue().toDouble() ||
            value->minimumStepSize().toDouble() <= 0)
            faults.push_back(here + ": no range");
    }
    std::map<QString, int> names;
    for (int i = 0; i < node->childCount(); ++i) {
        QAccessibleInterface* child = node->child(i);
        if (!child || child->state().invisible) continue;
        const QString own = child->text(QAccessible::Name);
        if (child->state().focusable && !own.isEmpty() && ++names[own] == 2)
            faults.push_back(here + "/" + utf8(own) + ": twice");
        judge(child, here, faults);
    }
}

TEST_F(RackTest, EveryControlHasARoleAndANameInBothLanguages)
{
    ProcessSettings settings = ProcessSettings::fresh();
    settings.stock = "trix400";
    settings.paper = "bromoil_transfer";
    settings.lens = "imagon";
    settings.options.mat = "double";
    settings.options.filterCut = "yellow_8";
    settings.options.stampText = "A. P.";
    put(settings);
    std::map<Loc::Lang, QString> titles;
    for (const Loc::Lang lang : {Loc::Lang::en, Loc::Lang::ru}) {
        Loc::setOverride(lang);
        model_.lists.rebuildLists();
        rack_->retranslate();
        rack_->openShelf(ShelfKind::lens);
        turn();
        std::vector<std::string> faults;
        judge(QAccessible::queryAccessibleInterface(&host_), "", faults);
        EXPECT_EQ(faults, std::vector<std::string>()) << Loc::rawText(lang);
        titles[lang] = rack_->card(PresetBlock::light).head()->text();
        rack_->shelf().leave();
    }
    EXPECT_NE(titles[Loc::Lang::en], titles[Loc::Lang::ru]);
    // An assistive program turns a knob like a hand does.
    auto& knob = control<QWidget>(PresetBlock::light, "ev");
    const std::size_t before = steps();
    QAccessible::queryAccessibleInterface(&knob)->valueInterface()->setCurrentValue(1.27);
    EXPECT_NEAR(options().ev, 1.3, 1e-9);
    EXPECT_EQ(steps(), before + 1);
}

TEST_F(RackTest, AnOriginalStartsPrinting)
{
    model_.rack.resetSettings(ids({1}));
    turn();
    ASSERT_FALSE(roll()[1].process);
    const std::size_t before = steps();
    const auto buttons = rack_->findChildren<QPushButton*>();
    const auto start = std::ranges::find(buttons, QStringLiteral("Start printing"), &QPushButton::text);
    ASSERT_NE(start, buttons.end());
    QTest::mouseClick(*start, Qt::LeftButton);
    ASSERT_TRUE(roll()[1].process);
    EXPECT_EQ(*roll()[1].process, ProcessSettings::fresh());
    EXPECT_EQ(steps(), before + 1);
    EXPECT_EQ(topName(), "Start Printing");
}

TEST_F(RackTest, AShelfIsSearchedWalkedTakenAndLeft)
{
    put(ProcessSettings::fresh());
    const std::size_t before = steps();
    rack_->openShelf(ShelfKind::film);
    Shelf& shelf = rack_->shelf();
    const auto focus = [] { return QApplication::focusWidget(); };
    const auto type = [&](const char* text) {
        for (; *text; ++text) QTest::keyClick(focus(), *text);
    };
    type("portra");
    EXPECT_EQ(shelf.search().text(), QStringLiteral("portra"));
    ASSERT_GE(shelf.grid().visibleCells().size(), 3u);
    for (const ShelfCell* cell : shelf.grid().visibleCells())
        EXPECT_TRUE(cell->item().title.contains(QStringLiteral("Portra")));
    QTest::keyClick(focus(), Qt::Key_Down);
    QTest::keyClick(focus(), Qt::Key_Right);
    const std::string second = shelf.grid().visibleCells()[1]->item().id;
    QTest::keyClick(focus(), Qt::Key_Escape);
    EXPECT_FALSE(shelf.isOpen());
    EXPECT_EQ(steps(), before);
    rack_->openShelf(ShelfKind::film);
    type("portra");
    QTest::keyClick(focus(), Qt::Key_Down);
    QTest::keyClick(focus(), Qt::Key_Right);
    QTest::keyClick(focus(), Qt::Key_Return);
    EXPECT_EQ(roll()[1].process->stock, second);
    EXPECT_TRUE(roll()[1].process->paper.empty()) << "the paper that suits the film";
    EXPECT_EQ(steps(), before + 1);
    EXPECT_EQ(topName(), "film");
}

TEST(KitSelector, TurnsIntoAMenuWhereItIsNarrow)
{
    const WindowApplication application;
    KitSelector selector;
    selector.setOptions({{QStringLiteral("a"), QStringLiteral("Somewhat long")},
                         {QStringLiteral("b"), QStringLiteral("Rather longer")}});
    selector.setChosen(QStringLiteral("a"));
    selector.show();
    selector.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&selector));
    QString picked;
    QObject::connect(&selector, &KitSelector::picked, [&](const QString& id) { picked = id; });
    selector.resize(400, 30);
    EXPECT_FALSE(selector.isMenu());
    selector.setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(picked, QStringLiteral("b"));
    selector.resize(100, 30);
    EXPECT_TRUE(selector.isMenu());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    EXPECT_EQ(picked, QStringLiteral("a"));
}

} // namespace
} // namespace tamlo::ui
