// ui_looks OUT [PHOTO]: draws the rack and its shelves in their states, in both languages, as PNG files that
// a person looks at.
#include "app/shell/application.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/rack.h"
#include "ui/screens/shelf.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>

#include <chrono>
#include <iostream>

namespace tamlo::ui {
namespace {

class Looks {
public:
    Looks(std::string folder, std::string photo)
        : folder_(std::move(folder)),
          application_(Application::Mode::service, loop_, ProfileStore::shared(), "looks")
    {
        Theme::apply(*qApp);
        canvas_ = new QLabel(&desk_);
        canvas_->setAutoFillBackground(true);
        QPalette dark;
        dark.setColor(QPalette::Window, Theme::surround());
        canvas_->setPalette(dark);
        rack_ = new Rack(application_.model(), &desk_);
        rack_->setShelfHost(canvas_);
        rack_->setScreen(&application_.views().screen());
        auto* row = new QHBoxLayout(&desk_);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(0);
        row->addWidget(canvas_, 1);
        row->addWidget(rack_);
        rack_->setFixedWidth(Theme::rackWidth());
        desk_.resize(1600, 1000);
        desk_.show();
        AppModel& model = application_.model();
        bool added = photo.empty();
        if (!added) model.importer.addFiles({photo}, [&](auto) { added = true; });
        until([&] { return added; });
        if (const auto ids = model.selection.visibleIDs(); !ids.empty())
            model.selection.openFrame(ids.front()), isBare_ = false;
        settle();
    }

    void until(const std::function<bool()>& done)
    {
        const auto ticks = loop_.every(0.01, [] {});
        loop_.runUntil([&] {
            QApplication::processEvents();
            return done();
        });
    }
    void settle()
    {
        const auto begun = std::chrono::steady_clock::now();
        until([&] {
            return (application_.views().screen().image() || isBare_) && application_.views().isSettled() &&
                   std::chrono::steady_clock::now() - begun > std::chrono::milliseconds(400);
        });
        rack_->refresh();
        for (int i = 0; i < 5; ++i) QApplication::processEvents();
    }
    void grab(QWidget& what, const std::string& name)
    {
        for (int i = 0; i < 5; ++i) QApplication::processEvents();
        const std::string lang(Loc::rawText(Loc::current()));
        what.grab().save(qt(folder_ + "/" + name + "_" + lang + ".png"));
    }
    void column(const std::string& name)
    {
        for (const PresetBlock block : PresetSchema::order()) rack_->card(block).setOpen(true);
        for (int i = 0; i < 5; ++i) QApplication::processEvents();
        auto* scroll = rack_->findChild<QScrollArea*>();
        grab(*scroll->widget(), name);
    }
    void set(const std::function<void(ProcessSettings&)>& change)
    {
        ProcessSettings to = application_.model().rack.rackSettings();
        change(to);
        application_.model().rack.setRackSettings(to);
        application_.model().endGesture();
        settle();
    }
    void timeRefresh()
    {
        const auto begun = std::chrono::steady_clock::now();
        constexpr int kTimes = 20;
        for (int i = 0; i < kTimes; ++i) rack_->refresh();
        std::cout
            << "refresh ms: "
            << std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count() /
                   kTimes
            << std::endl;
    }

    void run()
    {
        for (const Loc::Lang lang : {Loc::Lang::en, Loc::Lang::ru}) {
            Loc::setOverride(lang);
            application_.model().lists.rebuildLists();
            rack_->retranslate();
            settle();
            if (lang == Loc::Lang::en) {
                grab(desk_, "1_original");
                set([](ProcessSettings& s) {
                    s.stock = "portra400", s.paper = "color_ra4", s.options.ev = 0.3;
                });
            }
            rack_->card(PresetBlock::light).setOpen(false);
            grab(desk_, "2_develop");
            set([](ProcessSettings& s) {
                s.stock = "trix400", s.paper = "bw_fb_warm", s.lens = "imagon",
                s.options.filterCut = "yellow_8";
                s.options.filterGrad = "grad_nd2_soft", s.options.mat = "double", s.options.table = "oak";
                s.options.border = 0.03, s.options.stampText = "A. Petrov",
                s.options.frameStyle = FrameStyle::wide;
            });
            column("3_silver");
            set([](ProcessSettings& s) { s.stock = "vision3_500t", s.paper = "crt_tv", s.lens = "pinhole"; });
            column("4_tube");
            set([](ProcessSettings& s) {
                s.stock = "polaroid_sx70", s.paper = "", s.options.filterCut.reset();
            });
            column("5_instant");
            set([](ProcessSettings& s) { s.stock = "portra400", s.paper = "", s.lens = "modern_clean"; });
            timeRefresh();
            for (const ShelfKind kind : {ShelfKind::film, ShelfKind::lens, ShelfKind::filter,
                                         ShelfKind::paper, ShelfKind::presets}) {
                const auto begun = std::chrono::steady_clock::now();
                rack_->openShelf(kind);
                std::cout << "open ms: "
                          << std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() -
                                                                       begun)
                                 .count()
                          << std::endl;
                const auto wait = std::chrono::steady_clock::now();
                until([&] {
                    return std::chrono::steady_clock::now() - wait >
                           std::chrono::seconds(kind == ShelfKind::film ? 6 : 3);
                });
                grab(desk_, "6_shelf_" + std::to_string(static_cast<int>(kind)));
            }
            rack_->shelf().askToSave({PresetBlock::film, PresetBlock::print});
            grab(desk_, "7_save");
            rack_->shelf().leave();
        }
        Loc::setOverride(std::nullopt);
    }

private:
    std::string folder_;
    platform::HeadlessLoop loop_;
    Application application_;
    QWidget desk_;
    QLabel* canvas_;
    Rack* rack_;
    bool isBare_ = true;
};

} // namespace
} // namespace tamlo::ui

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc < 2) return 2;
    tamlo::ui::Looks(argv[1], argc > 2 ? argv[2] : "").run();
    return 0;
}
