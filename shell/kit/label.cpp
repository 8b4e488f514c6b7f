#include "shell/kit/label.h"

#include <QMouseEvent>

#include "shell/kit/colour_number.h"
#include "shell/kit/vb_number.h"

namespace kit {

Label::Label(QWidget* parent) : QLabel(parent) {
    backColor_ = numberOfColour(palette().color(QPalette::Window));
}

void Label::setBackColor(double number) {
    const std::int32_t colourNumber = CLng(number);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, colourOfNumber(colourNumber));
    setPalette(colours);
    setAutoFillBackground(true);
    backColor_ = colourNumber;
}

// The press is taken so that its release comes to this label too.
void Label::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        event->accept();
    else
        QLabel::mousePressEvent(event);
}

void Label::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        event->accept();
        emit Click();
        return;
    }
    QLabel::mouseReleaseEvent(event);
}

}  // namespace kit
