// The session's contact sheets: tiles are waited for, but not for ever, and what is told meanwhile.
#include "tests/shell/session.h"

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

/// A grid whose tiles arrive when a test says so.
struct TileViews : FrameViews {
    void renderThumbs(const std::vector<FrameID>& ids) override { asked.insert(ids.begin(), ids.end()); }
    bool showsOriginals() const override { return originals; }
    SheetTile sheetTile(const FrameID& id) override
    {
        if (ready.contains(id)) return {SheetTile::State::ready, [this]() -> Image { return read(); }};
        return {asked.contains(id) ? SheetTile::State::coming : SheetTile::State::none, {}};
    }
    using Image = std::shared_ptr<const ReadyImage>;
    Image read() const
    {
        if (isDamaged) return nullptr;
        return std::make_shared<const ReadyImage>(ReadyImage{3, 2, std::vector<std::uint8_t>(24, 200)});
    }

    std::set<FrameID> asked, ready;
    bool originals = false, isDamaged = false;
};

class SheetsTest : public SessionTest {
protected:
    SheetsTest() { openRoll(); }

    void openRoll()
    {
        model_.saver.adopt(rollOf(4));
        for (const Frame& frame : roll()) model_.linker.setFileState(frame.id, FileState::ok);
    }

    fs::path out() const { return userFolder_ / "sheet.pdf"; }
    bool begin(int cols = 3, bool reveal = false)
    {
        end_.reset();
        return model_.sheets.exportSheet(out(), {cols, reveal, std::nullopt},
                                         [this](Sheets::End end) { end_ = end; });
    }
    void arrive(std::size_t place) { tiles_.ready.insert(roll()[place].id); }
    void arriveAll()
    {
        for (std::size_t i = 0; i < roll().size(); ++i) arrive(i);
    }
    void finish()
    {
        settle([&] { return end_.has_value(); });
    }

    TileViews tiles_;
    std::optional<Sheets::End> end_;
    AppModel model_{{loop_, store_, questions_, tiles_, clipboard_, volumes_, preferences_, &registry_,
                     [](const Frame&) { return std::nullopt; }, &desktop_}};
    const Roll& roll() const { return model_.project().frames; }
};

TEST_F(SheetsTest, BeginsAtOnceWhereAllTilesStand)
{
    EXPECT_EQ(model_.sheets.exportSheetPanel().cols, 6);
    EXPECT_EQ(model_.sheets.exportSheetPanel().fileName, "Roll_contact.pdf");
    EXPECT_EQ(model_.sheets.note(3), "4 frames · 9 per page · 1 page");
    arriveAll();
    std::size_t told = 0;
    const Subscription hears = model_.subscribe({Concern::exporting}, [&](const ChangeSet&) { ++told; });
    EXPECT_TRUE(begin(3, true));
    EXPECT_TRUE(model_.sheets.isExportingSheet());
    EXPECT_EQ(model_.sheets.exportProgress(), "Sheet: page 1 of 1…");
    EXPECT_FALSE(begin()) << "one at a time";
    finish();
    EXPECT_EQ(end_, Sheets::End::written);
    EXPECT_EQ(model_.status(), "Contact sheet: sheet.pdf (1 page, 3 per row)");
    EXPECT_TRUE(readFile(out()).starts_with("%PDF-1.5"));
    EXPECT_EQ(desktop_.revealed, std::vector<fs::path>{out()});
    EXPECT_GE(told, 1u);
    EXPECT_EQ(model_.sheets.exportSheetPanel().cols, 3);
    EXPECT_TRUE(model_.sheets.exportSheetPanel().reveal);
    EXPECT_FALSE(model_.sheets.isBusy());
    EXPECT_TRUE(tiles_.asked.empty());
}

TEST_F(SheetsTest, WaitsAsLongAsTilesArrive)
{
    model_.linker.setFileState(roll()[3].id, FileState::missing);
    EXPECT_TRUE(begin());
    EXPECT_EQ(tiles_.asked.size(), 3u) << "nothing is asked of a frame without its original";
    EXPECT_EQ(model_.status(), "Preparing tiles for the sheet: 3");
    EXPECT_TRUE(model_.sheets.isBusy());
    EXPECT_FALSE(model_.sheets.isExportingSheet());
    for (std::size_t place = 0; place < 2; ++place) {
        loop_.advance(55);
        EXPECT_FALSE(end_) << "a new tile begins the wait anew";
        arrive(place);
    }
    EXPECT_EQ(model_.status(), "Preparing tiles for the sheet: 2");
    loop_.advance(59);
    EXPECT_FALSE(model_.sheets.isExportingSheet());
    loop_.advance(3);
    finish();
    EXPECT_EQ(end_, Sheets::End::written) << "the cells of the two that never came stay empty";
}

TEST_F(SheetsTest, EndsWithoutAFile)
{
    EXPECT_TRUE(begin());
    model_.sheets.cancel();
    EXPECT_EQ(end_, Sheets::End::cancelled) << "while it waits";
    EXPECT_EQ(model_.status(), "The sheet was cancelled");

    EXPECT_TRUE(begin());
    openRoll();
    EXPECT_EQ(end_, Sheets::End::cancelled) << "the roll is another one";

    arriveAll();
    EXPECT_TRUE(begin());
    model_.sheets.cancel();
    finish();
    if (end_ == Sheets::End::cancelled) {
        EXPECT_FALSE(fs::exists(out())); // else it was drawn already
    }
    model_.saver.adopt(Project());
    EXPECT_TRUE(begin());
    EXPECT_EQ(end_, Sheets::End::failed);
    EXPECT_TRUE(model_.lastActionFailed());
    EXPECT_EQ(model_.status(), "The sheet could not be assembled");
}

TEST_F(SheetsTest, FaultsAreToldAndPhotographsStay)
{
    arriveAll();
    tiles_.isDamaged = true;
    EXPECT_TRUE(begin());
    finish();
    EXPECT_EQ(end_, Sheets::End::written) << "damaged tiles leave their cells empty";
    EXPECT_EQ(model_.sheets.emptyCells().size(), 4u);
    const fs::path no = userFolder_ / "no" / "x.pdf";
    EXPECT_TRUE(model_.sheets.exportSheet(no, {}, [this](Sheets::End end) { end_ = end; }));
    end_.reset();
    finish();
    EXPECT_EQ(end_, Sheets::End::failed);
    EXPECT_TRUE(model_.status().starts_with("The sheet could not be written: ")) << model_.status();

    writeFile(out(), "a photograph");
    Project project = model_.project();
    project.frames.edit(0).url = out().string();
    model_.saver.adopt(std::move(project));
    arriveAll();
    EXPECT_TRUE(begin());
    finish();
    EXPECT_EQ(end_, Sheets::End::failed);
    EXPECT_EQ(readFile(out()), "a photograph");
}

} // namespace
} // namespace tamlo::test
