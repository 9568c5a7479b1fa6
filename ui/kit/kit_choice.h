// Choices: KitChoice is a longer list in a menu with groups; KitSelector a few short ones side by side, which
// turns into a KitChoice when the row is too narrow for them in the language in force. The wheel changes
// neither.
#pragma once

#include <QColor>
#include <QComboBox>

#include <optional>
#include <vector>

class QButtonGroup;
class QHBoxLayout;

namespace tamlo::ui {

struct KitOption {
    QString id, title;
    std::optional<QColor> swatch = {};
    QString group = {}; ///< a title before the first of its options
    bool operator==(const KitOption&) const = default;
};

class KitChoice : public QComboBox {
    Q_OBJECT

public:
    explicit KitChoice(QWidget* parent = nullptr);
    void setOptions(const std::vector<KitOption>& options);
    /// Shows what is in force. An id that no option has stands as itself.
    void setChosen(const QString& id);
    QString chosen() const { return currentData().toString(); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void picked(const QString& id);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

class KitSelector : public QWidget {
    Q_OBJECT

public:
    explicit KitSelector(QWidget* parent = nullptr);
    void setOptions(const std::vector<KitOption>& options);
    void setChosen(const QString& id);
    const QString& chosen() const { return chosen_; }
    /// The options don't fit beside each other.
    bool isMenu() const { return isMenu_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void picked(const QString& id);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void arrange();
    int segmentsWidth() const;

    std::vector<KitOption> options_;
    QString chosen_;
    QWidget* segments_;
    QHBoxLayout* row_;
    QButtonGroup* group_;
    KitChoice* menu_;
    bool isMenu_ = false;
};

} // namespace tamlo::ui
