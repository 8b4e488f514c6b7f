// The main window's registration of the current student for this month's
// meals: a copy of the roster row in IZINLER, once per student and month.

#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/vb_number.h"

namespace shell {

// Reads the identity number from the box, not the row: what the screen
// shows decides. Leaves its filter on izinler for the caller to remove.
bool Form1::izinkontrol() {
    store::Recordset& permits = izinler.Recordset();
    permits.clearFilter();
    const QDate day = today();
    permits.setFilter((QStringLiteral("TCKimlikNo=") + kit::plainNumber(kit::Val(Text24->text())) +
                       QStringLiteral(" And yıl=") + QString::number(day.year()) +
                       QStringLiteral(" And ay=") + QString::number(day.month()))
                          .toStdU16String());
    return permits.recordCount() >= 1;
}

void Form1::Command1_Click() {
    // Any failure ends the click silently with what was done so far.
    kit::silentExit([this] {
        izinkontrol();
        if (izinkontrol()) {
            kit::MsgBox(QStringLiteral("Öğrenci daha önce bu ay için kaydedilmiş."), 48);
            izinler.Recordset().clearFilter();
            izinler.Refresh();
            DataGrid4->Refresh();
            Option1->setChecked(true);
            return;
        }
        store::Recordset& permits = izinler.Recordset();
        store::Recordset& student = ornek.Recordset();
        permits.addNew();
        for (const char16_t* name :
             {u"TCKimlikNo", u"Adi", u"Soyadi", u"Sinif", u"cinsiyet", u"resim", u"Numara"}) {
            permits.setField(name, student.field(name));
        }
        permits.setField(u"ay", jet::Value::integer(today().month()));
        permits.setField(u"yıl", jet::Value::integer(today().year()));
        permits.update();

        izinler.Refresh();
        DataGrid4->Refresh();
        Label16->setText(QString::number(permits.recordCount()));

        permits.clearFilter();
        izinler.Refresh();
        DataGrid4->Refresh();
        Option1->setChecked(true);
        Label16->setText(QString::number(permits.recordCount()));
    });
}

}  // namespace shell
