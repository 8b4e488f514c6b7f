#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QVector>
#include <QWidget>

namespace kit {

// The original's resizer control: it takes the window's controls as they
// stand at the window's designed size, and whenever the window is resized
// places every control at the same proportions of the new size. Fonts keep
// their size. Controls inside a plain container (a frame, a panel) scale
// with it; controls a layout manages, and the parts of a composite control
// (a grid's scroll bars), are left to their owner.
//
// REQUIRES: the controls are placed and the window has its designed size
// when the resizer is made. Controls added later are not scaled.
class Resizer : public QObject {
    Q_OBJECT
public:
    explicit Resizer(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Placed {
        QPointer<QWidget> control;
        QRect designed;  // in its parent, at the window's designed size
    };

    void remember(QWidget* parent);
    void scaleTo(QSize size);

    QWidget* window_;
    QSize designedSize_;
    QVector<Placed> controls_;
};

}  // namespace kit
