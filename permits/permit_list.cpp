// The main window's permit list: narrowing IZINLER by month, class, number
// or name, and deleting one permit or all in view.

#include <optional>

#include "permits/search_filters.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/vb_number.h"
#include "store/write_scope.h"

namespace shell {
namespace {

std::u16string text(const QString& filter) {
    return filter.toStdU16String();
}

}  // namespace

void Form1::Option1_Click() {
    izinler.Recordset().clearFilter();
    izinler.Refresh();
    DataGrid4->Refresh();
    Label16->setText(QString::number(izinler.Recordset().recordCount()));
}

// Narrows what the record set holds, without reloading it.
void Form1::Option2_Click() {
    const QDate day = today();
    izinler.Recordset().setFilter(text(QStringLiteral("yıl=") + QString::number(day.year()) +
                                       QStringLiteral(" and ") + QStringLiteral("ay=") +
                                       QString::number(day.month())));
    Label16->setText(QString::number(izinler.Recordset().recordCount()));
}

void Form1::Combo3_Click() {
    kit::skip([this] { permits::classSearch(izinler, Combo3->currentText()); });
}

// No error handling: an apostrophe ends the program.
void Form1::Text3_Change() {
    permits::prefixSearch(izinler, QStringLiteral("Adi"), Text3->text(),
                          [this] { Command3_Click(); });
}

void Form1::Text7_Change() {
    permits::prefixSearch(izinler, QStringLiteral("Soyadi"), Text7->text(),
                          [this] { Command3_Click(); });
}

// Unlike Text11, no check that the text is a number.
void Form1::Text4_Change() {
    kit::skip(
        [this] { permits::numberSearch(izinler, Text4->text(), [this] { Command3_Click(); }); });
}

void Form1::Text8_Change() {
    kit::skip([this] { permits::identitySearch(izinler, Text8->text()); });
}

void Form1::Command5_Click() {
    const int answer = kit::MsgBox(QStringLiteral("Seçili kayıt silinsin mi?"), 36);
    kit::silentExit([&] {
        if (answer == kit::vbYes)
            izinler.Recordset().remove();
        // Reloaded for either answer, so a No also drops the filter.
        izinler.Refresh();
        izinler.Refresh();
    });
}

// From the current row on, as many rounds as the filtered count: rows above
// the start stay, and rounds beyond the end fail and are passed over. The
// deletes become durable together, when the last round is done.
void Form1::Command4_Click() {
    const int answer = kit::MsgBox(QStringLiteral("Tüm seçili kayıtlar silinsin mi?"), 36);
    const kit::BusyCursor busy;
    if (answer == kit::vbYes) {
        std::optional<store::WriteScope> scope;
        kit::skip([&] { scope.emplace(izinler.Recordset()); });
        long rounds = 0;
        kit::skip([&] { rounds = izinler.Recordset().recordCount(); });
        for (long round = 0; round < rounds; ++round) {
            kit::skip([&] { izinler.Recordset().remove(); });
            kit::skip([&] { izinler.Recordset().moveNext(); });
        }
        kit::skip([&] {
            if (scope) scope->commit();
        });
    }
    kit::skip([&] { izinler.Refresh(); });
    kit::skip([&] { izinler.Refresh(); });
}

}  // namespace shell
