#include "rosters/form11.h"

#include <QCloseEvent>
#include <QHeaderView>

#include "permits/search_filters.h"
#include "rosters/photo_finder.h"
#include "rosters/photo_preview.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/window_registry.h"

namespace rosters {
namespace {

QLabel* hint(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QPalette red = label->palette();
    red.setColor(QPalette::WindowText, Qt::red);
    label->setPalette(red);
    return label;
}

// A caption and its box, the caption naming the box for assistive
// technology.
QLabel* caption(const QString& text, QWidget* box, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(box);
    box->setAccessibleName(text.section(u':', 0, 0).trimmed());
    return label;
}

}  // namespace

Form11::Form11()
    : Adodc1(QStringLiteral("ORNEK"), QStringLiteral("GÜNDÜZLÜ ÖĞRENCİLER")),
      Adodc2(QStringLiteral("SELECT ORNEK.SINIF From ORNEK GROUP BY ORNEK.SINIF"),
             QStringLiteral("Adodc2")) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("Form11"));
    setWindowTitle(QStringLiteral("Gündüzlü Öğrenci Bilgileri Düzenle"));
    setAccessibleName(windowTitle());
    kit::named(&Adodc1, "Adodc1")->setParent(this);
    kit::named(&Adodc2, "Adodc2")->setParent(this);

    buildSearchFrame();
    Image1 = kit::named(new QLabel(this), "Image1");
    Image1->setAccessibleName(QStringLiteral("Öğrencinin fotoğrafı"));
    Image1->setFrameShape(QFrame::Box);
    Image1->setScaledContents(true);
    Image1->setGeometry(852, 8, 120, 150);
    Label4 = kit::named(
        hint(QStringLiteral("Resim eklemek için \"RESIM\" hücresine çift tıklayınız."), this),
        "Label4");
    Label4->setGeometry(8, 112, 420, 20);
    Label2 = kit::named(hint(QStringLiteral("Eklel: * satırına"), this), "Label2");
    Label2->setGeometry(8, 136, 200, 20);
    Label1 = kit::named(hint(QStringLiteral("Sil: delete"), this), "Label1");
    Label1->setGeometry(220, 136, 200, 20);

    DataGrid1 = kit::named(new kit::DataGrid(this), "DataGrid1");
    DataGrid1->setAccessibleName(QStringLiteral("Gündüzlü öğrenciler"));
    DataGrid1->setColumns(
        {kit::gridColumn(QStringLiteral("SNo"), QStringLiteral("sno"), 600),
         kit::gridColumn(QStringLiteral("TCKimlikNo"), QStringLiteral("TCKimlikNo"), 1700),
         kit::gridColumn(QStringLiteral("ADI"), QStringLiteral("ADI"), 2000),
         kit::gridColumn(QStringLiteral("SOYADI"), QStringLiteral("SOYADI"), 2000),
         kit::gridColumn(QStringLiteral("Numara"), QStringLiteral("Numara"), 900),
         kit::gridColumn(QStringLiteral("SINIF"), QStringLiteral("SINIF"), 900),
         kit::gridColumn(QStringLiteral("CINSIYET"), QStringLiteral("CINSIYET"), 1100),
         kit::gridColumn(QStringLiteral("RESIM"), QStringLiteral("RESIM"), 4500)});
    DataGrid1->setAllowUpdate(true);
    DataGrid1->setAllowAddNew(true);
    DataGrid1->allowDelete = true;
    DataGrid1->setDataSource(&Adodc1);
    DataGrid1->setGeometry(8, 166, 964, 448);
    Adodc1Bar = kit::named(new kit::NavigationBar(Adodc1, this), "Adodc1Bar");
    Adodc1Bar->setGeometry(8, 618, 964, 26);

    DataGrid2 = kit::named(new kit::DataGrid(this), "DataGrid2");
    DataGrid2->setDataSource(&Adodc2);
    DataGrid2->hide();
    Command2 = kit::named(new QPushButton(QStringLiteral("Command2"), this), "Command2");
    Command2->hide();

    kit::on(&Adodc1, &kit::DataControl::moveComplete, this, [this] { Adodc1_MoveComplete(); });
    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    kit::on(Text10, &QLineEdit::textChanged, this, [this] { Text10_Change(); });
    kit::on(Text9, &QLineEdit::textChanged, this, [this] { Text9_Change(); });
    kit::on(Text11, &QLineEdit::textChanged, this, [this] { Text11_Change(); });
    kit::on(Text23, &QLineEdit::textChanged, this, [this] { Text23_Change(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(DataGrid1, &kit::DataGrid::DblClick, this, [this] { DataGrid1_DblClick(); });
    kit::on(DataGrid1, &kit::DataGrid::RowColChange, this, [this] { DataGrid1_RowColChange(); });

    resize(980, 652);
    Resizer1 = new kit::Resizer(this);
    kit::openDataControl(Adodc1);
    kit::openDataControl(Adodc2);
    kit::bare([this] { Form_Load(); });
}

void Form11::buildSearchFrame() {
    Frame3 = kit::named(new QGroupBox(QStringLiteral(" Arama Alanı..."), this), "Frame3");
    Frame3->setGeometry(8, 4, 836, 100);
    Text23 = kit::named(new QLineEdit(Frame3), "Text23");
    Label3 = kit::named(caption(QStringLiteral("T.C. :"), Text23, Frame3), "Label3");
    Text11 = kit::named(new QLineEdit(Frame3), "Text11");
    Label15 = kit::named(caption(QStringLiteral("Okul No  :"), Text11, Frame3), "Label15");
    Combo1 = kit::named(new kit::ComboBox(Frame3), "Combo1");
    Combo1->Sorted = true;
    Combo1->setEditable(true);
    Combo1->setEditText(QStringLiteral("Sınıf seçiniz...."));
    Label14 = kit::named(caption(QStringLiteral("Sınıf :"), Combo1, Frame3), "Label14");
    Text10 = kit::named(new QLineEdit(Frame3), "Text10");
    Label13 = kit::named(caption(QStringLiteral("Ad  :"), Text10, Frame3), "Label13");
    Text9 = kit::named(new QLineEdit(Frame3), "Text9");
    Label12 = kit::named(caption(QStringLiteral("Soyad  :"), Text9, Frame3), "Label12");

    Label3->setGeometry(12, 28, 44, 24);
    Text23->setGeometry(60, 28, 160, 24);
    Label15->setGeometry(240, 28, 70, 24);
    Text11->setGeometry(314, 28, 110, 24);
    Label14->setGeometry(444, 28, 50, 24);
    Combo1->setGeometry(498, 28, 180, 24);
    Label13->setGeometry(12, 64, 44, 24);
    Text10->setGeometry(60, 64, 240, 24);
    Label12->setGeometry(320, 64, 60, 24);
    Text9->setGeometry(384, 64, 240, 24);
}

void Form11::closeEvent(QCloseEvent* event) {
    kit::writePendingEdits(this);
    event->accept();
}

void Form11::Form_Load() {
    Adodc1_MoveComplete();
    Combo1->AddItem(QStringLiteral("Tümü"));
    // The class list's cursor stands on its first row as the window loads.
    store::Recordset& classes = Adodc2.Recordset();
    const long count = classes.recordCount();
    for (long index = 0; index < count; ++index) {
        Combo1->AddItem(kit::displayText(classes.field(std::size_t{0})));
        classes.moveNext();
    }
    // Adding to an empty list chose the first entry; the box still shows
    // its designed text.
    Combo1->setCurrentIndex(-1);
    Combo1->setEditText(QStringLiteral("Sınıf seçiniz...."));
    DataGrid1->verticalHeader()->setDefaultSectionSize(kit::twipsToPixels(180));
}

// The position caption: the current record's number "/" the count under
// the present filter.
void Form11::Adodc1_MoveComplete() {
    const store::Recordset& rows = Adodc1.Recordset();
    Adodc1.setCaption(QString::number(rows.absolutePosition()) + QLatin1Char('/') +
                      QString::number(rows.recordCount()));
}

void Form11::Combo1_Click() {
    kit::skip([this] { permits::classSearch(Adodc1, Combo1->currentText()); });
}

// No error handling: an apostrophe in a name ends the program through the
// run-time error report.
void Form11::Text10_Change() {
    permits::prefixSearch(Adodc1, QStringLiteral("Adi"), Text10->text(),
                          [this] { Command2_Click(); });
}

void Form11::Text9_Change() {
    permits::prefixSearch(Adodc1, QStringLiteral("Soyadi"), Text9->text(),
                          [this] { Command2_Click(); });
}

void Form11::Text11_Change() {
    kit::skip(
        [this] { permits::numberSearch(Adodc1, Text11->text(), [this] { Command2_Click(); }); });
}

void Form11::Text23_Change() {
    kit::skip([this] { permits::identitySearch(Adodc1, Text23->text()); });
}

void Form11::Command2_Click() {
    Adodc1.Refresh();
}

void Form11::DataGrid1_DblClick() {
    if (DataGrid1->Col() == RESIM_KOLONU)
        kit::silentExit([] { shell::showWindow<resimbul>(); });
}

void Form11::DataGrid1_RowColChange() {
    showPhotograph(Image1, DataGrid1->columnText(RESIM_KOLONU));
}

}  // namespace rosters
