// CropPanel: what stands beside a crop in place of the rack: ratios, tilt, what the crop takes of the film,
// and the two ways out.
#pragma once

#include "ui/screens/desk.h"

#include <QWidget>

#include <vector>

class QLabel;
class QVBoxLayout;

namespace tamlo::ui {

class CropOverlay;
class KitButton;
class KitKnob;
class KitNote;
class KitSelector;

class CropPanel : public QWidget {
public:
    /// Both outlive this.
    CropPanel(AppModel& model, CropOverlay& overlay, QWidget* parent = nullptr);
    CropPanel(const Desk& desk, CropOverlay& overlay, QWidget* parent = nullptr)
        : CropPanel(desk.model, overlay, parent)
    {}

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void build();
    void buildRatios(QVBoxLayout& column);
    void buildTilt(QVBoxLayout& column);
    void retranslate();
    void follow();

    AppModel& model_;
    CropOverlay& overlay_;
    QLabel *title_, *ratioTitle_, *window_, *gateTitle_;
    std::vector<KitButton*> ratios_; ///< in the order of the ladder
    KitButton *swap_, *expand_, *reset_, *level_, *cancel_, *apply_;
    KitKnob* tilt_;
    KitNote* note_;
    KitSelector* gate_;
    Subscription subscription_;
};

} // namespace tamlo::ui
