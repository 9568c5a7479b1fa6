#include "ui/kit/kit_choice.h"

#include "ui/kit/theme.h"

#include <QApplication>
#include <QButtonGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <QWheelEvent>

#include <algorithm>

namespace tamlo::ui {

namespace {

constexpr int kSwatch = 12;

QIcon swatchIcon(const QColor& colour)
{
    QPixmap chip(kSwatch, kSwatch);
    chip.fill(Theme::edge());
    QPainter(&chip).fillRect(1, 1, kSwatch - 2, kSwatch - 2, colour);
    return chip;
}

/// One of a row of choices.
class Segment : public QRadioButton {
public:
    using QRadioButton::QRadioButton;

    QSize sizeHint() const override
    {
        const int chip = icon().isNull() ? 0 : kSwatch + Theme::kSmallGap;
        QFont bold = font();
        bold.setBold(true);
        return {QFontMetrics(bold).horizontalAdvance(text()) + 2 * Theme::kGap + chip,
                Theme::controlHeight()};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& at) const override { return rect().contains(at); }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(QPen(isChecked() ? Theme::edge() : Theme::line(), 1));
        painter.setBrush(isChecked() ? Theme::raised() : underMouse() ? Theme::line() : Theme::well());
        painter.drawRoundedRect(frame, Theme::kRadius, Theme::kRadius);
        QFont shown = font();
        shown.setBold(isChecked());
        painter.setFont(shown);
        painter.setPen(isChecked() ? Theme::number() : Theme::dimText());
        QRectF room = frame;
        if (!icon().isNull()) {
            const double left = frame.left() + Theme::kGap;
            icon().paint(&painter,
                         QRectF(left, frame.center().y() - kSwatch / 2.0, kSwatch, kSwatch).toRect());
            room.setLeft(left + kSwatch);
        }
        painter.drawText(room, Qt::AlignCenter, text());
        if (isChecked())
            painter.fillRect(QRectF(frame.left() + 4, frame.bottom() - 2, frame.width() - 8, 2),
                             Theme::accent());
        if (hasFocus()) Theme::drawFocus(painter, rect());
    }
};

} // namespace

KitChoice::KitChoice(QWidget* parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setMaxVisibleItems(24);
    setIconSize({kSwatch, kSwatch});
    connect(this, &QComboBox::activated, this, [this](int at) { Q_EMIT picked(itemData(at).toString()); });
}

void KitChoice::setOptions(const std::vector<KitOption>& options)
{
    const QSignalBlocker quiet(this);
    const QString before = chosen();
    clear();
    QString group;
    for (const KitOption& option : options) {
        if (option.group != group) {
            group = option.group;
            addItem(group);
            auto* head = static_cast<QStandardItemModel*>(model())->item(count() - 1);
            head->setFlags(Qt::NoItemFlags);
            head->setFont(Theme::smallFont());
        }
        addItem(option.swatch ? swatchIcon(*option.swatch) : QIcon(), option.title, option.id);
    }
    setChosen(before);
    updateGeometry();
}

void KitChoice::setChosen(const QString& id)
{
    const QSignalBlocker quiet(this);
    int at = findData(id);
    if (at < 0 && !id.isEmpty()) {
        addItem(id, id);
        at = count() - 1;
    }
    setCurrentIndex(at);
    update();
}

QSize KitChoice::sizeHint() const
{
    int widest = 0;
    for (int i = 0; i < count(); ++i) {
        const int chip = itemIcon(i).isNull() ? 0 : kSwatch + Theme::kSmallGap;
        widest = std::max(widest, fontMetrics().horizontalAdvance(itemText(i)) + chip);
    }
    return {widest + Theme::kGap + 2 * Theme::kInset + Theme::kSmallGap, Theme::controlHeight()};
}

QSize KitChoice::minimumSizeHint() const
{
    constexpr int kLeast = 80;
    return {kLeast, Theme::controlHeight()};
}

void KitChoice::wheelEvent(QWheelEvent* event)
{
    event->ignore(); // it scrolls what the choice stands on
}

