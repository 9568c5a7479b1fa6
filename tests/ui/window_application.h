// The one application object of a program of tests, made when the first of them needs it.
#pragma once

#include <QApplication>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace tamlo::ui {

struct WindowApplication {
    WindowApplication()
    {
        if (qApp) return;
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        static int count = 1;
        static char name[] = "test";
        static char* names[] = {name, nullptr};
        testing::UnitTest::GetInstance()->listeners().Append(
            new End(std::make_unique<QApplication>(count, names)));
    }

private:
    /// The application goes before main returns: what it owns needs statics of its library on the way.
    class End : public testing::EmptyTestEventListener {
    public:
        explicit End(std::unique_ptr<QApplication> application) : application_(std::move(application)) {}
        void OnTestProgramEnd(const testing::UnitTest&) override { application_.reset(); }

    private:
        std::unique_ptr<QApplication> application_;
    };
};

class WindowTest : public testing::Test {
    WindowApplication application_;
};

} // namespace tamlo::ui
