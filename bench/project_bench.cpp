// A roll of 5,000 frames with processes: what opening, saving and undoing it costs, beside the bare operation
// in the same run. Times are CPU seconds of this thread; memory is what the process grew by.
#include "app/project/history.h"
#include "app/project/intake.h"
#include "app/shell/app_model.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "platform/atomic_file.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>

#include <unistd.h>

namespace {

using namespace tamlo;

constexpr unsigned kFrames = 5000;

const Project& roll()
{
    static const Project project = [] {
        Project out = test::rollOf(kFrames);
        for (unsigned i = 0; i < kFrames; ++i)
            if (!out.frames[i].process) out.frames.edit(i).process = ProcessSettings::fresh();
        return out;
    }();
    return project;
}

const std::string& text()
{
    static const std::string encoded = roll().encoded();
    return encoded;
}

/// Bytes that the process has in memory now.
double residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    double size = 0, resident = 0;
    statm >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

struct Session {
    test::ScratchFolder folder;
    test::VirtualLoop loop;
    ProfileStore store;
    HeadlessQuestions questions;
    FrameViews views;
    platform::SessionClipboard clipboard;
    test::FakeVolumes volumes;
    test::MapPreferences preferences;
    AppModel model{{loop, store, questions, views, clipboard, volumes, preferences}};
};

void parseAlone(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(parseJsonText(text()));
    state.counters["MB"] = static_cast<double>(text().size()) / 1e6;
}
BENCHMARK(parseAlone)->Unit(benchmark::kMillisecond);

void openToTheFirstList(benchmark::State& state)
{
    Session session;
    std::ofstream(session.folder / "roll.tamlo", std::ios::binary) << text();
    for (auto _ : state) {
        session.model.saver.open(session.folder / "roll.tamlo");
        benchmark::DoNotOptimize(session.model.selection.visibleIDs());
    }
}
BENCHMARK(openToTheFirstList)->Unit(benchmark::kMillisecond);

void encodeAndWriteAlone(benchmark::State& state)
{
    const test::ScratchFolder folder;
    for (auto _ : state) platform::writeWhole(folder / "roll.tamlo", roll().encoded());
}
BENCHMARK(encodeAndWriteAlone)->Unit(benchmark::kMillisecond);

/// What the main thread does for a save: the copy it hands over, and the result it takes.
void saveOnTheMainThread(benchmark::State& state)
{
    Session session;
    session.model.saver.adopt(roll());
    double mark = 0;
    for (auto _ : state) {
        state.PauseTiming();
        mark = mark == 1 ? 2 : 1;
        session.model.amendProject([&](Project& project) { project.frames.edit(7).exportedAt = Date{mark}; });
        bool ended = false;
        state.ResumeTiming();
        session.model.saver.saveProject(session.folder / "roll.tamlo", [&](auto) { ended = true; });
        state.PauseTiming();
        while (!ended) {
            usleep(1000);
            state.ResumeTiming();
            session.loop.runPosted();
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}
BENCHMARK(saveOnTheMainThread)->Unit(benchmark::kMillisecond)->Iterations(20);

/// Bytes that this process has read by system calls.
double bytesRead()
{
    std::ifstream file("/proc/self/io");
    std::string key;
    double count = 0;
    file >> key >> count;
    return count;
}

void importOfAThousandFiles(benchmark::State& state)
{
    constexpr std::size_t kFiles = 1000, kBytes = 3'000'000;
    const test::ScratchFolder folder;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < kFiles; ++i) {
        files.push_back(folder / (std::to_string(i) + ".jpg"));
        std::ifstream source(std::string(TAMLO_SAMPLES) + "/metadata/full-exif.jpg", std::ios::binary);
        std::ofstream file(files.back(), std::ios::binary);
        file << source.rdbuf() << i;
        file.close();
        std::filesystem::resize_file(files.back(), kBytes); // a hole needs no room
    }
    for (auto _ : state) {
        const double before = bytesRead();
        benchmark::DoNotOptimize(Intake::ingest(files, {}, folder.path()));
        state.counters["MiB_a_file"] = (bytesRead() - before) / kFiles / (1024 * 1024);
    }
}
BENCHMARK(importOfAThousandFiles)->Unit(benchmark::kMillisecond)->Iterations(1);

void idleAutosave(benchmark::State& state)
{
    Session session;
    session.model.saver.adopt(roll());
    bool ended = false;
    session.model.saver.saveProject(session.folder / "roll.tamlo", [&](auto) { ended = true; });
    while (!ended) session.loop.runPosted();
    for (auto _ : state) session.model.saver.autosave();
}
BENCHMARK(idleAutosave)->Unit(benchmark::kMillisecond);

void editOfAll(benchmark::State& state)
{
    Session session;
    session.model.saver.adopt(roll());
    std::vector<FrameID> ids = session.model.selection.visibleIDs();
    std::size_t told = 0;
    Subscription subscription;
    if (state.range(0) == 1)
        subscription = session.model.subscribe(
            ConcernSet::all(), [&](const ChangeSet& change) { told += change.frames.size(); });
    double grade = 0;
    for (auto _ : state) {
        grade = grade == 1 ? 2 : 1;
        session.model.rack.change(ids, [&](ProcessSettings& settings) { settings.options.grade = grade; });
        session.loop.runPosted();
    }
    benchmark::DoNotOptimize(told);
}
BENCHMARK(editOfAll)->Arg(0)->Arg(1)->ArgName("observed")->Unit(benchmark::kMillisecond)->Iterations(20);

/// A knob is dragged on one frame of the roll while everything is observed: 1,000 events a gesture.
void dragOfAKnob(benchmark::State& state)
{
    constexpr int kEvents = 1000;
    Session session;
    session.model.saver.adopt(roll());
    session.model.selection.openFrame(session.model.project().frames[7].id);
    std::size_t told = 0;
    const Subscription subscription =
        session.model.subscribe(ConcernSet::all(), [&](const ChangeSet&) { ++told; });
    ProcessSettings settings = session.model.rack.rackSettings();
    std::size_t gestures = 0;
    for (auto _ : state) {
        session.model.endGesture();
        ++gestures;
        for (int i = 0; i < kEvents; ++i) {
            settings.options.grade = 0.001 * (i + 1) + 1e-6 * static_cast<double>(gestures);
            session.model.rack.setRackSettings(settings);
            session.loop.advance(0.01);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(gestures) * kEvents);
    state.counters["steps_a_gesture"] =
        static_cast<double>(session.model.history().undoStack().size()) / static_cast<double>(gestures);
    benchmark::DoNotOptimize(told);
}
BENCHMARK(dragOfAKnob)->Unit(benchmark::kMillisecond)->Iterations(1);

/// The whole history is walked back and forth at one click in its list.
void throughTheWholeHistory(benchmark::State& state)
{
    Session session;
    session.model.saver.adopt(roll());
    for (unsigned i = 0; i < 200; ++i)
        session.model.marks.setMark(session.model.project().frames[i].id, Mark::selected);
    for (auto _ : state) {
        session.model.undoTo(0);
        session.model.undoTo(200);
    }
}
BENCHMARK(throughTheWholeHistory)->Unit(benchmark::kMillisecond)->Iterations(1);

/// The roll is turned round while a list on screen follows it.
void reverseObserved(benchmark::State& state)
{
    Session session;
    session.model.saver.adopt(roll());
    std::size_t moved = 0;
    const Subscription subscription = session.model.subscribe(
        {Concern::roll}, [&](const ChangeSet& change) { moved += change.rows.size(); });
    for (auto _ : state) {
        session.model.ordering.reverseFrames();
        session.loop.runPosted();
    }
    benchmark::DoNotOptimize(moved);
}
BENCHMARK(reverseObserved)->Unit(benchmark::kMillisecond)->Iterations(10);

/// 200 undo steps: of one frame each, or of a process pasted into all.
void twoHundredSteps(benchmark::State& state)
{
    const bool all = state.range(0) == 1;
    for (auto _ : state) {
        History history;
        Project project = roll();
        const double before = residentBytes();
        for (unsigned step = 0; step < 200; ++step) {
            history.record({"step"}, project, step);
            ProcessSettings process;
            process.options.grade = 0.01 * step;
            const Shared<ProcessSettings> shared = process;
            for (unsigned i = 0; i < (all ? kFrames : 1); ++i)
                project.frames.edit(all ? i : step).process = shared;
        }
        state.counters["MB"] = (residentBytes() - before) / 1e6;
    }
}
BENCHMARK(twoHundredSteps)->Arg(0)->Arg(1)->ArgName("all")->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
