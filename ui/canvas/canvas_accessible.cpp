#include "ui/canvas/canvas_accessible.h"

#include "ui/canvas/picture_view.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <mutex>

namespace tamlo::ui {
namespace {

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    if (className != QString::fromLatin1(PictureView::staticMetaObject.className())) return nullptr;
    return new QAccessibleWidget(qobject_cast<QWidget*>(object), QAccessible::Graphic);
}

} // namespace

void installCanvasAccessibility()
{
    static std::once_flag once;
    std::call_once(once, [] { QAccessible::installFactory(makeInterface); });
}

} // namespace tamlo::ui
