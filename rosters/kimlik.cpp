#include "rosters/kimlik.h"

#include "rosters/gkimlik.h"
#include "shell/form1.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/window_registry.h"
#include "store/data_error.h"

namespace rosters {

kimlik::kimlik() : ReportWindow(QStringLiteral("Öğrenci Kimlik basımı")) {
    setObjectName(QStringLiteral("kimlik"));
    Label1 = kit::named(new QLabel(QStringLiteral("Sınıf :"), this), "Label1");
    Combo1 = kit::named(new kit::ComboBox(this), "Combo1");
    Combo1->setEditable(true);
    Combo1->setEditText(QStringLiteral("Tümü"));
    Combo1->setAccessibleName(QStringLiteral("Sınıf"));
    Label1->setBuddy(Combo1);
    Command1 = kit::named(new QPushButton(QStringLiteral("GÖSTER"), this), "Command1");
    Command2 = kit::named(new QPushButton(QStringLiteral("DURDUR"), this), "Command2");
    // The row of choices above the viewer, which stands 360 twips down.
    kit::place(Label1, 120, 45, 600, 270);
    kit::place(Combo1, 720, 15, 1800, 330);
    kit::place(Command1, 2640, 15, 1200, 330);
    kit::place(Command2, 3960, 15, 1200, 330);
    pdfTool = arv->addTool(kPdfTool);
    pdfTool->setObjectName(QStringLiteral("pdfTool"));

    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::bare([this] { Form_Load(); });
}

// The main window's class list is walked from its first record and left at
// its end; a list without a class fails on the first move.
void kimlik::Form_Load() {
    Combo1->AddItem(QStringLiteral("Tümü"));
    store::Recordset& classes = shell::instance<shell::Form1>().Adodc1.Recordset();
    classes.moveFirst();
    const long count = classes.recordCount();
    for (long index = 0; index < count; ++index) {
        Combo1->AddItem(kit::displayText(classes.field(std::size_t{0})));
        classes.moveNext();
    }
}

void kimlik::Command1_Click() {
    showReport<gkimlik>();
}

// With no report in the viewer there is nothing to stop; that error is
// passed over like any other.
void kimlik::Command2_Click() {
    kit::skip([this] {
        engine::Report* report = arv->ReportSource();
        if (report == nullptr)
            throw store::DataError("object variable not set");
        report->Stop();
    });
}

}  // namespace rosters