void KitChoice::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(underMouse() ? Theme::edge() : Theme::line(), 1));
    painter.setBrush(Theme::raised());
    painter.drawRoundedRect(frame, Theme::kRadius, Theme::kRadius);
    constexpr double kArrow = 4;
    const QPointF at(frame.right() - Theme::kInset, frame.center().y() - kArrow / 2);
    const QColor ink =
        isEnabled() ? Theme::text() : palette().color(QPalette::Disabled, QPalette::WindowText);
    painter.setPen(QPen(ink, 1.2));
    painter.drawPolyline(
        QPolygonF{at + QPointF(-kArrow, 0), at + QPointF(0, kArrow), at + QPointF(kArrow, 0)});
    QRectF room = frame.adjusted(Theme::kGap, 0, -2 * Theme::kInset, 0);
    if (const QIcon chip = itemIcon(currentIndex()); !chip.isNull()) {
        chip.paint(&painter,
                   QRectF(room.left(), room.center().y() - kSwatch / 2.0, kSwatch, kSwatch).toRect());
        room.setLeft(room.left() + kSwatch + Theme::kSmallGap);
    }
    painter.drawText(room, Qt::AlignVCenter,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, static_cast<int>(room.width())));
    if (hasFocus()) Theme::drawFocus(painter, rect());
}

KitSelector::KitSelector(QWidget* parent)
    : QWidget(parent),
      segments_(new QWidget(this)),
      row_(new QHBoxLayout(segments_)),
      group_(new QButtonGroup(this)),
      menu_(new KitChoice(this))
{
    row_->setContentsMargins(0, 0, 0, 0);
    row_->setSpacing(2);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    const auto pick = [this](const QString& id) {
        setChosen(id);
        Q_EMIT picked(id);
    };
    connect(group_, &QButtonGroup::idToggled, this, [this, pick](int at, bool isOn) { // a click or an arrow
        if (isOn) pick(options_[static_cast<std::size_t>(at)].id);
    });
    connect(menu_, &KitChoice::picked, this, pick);
}

void KitSelector::setOptions(const std::vector<KitOption>& options)
{
    if (options == options_) return;
    options_ = options;
    qDeleteAll(group_->buttons());
    for (std::size_t i = 0; i < options.size(); ++i) {
        auto* segment = new Segment(options[i].title, segments_);
        if (options[i].swatch) segment->setIcon(swatchIcon(*options[i].swatch));
        segment->setAccessibleDescription(accessibleName());
        group_->addButton(segment, static_cast<int>(i));
        row_->addWidget(segment, 1);
        segment->show();
    }
    menu_->setOptions(options);
    setChosen(chosen_);
    updateGeometry();
    arrange();
}

void KitSelector::setChosen(const QString& id)
{
    chosen_ = id;
    menu_->setChosen(id);
    const QSignalBlocker quiet(group_);
    group_->setExclusive(false);
    for (std::size_t i = 0; i < options_.size(); ++i)
        group_->button(static_cast<int>(i))->setChecked(options_[i].id == id);
    group_->setExclusive(true);
    arrange();
}

int KitSelector::segmentsWidth() const
{
    int wide = 0;
    for (const QAbstractButton* segment : group_->buttons()) wide += segment->sizeHint().width();
    return wide + row_->spacing() * std::max(0, static_cast<int>(group_->buttons().size()) - 1);
}

void KitSelector::arrange()
{
    menu_->setAccessibleName(accessibleName());
    isMenu_ = segmentsWidth() > width();
    segments_->setGeometry(0, 0, std::max(width(), isMenu_ ? segmentsWidth() : 0), height());
    menu_->setGeometry(rect());
    const QWidget* focus = QApplication::focusWidget();
    const bool hasIt = focus && isAncestorOf(focus);
    QWidget* comes = isMenu_ ? static_cast<QWidget*>(menu_) : segments_;
    QWidget* holds =
        isMenu_ || !group_->checkedButton() ? menu_ : static_cast<QWidget*>(group_->checkedButton());
    comes->show(); // before the other goes, or the focus goes elsewhere
    setFocusProxy(holds);
    if (hasIt && focus != holds) holds->setFocus();
    (isMenu_ ? segments_ : static_cast<QWidget*>(menu_))->hide();
}

void KitSelector::resizeEvent(QResizeEvent*)
{
    arrange();
}

void KitSelector::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateGeometry();
        arrange();
    }
}

QSize KitSelector::sizeHint() const
{
    return {segmentsWidth(), Theme::controlHeight()};
}

QSize KitSelector::minimumSizeHint() const
{
    return menu_->minimumSizeHint();
}

} // namespace tamlo::ui
