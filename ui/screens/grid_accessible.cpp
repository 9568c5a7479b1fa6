#include "ui/screens/grid_accessible.h"

#include "ui/screens/grid_view.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>

#include <map>
#include <mutex>

namespace tamlo::ui {
namespace {

/// A row of the list, whichever frame stands there now.
class Item : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    Item(GridView& grid, std::size_t row) : grid_(&grid), row_(row) {}

    bool isValid() const override { return grid_ && row_ < grid_->rows().size(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return grid_ ? grid_->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(grid_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override
    {
        if (!isValid() || kind != QAccessible::Name) return {};
        return grid_->rows().description(row_).replace(QLatin1Char('\n'), QStringLiteral(", "));
    }
    QRect rect() const override
    {
        if (!isValid()) return {};
        const QRect cell = grid_->cellRect(row_);
        return {grid_->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) return state;
        const FrameCell cell = grid_->rows().cell(row_, grid_->hasFocus());
        state.focusable = state.selectable = state.multiSelectable = true;
        state.selected = cell.isSelected;
        state.focused = cell.isCursor && cell.hasFocus;
        state.offscreen = !grid_->viewport()->rect().intersects(grid_->cellRect(row_));
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {setFocusAction(), pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& name) override
    {
        if (isValid()) name == pressAction() ? grid_->openRow(row_) : grid_->selectRow(row_);
    }

private:
    QPointer<GridView> grid_;
    std::size_t row_;
};

class List : public QAccessibleWidget {
public:
    explicit List(GridView* grid) : QAccessibleWidget(grid, QAccessible::List), grid_(*grid) {}
    ~List() override
    {
        for (const auto& [row, id] : items_) QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return static_cast<int>(grid_.rows().size()); }
    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= childCount()) return nullptr;
        auto& id = items_[index];
        if (id == 0)
            id = QAccessible::registerAccessibleInterface(new Item(grid_, static_cast<std::size_t>(index)));
        return QAccessible::accessibleInterface(id);
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        for (const auto& [row, id] : items_)
            if (QAccessible::accessibleInterface(id) == child) return row;
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const auto row = grid_.rowAt(grid_.viewport()->mapFromGlobal(QPoint(x, y)));
        return row ? child(static_cast<int>(*row)) : nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        const auto row = grid_.rows().cursorRow();
        return row && grid_.hasFocus() ? child(static_cast<int>(*row)) : nullptr;
    }

private:
    GridView& grid_;
    mutable std::map<int, QAccessible::Id> items_; ///< made when they are asked for
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* grid = dynamic_cast<GridView*>(object);
    return grid ? new List(grid) : nullptr;
}

} // namespace

void installGridAccessibility()
{
    static std::once_flag once;
    std::call_once(once, [] { QAccessible::installFactory(makeInterface); });
}

void tellCursor(GridView& grid, std::size_t row)
{
    if (!QAccessible::isActive() || !grid.hasFocus()) return;
    QAccessibleEvent event(&grid, QAccessible::Focus);
    event.setChild(static_cast<int>(row));
    QAccessible::updateAccessibility(&event);
}

} // namespace tamlo::ui
