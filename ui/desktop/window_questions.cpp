#include "ui/desktop/window_questions.h"

#include "ui/kit/words.h"
#include "ui/screens/sheet.h"

#include <QCheckBox>

namespace tamlo::ui {
namespace {

std::unique_ptr<Sheet> sheetOf(const QuestionText& text)
{
    return std::make_unique<Sheet>(qt(text.title), qt(text.note));
}

/// Held by the buttons of a sheet together; the last one gone, it is cancelled.
template <typename Choice>
class Shared {
public:
    explicit Shared(Answer<Choice> answer) : answer_(std::make_shared<Answer<Choice>>(std::move(answer))) {}
    std::function<void()> giving(Choice choice) const
    {
        return [answer = answer_, choice] { (*answer)(choice); };
    }
    void operator()(Choice choice) const { (*answer_)(std::move(choice)); }

private:
    std::shared_ptr<Answer<Choice>> answer_;
};

} // namespace

void WindowQuestions::setHost(SheetHost* host)
{
    host_ = host;
}

void WindowQuestions::pairs(const QuestionText& text, Answer<FolderScan::PairChoice> answer)
{
    if (!host_) return;
    const Shared shared(std::move(answer));
    auto sheet = sheetOf(text);
    sheet->addButton("import.raw", shared.giving(FolderScan::PairChoice::raw));
    sheet->addButton("import.jpeg", shared.giving(FolderScan::PairChoice::jpeg));
    sheet->addButton("import.both", shared.giving(FolderScan::PairChoice::both));
    sheet->addCancel();
    host_->show(std::move(sheet));
}

void WindowQuestions::applyToAll(const QuestionText& text, Answer<ApplyTo> answer)
{
    if (!host_) return;
    const Shared shared(std::move(answer));
    auto sheet = sheetOf(text);
    sheet->addButton("applyAll.onlyEmpty", shared.giving(ApplyTo::onlyEmpty));
    sheet->addButton("applyAll.everyFrame", shared.giving(ApplyTo::every));
    sheet->addCancel();
    host_->show(std::move(sheet));
}

void WindowQuestions::yesOrNo(const QuestionText& text, const char* yesKey, Answer<bool> answer)
{
    if (!host_) return;
    const Shared shared(std::move(answer));
    auto sheet = sheetOf(text);
    sheet->addButton(yesKey, shared.giving(true));
    sheet->addCancel();
    host_->show(std::move(sheet));
}

void WindowQuestions::remove(const QuestionText& text, Answer<bool> answer)
{
    yesOrNo(text, "common.remove", std::move(answer));
}

void WindowQuestions::otherFile(const QuestionText& text, Answer<bool> answer)
{
    yesOrNo(text, "link.button", std::move(answer));
}

/// The text ends in the name of its button, " · [Link them all]".
void WindowQuestions::linkNearby(const QuestionText& text, Answer<bool> answer)
{
    yesOrNo({text.title.substr(0, text.title.find(" · [")), text.note}, "link.all", std::move(answer));
}

void WindowQuestions::exportExists(const QuestionText& text, bool mayReplace, Answer<ExportClashReply> answer)
{
    if (!host_) return;
    const Shared shared(std::move(answer));
    auto sheet = sheetOf(text);
    QCheckBox* all = sheet->addCheck("export.exists.applyAll");
    const auto giving = [&](ExportExistsAnswer choice) {
        return [shared, choice, forAll = QPointer(all)] { shared({choice, forAll && forAll->isChecked()}); };
    };
    sheet->addButton("export.exists.keepBoth", giving(ExportExistsAnswer::keepBoth));
    if (mayReplace) sheet->addButton("export.exists.overwrite", giving(ExportExistsAnswer::overwrite));
    sheet->addButton("export.exists.cancel", giving(ExportExistsAnswer::cancel));
    host_->show(std::move(sheet));
}

} // namespace tamlo::ui
