#pragma once

#include <QLabel>
#include <QPointer>
#include <QToolButton>
#include <QWidget>

#include "shell/kit/data_control.h"

namespace kit {

// The visible face of a data control: first, previous, next and last
// buttons around its caption.
class NavigationBar : public QWidget {
    Q_OBJECT
public:
    explicit NavigationBar(DataControl& control, QWidget* parent = nullptr);

private:
    void move(void (store::Recordset::*step)());
    QToolButton* button(const QString& arrow, const QString& name,
                        void (store::Recordset::*step)());

    QPointer<DataControl> control_;
    QLabel* caption_;
};

}  // namespace kit
