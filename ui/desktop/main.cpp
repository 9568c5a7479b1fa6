#include "ui/desktop/main_window.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    tamlo::ui::MainWindow window;
    window.show();
    return QApplication::exec();
}
