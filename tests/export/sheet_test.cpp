// Contact sheets: the geometry that a sheet must keep, what is drawn where, and files that are the same
// twice.
#include "app/export/sheet_file.h"
#include "core/image/tamlo_error.h"
#include "core/io/contact_sheet.h"
#include "core/text/loc.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>

namespace tamlo::test {
namespace {

using namespace SheetExporter;
namespace fs = std::filesystem;
constexpr double kNoon = 1'795'521'600; // 24 November 2026, 12:00 UTC

ReadyImage plain(std::int64_t width, std::int64_t height, std::array<std::uint8_t, 3> rgb)
{
    ReadyImage image{width, height, {}};
    for (std::int64_t i = 0; i < width * height; ++i)
        image.rgba.insert(image.rgba.end(), {rgb[0], rgb[1], rgb[2], 255});
    return image;
}

class SheetTest : public testing::Test {
protected:
    SheetTest() { Loc::setOverride(Loc::Lang::en); }
    ~SheetTest() override { Loc::setOverride(std::nullopt); }

    static Project rollNamed(const std::vector<std::string>& names)
    {
        Project project;
        project.name = "Лето";
        for (const std::string& name : names) {
            Frame frame;
            frame.id = Uuid::random();
            frame.url = "/photos/" + name;
            project.frames.append(frame);
        }
        return project;
    }
    static Project roll(std::size_t frames)
    {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < frames; ++i) names.push_back("IMG_" + std::to_string(i) + ".jpg");
        return rollNamed(names);
    }
    static std::shared_ptr<const ReadyImage> green(const Frame&)
    {
        return std::make_shared<const ReadyImage>(plain(300, 200, {0, 200, 0}));
    }
    /// The colour at a place of a page drawn with ten pixels a point, 0 to 1.
    static platform::PageColor at(const ReadyImage& page, double x, double y)
    {
        const auto px = static_cast<std::int64_t>(x * 10), py = static_cast<std::int64_t>(y * 10);
        const std::uint8_t* p = page.rgba.data() + (py * page.width + px) * 4;
        return {p[0] / 255.0, p[1] / 255.0, p[2] / 255.0};
    }
    static bool near(const platform::PageColor& a, const platform::PageColor& b)
    {
        constexpr double kStep = 1.5 / 255.0;
        return std::abs(a.red - b.red) < kStep && std::abs(a.green - b.green) < kStep &&
               std::abs(a.blue - b.blue) < kStep;
    }
};

TEST_F(SheetTest, LayoutFollowsFromTheColumns)
{
    const struct {
        int cols, rows;
        double cw;
    } cases[] = {{1, 1, 535},       {2, 2, 264},       {3, 3, 521.0 / 3},
                 {6, 7, 500.0 / 6}, {0, 7, 500.0 / 6}, {7, 7, 500.0 / 6}};
    for (const auto& one : cases) {
        const Layout layout = SheetExporter::layout(one.cols);
        EXPECT_EQ(layout.rows, one.rows);
        EXPECT_NEAR(layout.cw, one.cw, 1e-9);
        EXPECT_DOUBLE_EQ(layout.rowH, layout.cw + 16);
    }
    EXPECT_EQ(note(198, 6), "198 frames · 42 per page · 5 pages");
    EXPECT_EQ(note(1, 1), "1 frame · 1 per page · 1 page");
}

TEST_F(SheetTest, APlanKeepsPlacesInTheRoll)
{
    Project project = roll(44);
    project.frames.edit(0).mark = Mark::rejected;
    project.frames.edit(3).mark = Mark::selected;
    EXPECT_EQ(plan(project, 6, false, kNoon).summary, "ORIGINALS");
    project.frames.edit(3).process = ProcessSettings::fresh();
    project.filter = GridFilter::hideRejected;
    const SheetPlan sheet = plan(project, 6, false, kNoon);
    EXPECT_EQ(sheet.pages(), 2u);
    EXPECT_EQ(sheet.cellsOf(2), (std::pair<std::size_t, std::size_t>(42, 43)));
    EXPECT_EQ(sheet.cells[0].number, "02");
    EXPECT_EQ(sheet.cells[2].number, "04 ○");
    EXPECT_EQ(sheet.cells[42].number, "44");
    EXPECT_EQ(sheet.cells[42].name, "IMG_43");
    EXPECT_EQ(sheet.summary, "1 of 43 with settings");
    EXPECT_EQ(sheet.filter, "Not rejected");
    EXPECT_EQ(plan(project, 6, true, kNoon).summary, "ORIGINALS");
    project.filter = GridFilter::selected;
    EXPECT_EQ(plan(project, 6, false, kNoon).summary, "OWN SETTINGS");
    project.name = "a/b: c.";
    EXPECT_EQ(defaultName(project), "a_b_ c_contact.pdf");
    EXPECT_EQ(plan(Project(), 6, false, kNoon).pages(), 0u);
}

TEST_F(SheetTest, APageShowsTilesAndMarks)
{
    Project project = roll(3);
    project.frames.edit(0).mark = Mark::selected;
    project.frames.edit(1).mark = Mark::rejected;
    project.frames.edit(2).exportedAt = Date{1};
    const SheetPlan sheet = plan(project, 6, false, kNoon);
    const FrameID last = project.frames[2].id;
    const ReadyImage page = pageImage(
        sheet, 1, 10, [&](const Frame& frame) { return frame.id == last ? nullptr : green(frame); });
    ASSERT_EQ(page.width, 5950);
    ASSERT_EQ(page.height, 8420);
    const double cw = sheet.layout.cw, left = 30, top = 64, second = left + cw + 7, third = second + cw + 7;
    const platform::PageColor tile{0, 200 / 255.0, 0};
    EXPECT_TRUE(near(at(page, 10, 10), Palette::bg));
    EXPECT_TRUE(near(at(page, left + cw / 2, top + cw / 2), tile));
    EXPECT_TRUE(near(at(page, left + cw / 2, top + 5), Palette::cell)) << "3:2 in a square";
    EXPECT_TRUE(near(at(page, left + 0.7, top + 0.7), Palette::gold));
    EXPECT_TRUE(near(at(page, second + 0.5, top + 0.5), Palette::red));
    EXPECT_TRUE(near(at(page, second + cw - 0.5, top + 0.5), Palette::red));
    const platform::PageColor dimmed = at(page, second + cw / 2, top + cw * 0.3);
    EXPECT_NEAR(dimmed.green, 0.42 * tile.green + 0.58 * Palette::cell.green, 0.01);
    EXPECT_TRUE(near(at(page, third + cw / 2, top + cw / 2), Palette::cell)) << "no tile";
    EXPECT_TRUE(near(at(page, third + cw - 5, top + cw - 5), Palette::ok));
    EXPECT_TRUE(near(at(page, third + cw + 7 + cw / 2, top + cw / 2), Palette::bg)) << "no fourth frame";
}

TEST_F(SheetTest, NoNameRunsIntoItsNeighbour)
{
    std::string longest;
    for (int i = 0; i < 60; ++i) longest += "Ж";
    Project project = rollNamed({"a.jpg", longest + ".jpg"});
    project.frames.edit(1).mark = Mark::selected;
    const auto none = [](const Frame&) { return nullptr; };
    project.name = longest + longest;
    const ReadyImage page = pageImage(plan(project, 6, false, kNoon), 1, 10, none);
    const double cw = SheetExporter::layout(6).cw, caption = 64 + cw + 2;
    bool isBlank = true;
    // Between the two cells, and the four points after the number.
    const double number = 4 * 6.5 * 1233 / 2048 + 3 * 0.6, begin = 30 + cw + 7;
    for (double y = caption; y < caption + 7; y += 0.1) {
        for (double x = 30 + cw + 0.5; x < begin - 0.5; x += 0.1)
            isBlank &= near(at(page, x, y), Palette::bg);
        for (double x = begin + number + 0.2; x < begin + number + 3.5; x += 0.1)
            isBlank &= near(at(page, x, y), Palette::bg);
    }
    EXPECT_TRUE(isBlank);
    bool hasGap = false; // in the header, before the right part
    for (double x = 300; x < 565 && !hasGap; x += 0.5) {
        bool blank = true;
        for (double dx = 0; dx < 3.9 && blank; dx += 0.1)
            for (double y = 30; y < 40 && blank; y += 0.2) blank = near(at(page, x + dx, y), Palette::bg);
        hasGap = blank;
    }
    EXPECT_TRUE(hasGap);
}

TEST_F(SheetTest, FilesAreTheSameTwiceAndWholeOrNotThere)
{
    ScratchFolder folder;
    const Project project = roll(43);
    for (const char* name : {"s.pdf", "s.png", "s.jpg", "s.html"}) {
        Order order{plan(project, 6, false, kNoon), folder / name, std::nullopt, "Tamlo"};
        std::vector<std::size_t> pages;
        EXPECT_TRUE(
            writeSheet(order, green, {[&](std::size_t page, std::size_t) { pages.push_back(page); }, {}}));
        EXPECT_EQ(pages.size(),
                  fs::path(name).extension() == ".pdf" || order.url.extension() == ".html" ? 2u : 1u);
        const std::string bytes = readFile(order.url);
        order.url = folder / (std::string("again") + name);
        EXPECT_TRUE(writeSheet(order, green, {}));
        EXPECT_TRUE(readFile(order.url) == bytes) << name;
        int asked = 0;
        order.url = folder / (std::string("cancelled") + name);
        EXPECT_FALSE(writeSheet(order, green, {{}, [&] { return ++asked > 3; }}));
        EXPECT_FALSE(fs::exists(order.url));
    }
    EXPECT_THROW(write(ReadyImage(), folder / "x.png", 0.9, ""), TamloError);
    write(plain(4, 4, {1, 2, 3}), folder / "x.sheet", 0.9, "");
    EXPECT_TRUE(readFile(folder / "x.sheet").starts_with("\xff\xd8"));
}

TEST_F(SheetTest, AnHtmlPageEscapesItsTexts)
{
    ScratchFolder folder;
    const fs::path url = folder / "deep" / "page.html";
    EXPECT_EQ(ContactSheet::write(url, {{"a <b>", {{"\"q\" & 'r'", "x.jpg"}, {"none", ""}}}}, "T & <U>", 320),
              url);
    const std::string page = readFile(url);
    for (const char* part :
         {"<title>T &amp; &lt;U&gt;</title>", "<h1>T &amp; &lt;U&gt;</h1>", "<h2>a &lt;b&gt;</h2>",
          "<img src=\"x.jpg\" loading=\"lazy\">", "<figcaption>&quot;q&quot; &amp; 'r'</figcaption>",
          "max-width: 320px", "<figure><figcaption>none", "#141414", "class=\"row\"", "gap: 12px"})
        EXPECT_NE(page.find(part), std::string::npos) << part;
    EXPECT_EQ(ContactSheet::dataUrl({'M', 'a'}), "data:image/jpeg;base64,TWE=");
    EXPECT_EQ(ContactSheet::dataUrl({'M', 'a', 'n'}), "data:image/jpeg;base64,TWFu");
}

} // namespace
} // namespace tamlo::test
