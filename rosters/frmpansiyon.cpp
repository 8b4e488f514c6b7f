#include "rosters/frmpansiyon.h"

#include <QCloseEvent>

#include "rosters/form11.h"
#include "rosters/photo_finder.h"
#include "rosters/photo_preview.h"
#include "shell/kit/app_path.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"

namespace rosters {
namespace {

QLabel* caption(const QString& text, QWidget* box, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(box);
    box->setAccessibleName(text.section(u':', 0, 0).trimmed());
    return label;
}

}  // namespace

frmpansiyon::frmpansiyon()
    : Adodc1(QStringLiteral("Pansiyon"), QStringLiteral("Kayıtlı Öğrenciler")) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("frmpansiyon"));
    setWindowTitle(QStringLiteral("Yatılı Öğrenci Bilgileri Düzenle"));
    setAccessibleName(windowTitle());
    kit::named(&Adodc1, "Adodc1")->setParent(this);

    buildSearchFrame();
    Image1 = kit::named(new QLabel(this), "Image1");
    Image1->setAccessibleName(QStringLiteral("Öğrencinin fotoğrafı"));
    Image1->setFrameShape(QFrame::Box);
    Image1->setScaledContents(true);
    Image1->setGeometry(864, 8, 120, 150);
    Label2 = kit::named(new QLabel(this), "Label2");
    Label2->setAccessibleName(QStringLiteral("Seçili öğrenci sayısı"));
    QFont bold = Label2->font();
    bold.setBold(true);
    Label2->setFont(bold);
    Label2->setGeometry(8, 112, 300, 20);
    Label1 = kit::named(new QLabel(QStringLiteral("Label1"), this), "Label1");
    Label1->setAccessibleName(QStringLiteral("Seçili sütun"));
    Label1->setGeometry(320, 112, 80, 20);
    Label5 = kit::named(
        new QLabel(QStringLiteral("Resim eklemek için RESİM hücresine çift tıkla."), this),
        "Label5");
    QPalette red = Label5->palette();
    red.setColor(QPalette::WindowText, Qt::red);
    Label5->setPalette(red);
    Label5->setGeometry(8, 138, 380, 20);
    Label3 = kit::named(new QLabel(QStringLiteral("Sil: delete"), this), "Label3");
    Label3->setGeometry(420, 138, 120, 20);
    Label4 = kit::named(new QLabel(QStringLiteral("Ekle: * satırına"), this), "Label4");
    Label4->setGeometry(560, 138, 160, 20);

    TDBGrid1 = kit::named(new kit::DataGrid(this), "TDBGrid1");
    TDBGrid1->setAccessibleName(QStringLiteral("Yatılı öğrenciler"));
    kit::GridColumn cins = kit::gridColumn(QStringLiteral("CINS"), QStringLiteral("CINSIYET"), 800);
    cins.valueItems = {{QStringLiteral("K"), QStringLiteral("KIZ")},
                       {QStringLiteral("E"), QStringLiteral("ERKEK")}};
    TDBGrid1->setColumns(
        {kit::gridColumn(QStringLiteral("PANSIYONNO"), QStringLiteral("PANSIYONNO"), 1400),
         kit::gridColumn(QStringLiteral("ADI"), QStringLiteral("ADI"), 1500),
         kit::gridColumn(QStringLiteral("SOYADI"), QStringLiteral("SOYADI"), 1500),
         kit::gridColumn(QStringLiteral("ODA_NO"), QStringLiteral("A_Ogr_Oda_No"), 900), cins,
         kit::gridColumn(QStringLiteral("OKUL_NO"), QStringLiteral("A_Ogr_Okul_No"), 1000),
         kit::gridColumn(QStringLiteral("BİNA_NO"), QStringLiteral("A_Ogr_Bina_No"), 1000),
         kit::gridColumn(QStringLiteral("RESIM"), QStringLiteral("RESIM"), 2200),
         kit::gridColumn(QStringLiteral("OKUL"), QStringLiteral("OKUL"), 1500),
         kit::gridColumn(QStringLiteral("SINIF"), QStringLiteral("SINIF"), 800),
         kit::gridColumn(QStringLiteral("TC"), QStringLiteral("TC"), 1400)});
    // Cells can be corrected; rows are neither added nor deleted here,
    // whatever the hint labels say.
    TDBGrid1->setAllowUpdate(true);
    TDBGrid1->setAllowAddNew(false);
    TDBGrid1->allowDelete = false;
    TDBGrid1->setDataSource(&Adodc1);
    TDBGrid1->setGeometry(8, 166, 976, 448);
    Adodc1Bar = kit::named(new kit::NavigationBar(Adodc1, this), "Adodc1Bar");
    Adodc1Bar->setGeometry(8, 618, 976, 26);

    const auto onChecked = [this](QRadioButton* option, void (frmpansiyon::*handler)()) {
        kit::on(option, &QRadioButton::toggled, this, [this, option, handler] {
            if (option->isChecked())
                (this->*handler)();
        });
    };
    onChecked(Option1, &frmpansiyon::Option1_Click);
    onChecked(Option2, &frmpansiyon::Option2_Click);
    onChecked(Option3, &frmpansiyon::Option3_Click);
    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    kit::on(Text10, &QLineEdit::textChanged, this, [this] { Text10_Change(); });
    kit::on(Text9, &QLineEdit::textChanged, this, [this] { Text9_Change(); });
    kit::on(Text11, &QLineEdit::textChanged, this, [this] { Text11_Change(); });
    kit::on(TDBGrid1, &kit::DataGrid::DblClick, this, [this] { TDBGrid1_DblClick(); });
    kit::on(TDBGrid1, &kit::DataGrid::RowColChange, this, [this] { TDBGrid1_RowColChange(); });
    kit::on(&Adodc1, &kit::DataControl::willChangeRecord, this,
            [this] { TDBGrid1_BeforeUpdate(); });

    resize(992, 652);
    Resizer1 = new kit::Resizer(this);
    kit::openDataControl(Adodc1);
    kit::bare([this] { Form_Load(); });
}

