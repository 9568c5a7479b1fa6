#include "ui/kit/kit_accessible.h"

#include "ui/kit/kit_card.h"
#include "ui/kit/kit_choice.h"
#include "ui/kit/kit_knob.h"
#include "ui/kit/kit_progress.h"
#include "ui/kit/kit_shelf.h"

#include <QAccessibleWidget>

namespace tamlo::ui {

namespace {

class KnobNode : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit KnobNode(KitKnob* knob) : QAccessibleWidget(knob, QAccessible::Slider) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? knob().valueText() : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return knob().row().value; }
    void setCurrentValue(const QVariant& value) override
    {
        knob().take(value.toDouble());
        Q_EMIT knob().gestureEnded();
    }
    QVariant maximumValue() const override { return knob().row().high; }
    QVariant minimumValue() const override { return knob().row().low; }
    QVariant minimumStepSize() const override { return knob().row().step; }

private:
    KitKnob& knob() const { return static_cast<KitKnob&>(*widget()); }
};

class ArcNode : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ArcNode(KitArc* arc) : QAccessibleWidget(arc, QAccessible::ProgressBar) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return static_cast<KitArc&>(*widget()).fraction().value_or(0); }
    void setCurrentValue(const QVariant&) override {}
    QVariant maximumValue() const override { return 1.0; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 0.0; }
};

/// A button that opens something, or folds it.
class OpenerNode : public QAccessibleWidget {
public:
    OpenerNode(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role)
    {
        addControllingSignal(QStringLiteral("clicked(bool)"));
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString own = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && own.isEmpty() ? button().text() : own;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override
    {
        if (action == pressAction()) button().click();
    }
    QAccessible::State state() const override
    {
        QAccessible::State out = QAccessibleWidget::state();
        if (const auto* head = qobject_cast<const KitCardHead*>(widget())) {
            out.expandable = true;
            out.expanded = head->isOpen;
            out.collapsed = !head->isOpen;
        } else {
            out.hasPopup = true;
        }
        return out;
    }

private:
    QAbstractButton& button() const { return static_cast<QAbstractButton&>(*widget()); }
};

QAccessibleInterface* nodeOf(const QString&, QObject* object)
{
    if (auto* knob = qobject_cast<KitKnob*>(object)) return new KnobNode(knob);
    if (auto* arc = qobject_cast<KitArc*>(object)) return new ArcNode(arc);
    if (auto* shelf = qobject_cast<KitShelf*>(object)) return new OpenerNode(shelf, QAccessible::ButtonMenu);
    if (auto* head = qobject_cast<KitCardHead*>(object)) return new OpenerNode(head, QAccessible::Button);
    if (auto* card = qobject_cast<KitCard*>(object))
        return new QAccessibleWidget(card, QAccessible::Grouping);
    if (auto* selector = qobject_cast<KitSelector*>(object))
        return new QAccessibleWidget(selector, QAccessible::Grouping);
    if (auto* bar = qobject_cast<KitBar*>(object))
        return new QAccessibleWidget(bar, QAccessible::AlertMessage);
    if (auto* note = qobject_cast<KitNote*>(object)) return new QAccessibleWidget(note, QAccessible::Note);
    return nullptr;
}

} // namespace

void installKitAccessibility()
{
    QAccessible::installFactory(nodeOf);
}

} // namespace tamlo::ui
