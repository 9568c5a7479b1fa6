// KitShelf: the button that tells which film, lens, filter or paper is in and opens its shelf: picture, name,
// and on what ground its numbers stand.
#pragma once

#include <QAbstractButton>
#include <QImage>

namespace tamlo::ui {

class KitShelf : public QAbstractButton {
    Q_OBJECT

public:
    explicit KitShelf(QWidget* parent = nullptr);

    /// kind: "film"; name: of what is chosen; badge: how well grounded, may be empty.
    void setTexts(const QString& kind, const QString& name, const QString& badge);
    void setPicture(const QImage& picture);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString kind_, name_, badge_;
    QImage picture_;
};

} // namespace tamlo::ui
