// How the window keeps up with a hand: window_bench prints the median and the 95th of 100 of each gesture's
// frames, best of five rounds: on the clock, and what the main thread itself has spent, which is what counts
// on a busy machine; beside them the time of one E of a million samples in this run. A frame is the time from
// the event until all of it has been painted. Under a screen as large as the largest:
//   xvfb-run -a -s "-screen 0 3840x2160x24" build/release/bench/window_bench
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "app/shell/application.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"
#include "ui/canvas/picture_view.h"
#include "ui/desktop/main_window.h"
#include "ui/desktop/qt_clipboard.h"
#include "ui/desktop/qt_loop.h"
#include "ui/desktop/window_questions.h"
#include "ui/kit/kit_knob.h"
#include "ui/kit/theme.h"
#include "ui/screens/grid_view.h"

#include <QApplication>
#include <QProcess>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace tamlo::bench {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kRounds = 5;

double msSince(Clock::time_point begin)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

/// Milliseconds that this thread has had a core for.
double ownMs()
{
    timespec spent{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent);
    return 1e3 * static_cast<double>(spent.tv_sec) + 1e-6 * static_cast<double>(spent.tv_nsec);
}

/// Wall time, and what the main thread itself has spent, which is what counts on a busy machine.
struct Frame {
    double ms = 0, own = 0;
};

template <typename F>
Frame timed(F&& work)
{
    const double spent = ownMs();
    const auto begin = Clock::now();
    work();
    return {msSince(begin), ownMs() - spent};
}

struct Times {
    double median = 0, p95 = 0, ownMedian = 0, ownP95 = 0;
};

Times timesOf(std::vector<Frame> frames)
{
    const std::size_t middle = frames.size() / 2, most = frames.size() * 95 / 100;
    std::ranges::sort(frames, {}, &Frame::ms);
    Times times{frames[middle].ms, frames[most].ms};
    std::ranges::sort(frames, {}, &Frame::own);
    times.ownMedian = frames[middle].own;
    times.ownP95 = frames[most].own;
    return times;
}

/// The round with the least median.
Times bestOf(const std::function<std::vector<Frame>()>& round)
{
    Times best{1e9};
    for (int i = 0; i < kRounds; ++i) {
        const Times now = timesOf(round());
        if (now.median < best.median) best = now;
    }
    return best;
}

void tell(const char* what, Times times, const char* bound)
{
    std::printf("%-46s %8.2f %8.2f %8.2f %8.2f   %-18s %6.2f\n", what, times.median, times.p95,
                times.ownMedian, times.ownP95, bound, secondsOfE(1'000'000) * 1e3);
    std::fflush(stdout);
}

