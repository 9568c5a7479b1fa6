#include "app/shell/live_views.h"
#include "core/image/cancellation.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include "app/shell/app_model.h"

#include <map>
#include <mutex>
#include <thread>

namespace tamlo::test {
namespace {

/// Pictures that tell how they were made: the grade of the process in every pixel.
class Sources {
public:
    FrameStore::Decoders decoders()
    {
        FrameStore::Decoders d;
        d.proxy = [this](const std::filesystem::path& file, WBMode wb) {
            pause();
            if (file.filename() == "bad.jpg") throw TamloError::io("damaged");
            ++proxies;
            return FrameSource{RGBImage(96, 64), {}, fullLong.load(), fullLong * 2 / 3, false, wb, false};
        };
        const auto detail = [this](const std::filesystem::path&, std::int64_t longSide, WBMode) {
            pause();
            if (detailFails) throw TamloError::io("damaged in the middle");
            return RGBImage(longSide > 0 ? longSide : fullLong.load(), 2);
        };
        d.detail = detail;
        d.full = detail;
        return d;
    }
    KeyedRenderer::Render render()
    {
        return [this](const std::string& key, KeyedRenderer::Request request, const auto& shouldCancel) {
            const CancellationScope scope(shouldCancel);
            pause();
            if (key == "frame") std::this_thread::sleep_for(std::chrono::milliseconds(frameMs));
            const auto grade =
                static_cast<std::uint8_t>(request.process ? request.process->options.grade * 10 : 255);
            {
                const std::lock_guard lock(mutex);
                rendered.push_back(key.substr(0, 5));
            }
            const std::int64_t width = std::min(request.inputLong.value_or(2048), std::int64_t{64});
            return ReadyImage{width, 2,
                              std::vector<std::uint8_t>(static_cast<std::size_t>(width * 8), grade)};
        };
    }
    void pause() const
    {
        while (held) {
            cancellationPoint();
            std::this_thread::yield();
        }
    }
    std::size_t count(const std::string& kind)
    {
        const std::lock_guard lock(mutex);
        return static_cast<std::size_t>(std::ranges::count(rendered, kind));
    }

    std::atomic<bool> held{false}, detailFails{false};
    std::atomic<int> proxies{0}, frameMs{0};
    std::atomic<std::int64_t> fullLong{6000};
    std::mutex mutex;
    std::vector<std::string> rendered;
};

class Views : public testing::Test {
protected:
    Views()
    {
        Loc::setOverride(Loc::Lang::en);
        setenv("TAMLO_USER_DIR", folder_.path().c_str(), 1);
        begin();
    }
    ~Views() override
    {
        sources_.held = false;
        model_.reset();
        views_.reset();
        unsetenv("TAMLO_USER_DIR");
        Loc::setOverride(std::nullopt);
    }

    /// The program begins, with what the cache has.
    void begin()
    {
        model_.reset();
        views_.reset();
        views_.emplace(Previews::Config{loop_, store_, &registry_, folder_ / "cache", "1.0",
                                        std::int64_t{8} << 30, sources_.decoders(), sources_.render()});
        model_.emplace(
            AppSeams{loop_, store_, questions_, *views_, clipboard_, volumes_, preferences_, &registry_});
        views_->attach(*model_);
        views_->screen().setFit({3000, 2000}, 1);
    }
    void open(std::initializer_list<std::string> names)
    {
        Project project;
        for (const std::string& name : names) {
            Frame frame;
            frame.id = Uuid::random();
            frame.url = (folder_ / name).string();
            writeFile(frame.url, name);
            frame.fingerprint = Fingerprint::read(frame.url);
            frame.process = ProcessSettings::fresh();
            project.frames.append(frame);
        }
        model_->saver.adopt(project);
    }
    FrameID id(std::size_t place) { return model_->project().frames[place].id; }
    void turn(double grade)
    {
        ProcessSettings settings = model_->rack.rackSettings();
        settings.options.grade = grade;
        model_->rack.setRackSettings(settings);
    }
    /// Runs what is due without letting time pass.
    void settle(const std::function<bool()>& done)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!done()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "it never came";
            loop_.runPosted();
            std::this_thread::yield();
        }
    }
    void settleAll()
    {
        settle([&] {
            loop_.advance(0.05);
            return views_->isSettled();
        });
    }
    int shownGrade() { return screen().image() ? screen().image()->rgba[0] : -1; }
    FrameScreen& screen() { return views_->screen(); }

    ScratchFolder folder_;
    VirtualLoop loop_;
    ProfileStore store_;
    HeadlessQuestions questions_;
    platform::SessionClipboard clipboard_;
    FakeVolumes volumes_;
    MapPreferences preferences_;
    ProjectRegistry registry_{folder_.path()};
    Sources sources_;
    std::optional<LiveViews> views_;
    std::optional<AppModel> model_;
};

