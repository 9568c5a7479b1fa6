// The window's program: tamlo-desktop [--new] [FILES...]. A project opens, photographs and folders are added.
// A second start hands its files to the first; --new starts another.
#include "app/preview/program_build.h"
#include "core/profiles/catalogue/profile_store.h"
#include "ui/desktop/main_window.h"
#include "ui/desktop/qt_clipboard.h"
#include "ui/desktop/qt_loop.h"
#include "ui/desktop/qt_texts.h"
#include "ui/desktop/session_bus.h"
#include "ui/desktop/window_questions.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"

#include <QApplication>
#include <QIcon>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <optional>

namespace {

/// Absolute paths of what the command line names.
std::vector<std::string> namedFiles(int argc, char** argv)
{
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '-') continue; // Qt's own options have been taken; the others mean nothing here
        std::error_code problem;
        const auto path = std::filesystem::absolute(argv[i], problem);
        files.push_back(problem ? argv[i] : path.lexically_normal().string());
    }
    return files;
}

bool asksForAnother(int argc, char** argv)
{
    return std::any_of(argv + 1, argv + argc,
                       [](const char* word) { return std::strcmp(word, "--new") == 0; });
}

} // namespace

int main(int argc, char** argv)
{
    using namespace tamlo;
    QApplication program(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tamlo"));
    QApplication::setDesktopFileName(QStringLiteral("app.tamlo.Tamlo"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("app.tamlo.Tamlo")));
    const std::vector<std::string> files = namedFiles(argc, argv);
    const bool isAnother = asksForAnother(argc, argv);
    if (!isAnother && ui::SingleInstance::handOver(files)) return 0;

    ui::useQtTexts();
    ui::QtLoop loop;
    ui::WindowQuestions questions;
    ui::QtClipboard clipboard;
    Application application(Application::Mode::user, {loop, ProfileStore::shared(), questions, clipboard},
                            programBuild());
    ui::Theme::apply(program, ui::Theme::Choices::of(application.model().seams().preferences));
    int status = 0;
    {
        ui::MainWindow window(application, questions);
        window.show();
        application.start(files.empty());
        if (!files.empty()) loop.post([&] { window.take(files); });
        std::optional<ui::SingleInstance> instance;
        if (!isAnother)
            instance.emplace([&window](std::vector<std::string> given) {
                window.raise();
                window.activateWindow();
                window.take(std::move(given));
            });
        status = QApplication::exec();
    }
    application.end();
    return status;
}
