#pragma once

#include <cstdint>

#include <QLabel>

namespace kit {

// The original's Label where it is more than a caption: it has a back
// colour given as a colour number, and a Click, which comes when the left
// button is let go over the label it was pressed on.
class Label : public QLabel {
    Q_OBJECT
public:
    explicit Label(QWidget* parent = nullptr);

    // The number is taken as any number given to a colour property: rounded
    // to a Long (std::overflow_error beyond one), then refused with
    // std::invalid_argument unless it is a colour (0 to &HFFFFFF).
    void setBackColor(double number);
    std::int32_t BackColor() const { return backColor_; }

signals:
    void Click();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    std::int32_t backColor_ = 0;
};

}  // namespace kit