TEST_F(Views, TheTiersComeOneAfterTheOther)
{
    open({"a.jpg", "b.jpg", "c.jpg"});
    model_->selection.openFrame(id(0));
    settle([&] { return screen().image() != nullptr; });
    EXPECT_EQ(screen().badge().letter, "P");
    EXPECT_EQ(screen().detailLong(), 2048);
    EXPECT_TRUE(screen().detailPending());
    loop_.advance(0.26);
    settle([&] { return screen().isFine(); });
    EXPECT_EQ(screen().badge().letter, "S");
    EXPECT_EQ(screen().detailLong(), 3072);
    EXPECT_TRUE(screen().arc().has_value());
    loop_.advance(1.01);
    settle([&] { return !screen().detailPending(); });
    EXPECT_EQ(screen().badge().letter, "F");
    EXPECT_EQ(screen().detailLong(), 6000);
    settleAll();
    EXPECT_EQ(sources_.count("fine"), 2u);
    EXPECT_TRUE(views_->previews().frames.source(id(1))) << "the neighbour is read ahead";
    screen().setZoom(2.0);
    settleAll();
    EXPECT_EQ(sources_.count("fine"), 2u) << "everything there is is on screen already";
    model_->selection.backToGrid();
    EXPECT_FALSE(screen().image());
}

TEST_F(Views, ASmallPhotographHasNoTiers)
{
    sources_.fullLong = 1800;
    sources_.frameMs = 20; // however late its proxy comes
    open({"a.jpg"});
    model_->selection.openFrame(id(0));
    settleAll();
    EXPECT_EQ(screen().badge().letter, "F");
    EXPECT_EQ(screen().detailLong(), 1800);
    EXPECT_EQ(sources_.count("fine"), 0u);
}

