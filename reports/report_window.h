#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include "reports/engine/report.h"
#include "reports/engine/viewer.h"
#include "shell/kit/combo_box.h"
#include "shell/kit/failure_modes.h"
#include "shell/window_registry.h"

namespace reports {

// Drops the default instance of a report class (the original's
// `Set rapor = Nothing`): the object goes with it.
template <class ReportClass>
void clearDefaultInstance() {
    QPointer<ReportClass>& slot = shell::defaultInstanceSlot<ReportClass>();
    delete slot.data();
    slot = nullptr;
}

// What closing a report window, or a report's close request, does to the
// report class: stops the default instance (made for the purpose when there
// is none) and drops it. Every error is ignored.
template <class ReportClass>
void releaseReport() {
    kit::skip([] { shell::instance<ReportClass>().Stop(); });
    kit::skip([] { clearDefaultInstance<ReportClass>(); });
}

// The frame every report window shares: a row of choices at the top and the
// viewer `arv` under it, from left 0, top 360 twips, to the window's edges.
// Closing the window unloads it; its next opening starts anew.
class ReportWindow : public QWidget {
    Q_OBJECT
public:
    explicit ReportWindow(const QString& caption);

    engine::Viewer* arv;

    // Keeps the viewer filling the window under the row of choices; errors
    // are ignored (a window smaller than the viewer's top edge).
    void Form_Resize();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    virtual void Form_Unload() {}

    // A fresh instance of the report class in the viewer, replacing the one
    // it held: the default instance is dropped, the held report unloaded,
    // the new one assigned (which starts it) and fitted to the width.
    template <class ReportClass>
    void showReport() {
        clearDefaultInstance<ReportClass>();
        if (arv->ReportSource() != nullptr) {
            engine::unload(arv->ReportSource());
            arv->setReportSource(nullptr);
        }
        if (arv->ReportSource() == nullptr) {
            arv->setReportSource(new ReportClass(this));
        } else {
            // Kept for the order of the steps; the unload above empties the
            // viewer, so this does not occur.
            engine::Report* held = arv->ReportSource();
            held->Stop();
            held->Restart();
            arv->setReportSource(held);
        }
        arv->setZoom(-1);
    }
};

// The row of choices of a month window: "Ay" and the month combo, and the
// text box through which the report learns the month's number.
struct MonthChoice {
    QLabel* Label1;
    kit::ComboBox* Combo1;
    QLineEdit* Text1;
};
MonthChoice addMonthChoice(ReportWindow* window);

// Form_Load of a month window: the twelve names in calendar order and the
// prompt, which is no entry of the list.
void fillMonthCombo(kit::ComboBox* combo);

// The month's number for its name, by the twelve comparisons; 0 when no
// name matches (the original's empty variant).
int monthNumber(const QString& name);

// The number as Text1 receives it: no leading zero, empty for no match.
QString monthNumberText(const QString& name);

}  // namespace reports
