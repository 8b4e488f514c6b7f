#include "shell/kit/navigation_bar.h"

#include <QHBoxLayout>

#include "shell/kit/message_box.h"

namespace kit {

NavigationBar::NavigationBar(DataControl& control, QWidget* parent)
    : QWidget(parent), control_(&control), caption_(new QLabel(control.Caption(), this)) {
    setAccessibleName(control.Caption());
    caption_->setAlignment(Qt::AlignCenter);
    caption_->setFrameShape(QFrame::StyledPanel);
    connect(&control, &DataControl::captionChanged, caption_,
            [this] { caption_->setText(control_ ? control_->Caption() : QString()); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(
        button(QStringLiteral("|◀"), QStringLiteral("İlk kayıt"), &store::Recordset::moveFirst));
    layout->addWidget(button(QStringLiteral("◀"), QStringLiteral("Önceki kayıt"),
                             &store::Recordset::movePrevious));
    layout->addWidget(caption_, 1);
    layout->addWidget(
        button(QStringLiteral("▶"), QStringLiteral("Sonraki kayıt"), &store::Recordset::moveNext));
    layout->addWidget(
        button(QStringLiteral("▶|"), QStringLiteral("Son kayıt"), &store::Recordset::moveLast));
}

QToolButton* NavigationBar::button(const QString& arrow, const QString& name,
                                   void (store::Recordset::*step)()) {
    auto* button = new QToolButton(this);
    button->setText(arrow);
    button->setAccessibleName(name);
    button->setToolTip(name);
    connect(button, &QToolButton::clicked, this, [this, step] { move(step); });
    return button;
}

// The bar stops at the ends instead of passing them, as the original's
// control does.
void NavigationBar::move(void (store::Recordset::*step)()) {
    if (!control_ || !control_->isOpen())
        return;
    store::Recordset& rows = control_->Recordset();
    try {
        if (rows.recordCount() == 0)
            return;
        (rows.*step)();
        if (rows.eof())
            rows.moveLast();
        if (rows.bof())
            rows.moveFirst();
    } catch (const std::exception& error) {
        MsgBox(QString::fromUtf8(error.what()), 48);
    }
}

}  // namespace kit
