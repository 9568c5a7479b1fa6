#include "tests/ui/window_application.h"
#include "ui/desktop/window_questions.h"
#include "ui/kit/words.h"
#include "ui/screens/sheet.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QPushButton>
#include <QTest>

namespace tamlo::ui {
namespace {

class QuestionsInTheWindow : public WindowTest {
protected:
    QuestionsInTheWindow() { questions_.setHost(host_.get()); }

    Answer<bool> answer()
    {
        return Answer<bool>([this](std::optional<bool> choice) { given_.push_back(choice); });
    }
    void settle() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
    QPushButton* button(const char* key)
    {
        for (QPushButton* one : host_->findChildren<QPushButton*>())
            if (one->text() == word(key) && !one->parentWidget()->isHidden()) return one;
        return nullptr;
    }

    WindowQuestions questions_;
    std::unique_ptr<SheetHost> host_ = std::make_unique<SheetHost>();
    std::vector<std::optional<bool>> given_;
};

using Given = std::vector<std::optional<bool>>;

TEST_F(QuestionsInTheWindow, WaitForAnAnswerAndGiveItOnce)
{
    questions_.remove({"Remove?", "It is picked."}, answer());
    EXPECT_TRUE(given_.empty()); // nothing was waited for
    button("common.remove")->click();
    settle();
    EXPECT_EQ(given_, Given{true});
    EXPECT_FALSE(host_->isAsking());
}

TEST_F(QuestionsInTheWindow, AreCancelledByTheirButtonByEscapeAndByTheirEnd)
{
    questions_.otherFile({"One", ""}, answer());
    button("common.cancel")->click();
    settle();
    EXPECT_EQ(given_, Given{std::nullopt});

    questions_.otherFile({"Two", ""}, answer());
    QTest::keyClick(host_->findChild<QFrame*>({}, Qt::FindDirectChildrenOnly), Qt::Key_Escape);
    settle();
    EXPECT_EQ(given_, Given(2));

    questions_.otherFile({"Three", ""}, answer());
    questions_.remove({"Four, behind it", ""}, answer());
    host_.reset();
    EXPECT_EQ(given_, Given(4));

    questions_.remove({"Without a window", ""}, answer());
    EXPECT_EQ(given_, Given(5));
}

TEST_F(QuestionsInTheWindow, StandOneBehindTheOther)
{
    questions_.remove({"First", ""}, answer());
    questions_.linkNearby({"3 more were found · [Link them all]", ""}, answer());
    EXPECT_EQ(button("link.all"), nullptr);
    button("common.remove")->click();
    ASSERT_NE(button("link.all"), nullptr);
    button("link.all")->click();
    settle();
    EXPECT_EQ(given_, Given(2, true));
}

TEST_F(QuestionsInTheWindow, TakeAnAnswerForAllThatFollow)
{
    std::optional<ExportClashReply> reply;
    questions_.exportExists({"a.jpg", ""}, false,
                            Answer<ExportClashReply>([&](auto given) { reply = given; }));
    EXPECT_EQ(button("export.exists.overwrite"), nullptr); // a photograph is never replaced
    host_->findChild<QCheckBox*>()->setChecked(true);
    button("export.exists.keepBoth")->click();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->answer, ExportExistsAnswer::keepBoth);
    EXPECT_TRUE(reply->forAll);
}

} // namespace
} // namespace tamlo::ui
