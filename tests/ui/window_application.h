// The one application object of a program of tests, made when the first of them needs it.
#pragma once

#include <QApplication>

#include <gtest/gtest.h>

namespace tamlo::ui {

struct WindowApplication {
    WindowApplication()
    {
        if (qApp) return;
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        static int count = 1;
        static char name[] = "test";
        static char* names[] = {name, nullptr};
        static QApplication application(count, names);
    }
};

class WindowTest : public testing::Test {
    WindowApplication application_;
};

} // namespace tamlo::ui