void frmpansiyon::buildSearchFrame() {
    Frame3 = kit::named(new QGroupBox(QStringLiteral(" Arama Alanı..."), this), "Frame3");
    Frame3->setGeometry(8, 4, 848, 100);
    Option1 = kit::named(new QRadioButton(QStringLiteral("Tümü"), Frame3), "Option1");
    Option2 = kit::named(new QRadioButton(QStringLiteral("Kız"), Frame3), "Option2");
    Option3 = kit::named(new QRadioButton(QStringLiteral("Erkek"), Frame3), "Option3");
    Text11 = kit::named(new QLineEdit(Frame3), "Text11");
    Label15 = kit::named(caption(QStringLiteral("Okul No  :"), Text11, Frame3), "Label15");
    Combo1 = kit::named(new kit::ComboBox(Frame3), "Combo1");
    Combo1->Sorted = true;
    Combo1->setEditable(true);
    Combo1->setEditText(QStringLiteral("Oda no seçiniz...."));
    Label14 = kit::named(caption(QStringLiteral("Oda No"), Combo1, Frame3), "Label14");
    Text10 = kit::named(new QLineEdit(Frame3), "Text10");
    Label13 = kit::named(caption(QStringLiteral("Ad  :"), Text10, Frame3), "Label13");
    Text9 = kit::named(new QLineEdit(Frame3), "Text9");
    Label12 = kit::named(caption(QStringLiteral("Soyad  :"), Text9, Frame3), "Label12");

    Option1->setGeometry(12, 28, 80, 24);
    Option2->setGeometry(12, 52, 80, 24);
    Option3->setGeometry(12, 76, 80, 20);
    Label15->setGeometry(110, 28, 70, 24);
    Text11->setGeometry(184, 28, 110, 24);
    Label14->setGeometry(314, 28, 56, 24);
    Combo1->setGeometry(374, 28, 180, 24);
    Label13->setGeometry(110, 64, 44, 24);
    Text10->setGeometry(184, 64, 240, 24);
    Label12->setGeometry(444, 64, 60, 24);
    Text9->setGeometry(508, 64, 240, 24);
}

void frmpansiyon::closeEvent(QCloseEvent* event) {
    kit::writePendingEdits(this);
    event->accept();
}

void frmpansiyon::Form_Load() {
    // The one connection string assigned at run time. No Refresh follows,
    // so the record set opened as the window loaded goes on serving it.
    Adodc1.setConnectionString(QStringLiteral("Microsoft.Jet.OLEDB.4.0;Data Source=") +
                               kit::inAppPath(QStringLiteral("kvl.mdb")) +
                               QStringLiteral(";Persist Security Info=True;Jet OLEDB:database "
                                              "Password=") +
                               QString::fromLatin1(kit::kDatabasePassword));
    writeCount();
    Option1->setChecked(true);
}

