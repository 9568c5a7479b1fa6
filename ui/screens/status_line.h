// StatusLine: the last line of the window: what happened last, how far the export is, how many sources are on
// their way, and the source and the print of the frame under the cursor.
#pragma once

#include "ui/screens/desk.h"

#include <QWidget>

#include <deque>

class QLabel;
class QToolButton;

namespace tamlo::ui {

class StatusButton;

class StatusLine : public QWidget {
public:
    explicit StatusLine(Desk desk, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void build();
    void retranslate();
    void showStatus();
    void showWork();
    void showFrame();
    void showLog();
    void watchWork();

    Desk desk_;
    StatusButton* status_;
    QLabel *export_, *loading_, *source_, *size_;
    QToolButton* cancel_;
    std::deque<QString> log_; ///< the newest last
    platform::Timer ticks_;
    Subscription subscription_;
};

} // namespace tamlo::ui
