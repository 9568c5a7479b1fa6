// WindowQuestions: what the session asks, as sheets in the window. Without a window there is nobody to
// answer, and every question is cancelled.
#pragma once

#include "app/shell/questions.h"

#include <QPointer>

namespace tamlo::ui {

class SheetHost;

class WindowQuestions : public Questions {
public:
    void setHost(SheetHost* host);

    void pairs(const QuestionText& text, Answer<FolderScan::PairChoice> answer) override;
    void applyToAll(const QuestionText& text, Answer<ApplyTo> answer) override;
    void remove(const QuestionText& text, Answer<bool> answer) override;
    void otherFile(const QuestionText& text, Answer<bool> answer) override;
    void linkNearby(const QuestionText& text, Answer<bool> answer) override;
    void exportExists(const QuestionText& text, bool mayReplace, Answer<ExportClashReply> answer) override;

private:
    void yesOrNo(const QuestionText& text, const char* yesKey, Answer<bool> answer);

    QPointer<SheetHost> host_;
};

} // namespace tamlo::ui
