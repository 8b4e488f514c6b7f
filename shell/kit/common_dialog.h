#pragma once

#include <cstdint>

#include <QObject>
#include <QWidget>

namespace kit {

// The original's common dialog control: no window of its own, it shows the
// system's dialogs on request over the window it belongs to and keeps what
// was chosen. Only the colour dialog is used.
class CommonDialog : public QObject {
    Q_OBJECT
public:
    explicit CommonDialog(QWidget* owner);

    // Shows the colour dialog and waits for it. A colour chosen becomes
    // Color; cancelling leaves Color as it stands, as the control does when
    // it is not told to report a cancel as an error.
    void ShowColor();

    // The colour number last chosen, 0 (black) until the first choice.
    std::int32_t Color() const { return color_; }

private:
    QWidget* owner_;
    std::int32_t color_ = 0;
};

}  // namespace kit