double residentMB()
{
    std::ifstream file("/proc/self/statm");
    double pages = 0, resident = 0;
    file >> pages >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

std::shared_ptr<const ReadyImage> master()
{
    static const auto image =
        std::make_shared<const ReadyImage>(ImageWriter::readyImage(benchPicture(6000, 4000)));
    return image;
}

void settle(const ui::PictureView& view)
{
    if (!QTest::qWaitFor([&] { return view.isExact(); }, 20'000)) std::puts("the canvas did not settle");
}

/// Steps of a view, each painted at once; in between the loop has its turn, as between two events of a hand.
std::vector<Frame> steps(ui::PictureView& view, int count, const std::function<void(int)>& step)
{
    std::vector<Frame> ms;
    for (int i = 0; i < count; ++i) {
        ms.push_back(timed([&] {
            step(i);
            view.repaint();
        }));
        QTest::qWait(5);
    }
    return ms;
}

void canvas(QSize size, const char* name, const char* bound)
{
    ui::PictureView view;
    view.resize(size);
    view.show();
    view.setPicture(master());
    settle(view);
    const double oneToOne = 6000 / view.fitSize().width() / view.devicePixelRatioF();
    const auto panAt = [&](double zoom) {
        return bestOf([&] {
            view.setView(zoom, {});
            settle(view);
            return steps(view, 60, [&](int i) {
                const int there = i < 30 ? i : 60 - i;
                view.setView(zoom, QPointF(-37.0 * there, 19.0 * there));
            });
        });
    };
    tell((std::string(name) + " pan at 1:1").c_str(), panAt(oneToOne), bound);
    tell((std::string(name) + " pan at 1.6 of the fit").c_str(), panAt(1.6), bound);
    tell((std::string(name) + " pinch").c_str(), bestOf([&] {
             view.setView(1, {});
             settle(view);
             return steps(view, 60, [&](int i) {
                 const double zoom = std::pow(1.03, i < 30 ? i : 60 - i);
                 view.setView(zoom, QPointF(12.0 * zoom, -7.0 * zoom));
             });
         }),
         bound);
    tell((std::string(name) + " a new proxy to its exact pixels").c_str(), bestOf([&] {
             std::vector<Frame> ms;
             view.setView(1, {});
             for (int i = 0; i < 8; ++i) {
                 const auto proxy =
                     std::make_shared<const ReadyImage>(ImageWriter::readyImage(benchPicture(2048, 1365)));
                 ms.push_back(timed([&] {
                     view.setPicture(proxy, {6000, 4000});
                     settle(view);
                 }));
             }
             return ms;
         }),
         "");
}

void knob()
{
    ui::KitKnob knob;
    KnobRow row;
    row.low = -6;
    row.high = 6;
    row.step = 0.1;
    knob.setTexts(QStringLiteral("exposure"), QStringLiteral("EV"));
    knob.setRow(row);
    knob.resize(320, knob.sizeHint().height());
    knob.setVisible(true);
    QTest::qWait(50);
    tell("knob event to knob redrawn", bestOf([&] {
             std::vector<Frame> ms;
             for (int i = 0; i < 100; ++i) {
                 ms.push_back(timed([&] {
                     row.value = 0.1 * (i % 60) - 3;
                     knob.setRow(row);
                     knob.repaint();
                 }));
             }
             return ms;
         }),
         "p95 3");
}

/// A window over a session of its own.
struct Window {
    ui::QtLoop loop;
    ui::WindowQuestions questions;
    ui::QtClipboard clipboard;
    Application application{
        Application::Mode::service, {loop, ProfileStore::shared(), questions, clipboard}, "bench"};
    std::unique_ptr<ui::MainWindow> window = std::make_unique<ui::MainWindow>(application, questions);

    ~Window()
    {
        window.reset();
        application.end();
    }
};

void grid()
{
    const double before = residentMB();
    Window one;
    one.window->resize(2560, 1440);
    one.window->show();
    one.application.model().saver.adopt(test::rollOf(5000));
    QTest::qWait(1500);
    ui::GridView* view = nullptr;
    for (QWidget* widget : QApplication::allWidgets())
        if (auto* found = dynamic_cast<ui::GridView*>(widget)) view = found;
    if (!view) return;
    tell("grid of 5,000 frames, a wheel's notch", bestOf([&] {
             view->verticalScrollBar()->setValue(0);
             std::vector<Frame> ms;
             for (int i = 0; i < 60; ++i) {
                 ms.push_back(timed([&] {
                     QWheelEvent notch(QPointF(600, 600), view->mapToGlobal(QPointF(600, 600)), {}, {0, -120},
                                       Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
                     QApplication::sendEvent(view->viewport(), &notch);
                     view->viewport()->repaint();
                 }));
                 QTest::qWait(5);
             }
             return ms;
         }),
         "p95 16");
    std::printf("%-46s %8.0f MB\n", "memory beyond an empty process", residentMB() - before);
}

constexpr const char* kBeganAt = "TAMLO_BENCH_BEGAN";

/// In a process of its own: from its start to the first paint of the window.
int firstPaint()
{
    Window one;
    one.window->show();
    one.window->repaint();
    QApplication::processEvents();
    const auto now = std::chrono::duration<double, std::milli>(Clock::now().time_since_epoch()).count();
    std::printf("%f %f\n", now - qEnvironmentVariable(kBeganAt).toDouble(), residentMB());
    return 0;
}

void start()
{
    std::vector<Frame> ms;
    double resident = 0;
    for (int i = 0; i < kRounds; ++i) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const auto now = std::chrono::duration<double, std::milli>(Clock::now().time_since_epoch()).count();
        environment.insert(QLatin1String(kBeganAt), QString::number(now, 'f', 6));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--first-paint")});
        child.waitForFinished(60'000);
        const QStringList told = QString::fromLatin1(child.readAllStandardOutput()).split(u' ');
        if (told.size() < 2) continue;
        ms.push_back({told[0].toDouble()});
        resident = told[1].toDouble();
    }
    if (ms.empty()) return;
    tell("exec to the first window painted", timesOf(ms), "400");
    std::printf("%-46s %8.0f MB   110\n", "resident, empty", resident);
}

} // namespace
} // namespace tamlo::bench

int main(int argc, char** argv)
{
    using namespace tamlo::bench;
    const tamlo::test::ScratchFolder home;
    setenv("TAMLO_USER_DIR", home.path().c_str(), 1);
    setenv("XDG_CACHE_HOME", home.path().c_str(), 1);
    QApplication application(argc, argv);
    tamlo::ui::Theme::apply(application);
    if (argc > 1 && std::string_view(argv[1]) == "--first-paint") return firstPaint();
    std::printf("%-46s %8s %8s %8s %8s   %-18s %6s\n", "ms", "median", "p95", "own med", "own p95", "bound",
                "E");
    start();
    canvas({2560, 1440}, "24 MP at 2560 x 1440,", "median 5, p95 16");
    canvas({3840, 2160}, "24 MP at 3840 x 2160,", "median 10, p95 20");
    std::printf("%-46s %8.0f MB   450\n", "resident, 24 MP on screen", residentMB());
    knob();
    grid();
    return 0;
}
