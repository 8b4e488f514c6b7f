#include "shell/kit/resizer.h"

#include <cmath>

#include <QEvent>
#include <QGroupBox>
#include <QLayout>

namespace kit {
namespace {

// A container whose children were placed by hand: a frame or a bare panel,
// not a composite control with parts of its own.
bool holdsPlacedControls(const QWidget* widget) {
    if (widget->layout() != nullptr)
        return false;
    if (qobject_cast<const QGroupBox*>(widget) != nullptr)
        return true;
    const char* kind = widget->metaObject()->className();
    return qstrcmp(kind, "QWidget") == 0 || qstrcmp(kind, "QFrame") == 0;
}

// An edge at the designed size, moved to the same proportion of the new one.
int scaled(int edge, double ratio) {
    return static_cast<int>(std::lround(edge * ratio));
}

}  // namespace

Resizer::Resizer(QWidget* window)
    : QObject(window), window_(window), designedSize_(window->size()) {
    if (window->layout() == nullptr)
        remember(window);
    window->installEventFilter(this);
}

void Resizer::remember(QWidget* parent) {
    for (QWidget* control : parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (control->isWindow())
            continue;
        controls_.push_back({control, control->geometry()});
        if (holdsPlacedControls(control))
            remember(control);
    }
}

bool Resizer::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_ && event->type() == QEvent::Resize)
        scaleTo(window_->size());
    return QObject::eventFilter(watched, event);
}

// Both edges of a control are scaled, not its size, so that controls that
// touch at the designed size still touch.
void Resizer::scaleTo(QSize size) {
    if (designedSize_.isEmpty())
        return;
    const double across = static_cast<double>(size.width()) / designedSize_.width();
    const double down = static_cast<double>(size.height()) / designedSize_.height();
    for (const Placed& placed : controls_) {
        if (placed.control.isNull())
            continue;
        const QRect& at = placed.designed;
        const int left = scaled(at.left(), across);
        const int top = scaled(at.top(), down);
        const int right = scaled(at.left() + at.width(), across);
        const int bottom = scaled(at.top() + at.height(), down);
        placed.control->setGeometry(left, top, right - left, bottom - top);
    }
}

}  // namespace kit
