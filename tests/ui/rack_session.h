// A rack over a session whose clock is turned by hand, without a window and without pictures.
#pragma once

#include "tests/shell/session.h"
#include "tests/ui/window_application.h"
#include "ui/kit/theme.h"
#include "ui/screens/rack.h"
#include "ui/screens/shelf.h"

#include <QTest>

namespace tamlo::ui {

class RackTest : public test::SessionTest {
protected:
    RackTest()
    {
        Theme::apply(*qApp);
        open(4);
        model_.selection.openFrame(roll()[1].id);
        host_.resize(1280, 900);
        rack_ = new Rack(model_, &host_);
        rack_->setGeometry(900, 0, Theme::rackWidth(), 900);
        host_.show();
        host_.activateWindow();
        for (const PresetBlock block : PresetSchema::order()) rack_->card(block).setOpen(true);
    }

    void turn()
    {
        loop_.runPosted();
        QCoreApplication::processEvents();
    }
    /// Settings for the frame, and nothing to undo.
    void put(const ProcessSettings& settings)
    {
        model_.adopt(model_.project(), std::nullopt);
        model_.selection.openFrame(roll()[1].id);
        model_.rack.takeSettings(settings);
        model_.endGesture();
        turn();
    }
    template <typename Control>
    Control& control(PresetBlock block, const char* option)
    {
        const RackControl* found = rack_->card(block).control(option);
        EXPECT_TRUE(found) << option;
        return static_cast<Control&>(*found->control());
    }
    const RenderOptions& options() const { return roll()[1].process->options; }

    WindowApplication application_;
    QWidget host_;
    Rack* rack_ = nullptr;
};

} // namespace tamlo::ui