void frmpansiyon::writeCount() {
    Label2->setText(QStringLiteral("Seçili öğrenci sayısı : ") +
                    QString::number(Adodc1.Recordset().recordCount()));
}

Sex frmpansiyon::chosenSex() const {
    if (Option2->isChecked())
        return Sex::Girls;
    if (Option3->isChecked())
        return Sex::Boys;
    return Sex::All;
}

void frmpansiyon::applyFilter(const QString& fragment) {
    const QString filter = boarderFilter(fragment, chosenSex());
    if (filter.isEmpty())
        Adodc1.Recordset().clearFilter();
    else
        Adodc1.Recordset().setFilter(filter.toStdU16String());
}

void frmpansiyon::Option1_Click() {
    Adodc1.Recordset().clearFilter();
    TDBGrid1->setDataSource(&Adodc1);
    writeCount();
    odalistesi(Sex::All);
}

// Every failing step is passed over.
void frmpansiyon::Option2_Click() {
    kit::skip([this] { Adodc1.Recordset().setFilter(u" CINSIYET= 'K'"); });
    kit::skip([this] { writeCount(); });
    kit::skip([this] { odalistesi(Sex::Girls); });
}

void frmpansiyon::Option3_Click() {
    Adodc1.Recordset().setFilter(u" CINSIYET= 'E'");
    writeCount();
    odalistesi(Sex::Boys);
}

// The rooms through the shared connection, opened and let go here.
void frmpansiyon::odalistesi(Sex sex) {
    Combo1->clear();
    if (!shell::baglanti)
        shell::baglanti = std::make_unique<store::Connection>();
    shell::baglanti->Open(kit::absoluteConnectionString(QStringLiteral("KVL.mdb")).toStdString());
    if (!shell::kayit)
        shell::kayit = std::make_unique<store::Recordset>();
    shell::kayit->open(roomListQuery(sex).toStdU16String(), *shell::baglanti,
                       store::CursorType::Keyset, store::LockType::Optimistic);
    Combo1->AddItem(QStringLiteral("Tümü"));
    const long count = shell::kayit->recordCount();
    for (long index = 0; index < count; ++index) {
        Combo1->AddItem(kit::displayText(shell::kayit->field(u"A_Ogr_Oda_No")));
        shell::kayit->moveNext();
    }
    // The box keeps showing what it showed; no room is chosen for the user.
    Combo1->setCurrentIndex(-1);
    Combo1->setEditText(QStringLiteral("Oda no seçiniz...."));
    shell::kayit->close();
    shell::baglanti->Close();
    shell::kayit.reset();
    shell::baglanti.reset();
}

void frmpansiyon::Combo1_Click() {
    applyFilter(roomFragment(Combo1->currentText()));
    writeCount();
}

void frmpansiyon::Text10_Change() {
    applyFilter(firstNameFragment(Text10->text()));
    writeCount();
}

void frmpansiyon::Text9_Change() {
    applyFilter(surnameFragment(Text9->text()));
    writeCount();
}

void frmpansiyon::Text11_Change() {
    applyFilter(schoolNumberFragment(Text11->text()));
    writeCount();
}

void frmpansiyon::TDBGrid1_DblClick() {
    const int column = TDBGrid1->Col();
    Label1->setText(QString::number(column));
    if (column == RESIM_KOLONU)
        kit::silentExit([] { shell::showWindow<resimbul2>(); });
}

void frmpansiyon::TDBGrid1_RowColChange() {
    showPhotograph(Image1, TDBGrid1->columnText(RESIM_KOLONU));
}

// Girls live in building B, everybody else in A, whatever was typed into
// BİNA_NO.
void frmpansiyon::TDBGrid1_BeforeUpdate() {
    store::Recordset& rows = Adodc1.Recordset();
    const jet::Value sex = rows.field(u"CINSIYET");
    const bool girl = sex.kind() == jet::Value::Kind::Text && sex.asText() == u"K";
    rows.setField(u"A_Ogr_Bina_No", jet::Value::text(girl ? u"B" : u"A"));
}

}  // namespace rosters