TEST_F(Views, NothingStaleEverShows)
{
    open({"a.jpg", "b.jpg"});
    model_->selection.openFrame(id(0));
    settleAll();
    const FrameScreen::Image before = screen().image(); // until the first proxy comes
    for (int i = 0; i < 1000; ++i) {
        turn((i % 50) / 10.0);
        loop_.advance(0.01);
        if (i % 100 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (screen().image() != before && screen().isFine()) {
            ADD_FAILURE() << "a tier of an older turn at " << i;
        }
    }
    turn(3.1);
    settleAll();
    EXPECT_EQ(shownGrade(), 31);
    EXPECT_EQ(screen().badge().letter, "F");
    // Another frame, while the old one's tiers run.
    turn(3.2);
    sources_.held = true;
    model_->selection.openFrame(id(1));
    EXPECT_FALSE(screen().image());
    sources_.held = false;
    settleAll();
    EXPECT_EQ(shownGrade(), 20);
    model_->undo();
    settleAll();
    EXPECT_EQ(model_->status().find("Undone") == std::string::npos, false) << model_->status();
}

TEST_F(Views, AFailedTierLeavesTheProxy)
{
    open({"a.jpg", "bad.jpg"});
    sources_.detailFails = true;
    model_->selection.openFrame(id(0));
    settleAll();
    EXPECT_EQ(screen().badge().letter, "P");
    EXPECT_EQ(views_->loads().failureCount(), 1u) << "of the neighbour";
    EXPECT_EQ(model_->linker.state(id(1)), FileState::unreadable);
    EXPECT_TRUE(model_->lastActionFailed());
    turn(1);
    EXPECT_FALSE(model_->lastActionFailed()) << "another action";
    settleAll();
    EXPECT_EQ(shownGrade(), 10) << "the rest goes on";
}

TEST_F(Views, TilesComeFromTheCacheAndNoSourceIsOpened)
{
    open({"a.jpg", "b.jpg", "c.jpg"});
    const Project project = model_->project();
    settleAll();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(views_->tiles().tile(id(i)));
    EXPECT_EQ(sources_.count("thumb"), 3u);
    model_->selection.openFrame(id(0));
    settleAll();
    turn(4);
    settleAll();
    EXPECT_EQ(views_->tiles().tile(id(0))->rgba[0], 40) << "the print of the develop screen";
    EXPECT_EQ(sources_.count("thumb"), 3u);
    const Project changed = model_->project();
    views_->tiles().flush(true);
    sources_.proxies = 0;
    begin();
    model_->saver.adopt(changed);
    settleAll();
    EXPECT_EQ(views_->previews().frames.sourceBytes(), 0) << "not even from the cache";
    EXPECT_NEAR(views_->tiles().tile(id(0))->rgba[0], 40, 1);
    EXPECT_EQ(sources_.proxies, 0);
    EXPECT_EQ(sources_.count("thumb"), 3u);
    views_->tiles().setShowsOriginals(true);
    settleAll();
    EXPECT_EQ(views_->tiles().tile(id(1))->rgba[0], 255);
    EXPECT_EQ(sources_.proxies, 0) << "proxies come from the cache";
}

TEST_F(Views, WhileAKnobTurnsASlowProxyIsReplacedByASmallerOne)
{
    open({"a.jpg"});
    sources_.frameMs = 80;
    model_->selection.openFrame(id(0));
    settleAll();
    turn(1);
    settle([&] { return shownGrade() == 10; });
    EXPECT_EQ(screen().detailLong(), 1024);
    turn(1.5);
    settle([&] { return shownGrade() == 15; });
    EXPECT_EQ(screen().detailLong(), 1024);
    loop_.advance(0.13);
    settle([&] { return screen().detailLong() == 2048; });
}

TEST_F(Views, PeeksAndProofsMakeNoTierAndNoTile)
{
    open({"a.jpg"});
    model_->selection.openFrame(id(0));
    settleAll();
    const std::int64_t shown = screen().shownGen();
    ProcessSettings other = ProcessSettings::fresh();
    other.options.grade = 5;
    int peeked = -1;
    std::size_t proofs = 0, stale = 0;
    screen().peek(other, 512, [&](KeyedRenderer::Outcome outcome) {
        peeked = std::get<KeyedRenderer::Output>(outcome).image->rgba[0];
    });
    settle([&] { return peeked >= 0; });
    EXPECT_EQ(peeked, 50);
    sources_.held = true;
    int ended = 0;
    const auto wantStale = [&](const KeyedRenderer::Outcome& outcome) {
        ++ended;
        EXPECT_TRUE(std::holds_alternative<KeyedRenderer::Stale>(outcome));
    };
    screen().peek(other, 512, wantStale); // the one after it takes its place
    screen().peek(other, 512, wantStale);
    screen().endPeek();
    sources_.held = false;
    settle([&] { return ended == 2; });
    const std::size_t peeks = sources_.count("peek");
    screen().peek(other, 512, wantStale);
    const auto isRendered = [&] { return sources_.count("peek") > peeks; };
    while (!isRendered()) std::this_thread::yield();
    screen().endPeek(); // its answer may be on the way
    settle([&] { return ended == 3; });
    sources_.held = true;
    screen().proof({other, other, other}, 256, [&](std::size_t, const KeyedRenderer::Outcome& outcome) {
        ++proofs;
        stale += std::holds_alternative<KeyedRenderer::Stale>(outcome);
    });
    screen().cancelProof();
    sources_.held = false;
    settle([&] { return proofs == 3; });
    EXPECT_EQ(stale, 3u);
    EXPECT_EQ(screen().shownGen(), shown);
    EXPECT_EQ(shownGrade(), 20);
    screen().setSideB(other);
    screen().setShowsOriginal(true);
    settle([&] { return screen().abImage() && screen().original(); });
    EXPECT_EQ(screen().abImage()->rgba[0], 50);
    EXPECT_EQ(screen().original()->rgba[0], 255);
    screen().setSideB(std::nullopt);
    EXPECT_FALSE(screen().abImage());
}

TEST_F(Views, WhatAProjectUsesIsItsOwnWhenItIsOpenedAndWhenItIsClosed)
{
    const auto owned = [&] {
        std::map<std::string, std::size_t> count;
        for (const auto& [key, entry] : ProxyIndex(folder_ / "cache", loop_.date()).loaded())
            for (const std::string& project : entry.projects) ++count[project];
        return count;
    };
    open({"a.jpg", "b.jpg"}); // without a file: its pictures are nobody's
    settleAll();
    model_->saver.saveProject(folder_ / "roll.tamlo");
    settle([&] { return !model_->saver.hasChanges(); });
    views_->tiles().flush(true);
    begin();
    views_->previews().cache.flush();
    ASSERT_EQ(owned().size(), 1u);
    EXPECT_EQ(owned().begin()->second, 4u) << "two proxies and two tiles";
    ASSERT_TRUE(model_->saver.open(folder_ / "roll.tamlo"));
    settleAll();
    model_->selection.openFrame(id(0));
    turn(3.5);
    settleAll();
    model_.reset();
    views_.reset();
    EXPECT_EQ(owned().begin()->second, 4u) << "the new view's, and the old one's no more";
}

TEST_F(Views, FramesAndProjectsGoWhileEverythingRuns)
{
    for (int round = 0; round < 10; ++round) {
        sources_.held = true;
        open({"a.jpg", "b.jpg", "c.jpg", "d.jpg"});
        model_->selection.openFrame(id(1));
        if (round % 2) turn(1 + round / 10.0);
        model_->removal.remove({id(1)}, false);
        loop_.advance(0.1 * round);
        sources_.held = round % 3 == 0;
        loop_.advance(1);
        if (round % 4 == 3) model_->undo();
    }
    sources_.held = false;
    settleAll();
    EXPECT_FALSE(model_->lastActionFailed()) << model_->status();
    sources_.held = true;
    open({"e.jpg", "f.jpg"}); // and the program ends
}

} // namespace
} // namespace tamlo::test
