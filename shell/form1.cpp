#include "shell/form1.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>
#include <QVBoxLayout>

#include "display/form8.h"
#include "menus/form13.h"
#include "menus/form16.h"
#include "menus/menuhazirla.h"
#include "portal/form12.h"
#include "reports/selectors.h"
#include "rosters/form10.h"
#include "rosters/form11.h"
#include "rosters/frmbilgial.h"
#include "rosters/frmpansiyon.h"
#include "rosters/kimlik.h"
#include "shell/clock.h"
#include "shell/frmabout.h"
#include "shell/frmayar.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/load_data_into_file.h"
#include "shell/months.h"
#include "shell/platform.h"
#include "shell/program_state.h"
#include "shell/update_check.h"
#include "store/data_error.h"

namespace shell {
namespace {

// A text box with the label beside it that names it, for the eye and for
// assistive technology alike.
template <class Box>
Box* labelled(QGridLayout* grid, int row, int column, const QString& caption, Box* box) {
    auto* label = new QLabel(caption);
    label->setBuddy(box);
    grid->addWidget(label, row, column);
    grid->addWidget(box, row, column + 1);
    return box;
}

// The search frame both lists share: a class, a first name, a surname, a
// school number and an identity number, placed in rows of `perRow`. The
// two frames carry the same captions, so each box's accessible name says
// whose search it is ("Öğrenci arama: Ad").
struct SearchFrame {
    QGroupBox* frame;
    kit::ComboBox* sinif;
    QLineEdit* ad;
    QLineEdit* soyad;
    QLineEdit* okulNo;
    QLineEdit* tc;
};

SearchFrame searchFrame(int perRow, const QString& purpose) {
    SearchFrame boxes{new QGroupBox(QStringLiteral(" Arama Alanı...")),
                      new kit::ComboBox,
                      new QLineEdit,
                      new QLineEdit,
                      new QLineEdit,
                      new QLineEdit};
    boxes.frame->setAccessibleName(purpose);
    boxes.sinif->setPlaceholderText(QStringLiteral("Sınıf seçiniz...."));
    auto* grid = new QGridLayout(boxes.frame);
    int place = 0;
    const auto next = [&](const QString& caption, const QString& name, QWidget* box) {
        labelled(grid, place / perRow, 2 * (place % perRow), caption, box);
        box->setAccessibleName(purpose + QStringLiteral(": ") + name);
        ++place;
    };
    next(QStringLiteral("Sınıf  :"), QStringLiteral("Sınıf"), boxes.sinif);
    next(QStringLiteral("Ad  :"), QStringLiteral("Ad"), boxes.ad);
    next(QStringLiteral("Soyad  :"), QStringLiteral("Soyad"), boxes.soyad);
    next(QStringLiteral("Okul No  :"), QStringLiteral("Okul No"), boxes.okulNo);
    next(QStringLiteral("T.C."), QStringLiteral("T.C. kimlik no"), boxes.tc);
    return boxes;
}

kit::BoundTextBox* boundBox(kit::DataControl& control, const QString& field) {
    auto* box = new kit::BoundTextBox;
    box->bind(control, field);
    return box;
}

}  // namespace

Form1::Form1() {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("Form1"));
    buildMenu();

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->addWidget(buildStudentArea());
    layout->addWidget(buildPermitArea(), 1);
    setCentralWidget(central);

    // Hidden controls: they hold values, they are not seen.
    Text12 = new QLineEdit(central);
    Text12->hide();
    Text13 = new kit::BoundTextBox(central);
    Text13->hide();
    DataGrid2 = new kit::DataGrid(central);
    DataGrid2->hide();
    Command2 = new QPushButton(QStringLiteral("Command2"), central);
    Command2->hide();
    Command3 = new QPushButton(QStringLiteral("Command2"), central);
    Command3->hide();

    Text13->bind(Adodc2, QStringLiteral("ID"));
    DataGrid2->setDataSource(&Adodc1);
    DataGrid2->setColumns({{QStringLiteral("SINIF"), QStringLiteral("SINIF")}});
    DataGrid4->setDataSource(&izinler);
    connectHandlers();

    // The data controls open as the window loads, before its Form_Load;
    // the bound boxes fill as they open.
    for (kit::DataControl* control : {&Adodc1, &Adodc2, &ornek, &izinler})
        kit::openDataControl(*control);
    resize(1000, 720);
    Form_Load();
}

void Form1::buildMenu() {
    const auto item = [this](QMenu* parent, const char* name, const QString& caption) {
        QAction* action = parent->addAction(caption);
        action->setObjectName(QString::fromLatin1(name));
        return action;
    };
    QMenu* ayar = menuBar()->addMenu(QStringLiteral("Ayarlar"));
    ayar->setObjectName(QStringLiteral("ayar"));
    ayarlar = item(ayar, "ayarlar", QStringLiteral("Program ayarları"));
    ogrencial = item(ayar, "ogrencial", QStringLiteral("e okul öğrenci bilgilerini al"));
    pyoklama = item(ayar, "pyoklama", QStringLiteral("Yurtsayim öğrenci bilgileri al"));
    gunduzluduzenle =
        item(ayar, "gunduzluduzenle", QStringLiteral("Gündüzlü Öğrenci Bilgileri Düzenle"));
    yatiliduzenle = item(ayar, "yatiliduzenle", QStringLiteral("Yatılı Öğrenci Bilgileri Düzenle"));
    foto = item(ayar, "foto", QStringLiteral("Fotğraf İşlemleri"));
    mnhzirla = item(ayar, "mnhzirla", QStringLiteral("Menü hazırlama"));
    excelal = item(ayar, "excelal", QStringLiteral("Excel den yemek menüsü al"));
    menu = item(ayar, "menu", QStringLiteral("e-okul Yemek Menüsü Girişi"));
    kay = item(ayar, "kay", QStringLiteral("Kayan Yazı"));
    cik = item(ayar, "cik", QStringLiteral("Çıkış"));
    QMenu* rapor = menuBar()->addMenu(QStringLiteral("Raporlar"));
    rapor->setObjectName(QStringLiteral("rapor"));
    kimlikbas = item(rapor, "kimlikbas", QStringLiteral("Öğrenci kimlik basımı"));
    izinliste = item(rapor, "izinliste", QStringLiteral("Aylara göre yemek izni olanlar listesi"));
    yemekliste = item(rapor, "yemekliste", QStringLiteral("Aylara göre yemek yiyenler listesi"));
    ucret = item(rapor, "ucret", QStringLiteral("Aylara göre ücret vermeyenler listesi"));
    gunliste = item(rapor, "gunliste", QStringLiteral("Günlere göre yemek yiyenler listesi"));
    gunucret = item(rapor, "gunucret", QStringLiteral("Günlere göre ücret vermeyenler listesi"));
    ymenulist = item(rapor, "ymenulist", QStringLiteral("Yemek Menüsü"));
    // Switched off at design, without a handler.
    rasyon = item(rapor, "rasyon", QStringLiteral("Puantaj"));
    rasyon->setEnabled(false);
    about = menuBar()->addAction(QStringLiteral("Hakkında"));
    about->setObjectName(QStringLiteral("about"));
}

QWidget* Form1::buildStudentArea() {
    auto* area = new QWidget;
    auto* row = new QHBoxLayout(area);
    row->setContentsMargins(0, 0, 0, 0);

    const SearchFrame students = searchFrame(1, QStringLiteral("Öğrenci arama"));
    Frame3 = students.frame;
    Combo1 = students.sinif;
    Text10 = students.ad;
    Text9 = students.soyad;
    Text11 = students.okulNo;
    Text23 = students.tc;
    row->addWidget(Frame3);

    Frame2 = new QGroupBox(QStringLiteral("Öğrenci Bilgileri"));
    auto* view = new QGridLayout(Frame2);
    Text1 = labelled(view, 0, 0, QStringLiteral("Adı"), boundBox(ornek, QStringLiteral("ADI")));
    Text2 =
        labelled(view, 1, 0, QStringLiteral("Soyadı"), boundBox(ornek, QStringLiteral("SOYADI")));
    Text5 =
        labelled(view, 2, 0, QStringLiteral("Okul NO"), boundBox(ornek, QStringLiteral("Numara")));
    Text6 =
        labelled(view, 3, 0, QStringLiteral("Sınıfı"), boundBox(ornek, QStringLiteral("SINIF")));
    Text24 =
        labelled(view, 4, 0, QStringLiteral("T.C."), boundBox(ornek, QStringLiteral("TCKimlikno")));
    Text24->setAccessibleName(QStringLiteral("Öğrencinin T.C. kimlik no"));
    ornekBar = new kit::NavigationBar(ornek);
    view->addWidget(ornekBar, 5, 0, 1, 2);
    Image1 = new QLabel;
    Image1->setAccessibleName(QStringLiteral("Öğrencinin fotoğrafı"));
    Image1->setFixedSize(120, 150);
    Image1->setFrameShape(QFrame::Box);
    Image1->setScaledContents(true);
    view->addWidget(Image1, 0, 2, 6, 1);
    row->addWidget(Frame2, 1);

    auto* registration = new QVBoxLayout;
    Command1 = new QPushButton(QStringLiteral("İzinlere Aktar"));
    Command1->setMinimumHeight(48);
    registration->addWidget(Command1);
    Label17 =
        new QLabel(QStringLiteral("Okul No alanından \"Enter\" ile hızlı giriş yapabilirsiniz."));
    Label17->setWordWrap(true);
    registration->addWidget(Label17);
    Label4 = new QLabel(QStringLiteral("Kaydedilecek ay"));
    Combo2 = new kit::ComboBox;
    Label4->setBuddy(Combo2);
    registration->addWidget(Label4);
    registration->addWidget(Combo2);
    registration->addStretch();
    row->addLayout(registration);
    return area;
}

QWidget* Form1::buildPermitArea() {
    auto* area = new QWidget;
    auto* column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);

    auto* top = new QHBoxLayout;
    const SearchFrame permits = searchFrame(3, QStringLiteral("İzin listesinde arama"));
    Frame1 = permits.frame;
    Combo3 = permits.sinif;
    Text3 = permits.ad;
    Text7 = permits.soyad;
    Text4 = permits.okulNo;
    Text8 = permits.tc;
    top->addWidget(Frame1, 1);

    auto* choices = new QVBoxLayout;
    Option1 = new QRadioButton(QStringLiteral("Tüm kayıtlar"));
    Option2 = new QRadioButton(QStringLiteral("Bu ayki kayıtlar"));
    Label16 = new QLabel;
    // Read out as the number it shows, with what it counts.
    Label16->setAccessibleDescription(QStringLiteral("Listedeki kayıt sayısı"));
    choices->addWidget(Option1);
    choices->addWidget(Option2);
    choices->addWidget(Label16);
    top->addLayout(choices);

    auto* deletions = new QVBoxLayout;
    Command5 = new QPushButton(QStringLiteral("Sil"));
    Command4 = new QPushButton(QStringLiteral("Tümünü Sil"));
    deletions->addWidget(Command5);
    deletions->addWidget(Command4);
    top->addLayout(deletions);
    column->addLayout(top);

    DataGrid4 = new kit::DataGrid;
    DataGrid4->setColumns({{QStringLiteral("TCKimlikNo"), QStringLiteral("TCKimlikNo"), true, 2000},
                           {QStringLiteral("Adi"), QStringLiteral("Adi"), true, 2200},
                           {QStringLiteral("Soyadi"), QStringLiteral("Soyadi"), true, 2200},
                           {QStringLiteral("Numara"), QStringLiteral("Numara"), true, 1100},
                           {QStringLiteral("Sinif"), QStringLiteral("Sinif"), true, 1100},
                           {QStringLiteral("Cinsiyet"), QStringLiteral("Cinsiyet"), true, 1100},
                           {QStringLiteral("yıl"), QStringLiteral("yıl"), true, 900}});
    column->addWidget(DataGrid4, 1);
    izinlerBar = new kit::NavigationBar(izinler);
    column->addWidget(izinlerBar);
    return area;
}

void Form1::connectHandlers() {
    kit::on(cik, &QAction::triggered, this, [this] { cik_Click(); });
    kit::on(ayarlar, &QAction::triggered, this, [] { showWindow<FRMAYAR>(); });
    kit::on(about, &QAction::triggered, this, [] { showWindow<frmAbout>(); });
    kit::on(ogrencial, &QAction::triggered, this, [this] { ogrencial_Click(); });
    // The lists, each in its own window, shown and not waited for.
    kit::on(kimlikbas, &QAction::triggered, this, [] { showWindow<rosters::kimlik>(); });
    kit::on(izinliste, &QAction::triggered, this, [] { showWindow<reports::Form2>(); });
    kit::on(yemekliste, &QAction::triggered, this, [] { showWindow<reports::Form3>(); });
    kit::on(ucret, &QAction::triggered, this, [] { showWindow<reports::Form5>(); });
    kit::on(gunliste, &QAction::triggered, this, [] { showWindow<reports::Form4>(); });
    kit::on(gunucret, &QAction::triggered, this, [] { showWindow<reports::Form6>(); });
    kit::on(excelal, &QAction::triggered, this, [] { showWindow<menus::Form13>(); });
    kit::on(mnhzirla, &QAction::triggered, this, [] { showWindow<menus::menuhazirla>(); });
    kit::on(ymenulist, &QAction::triggered, this, [] { showWindow<menus::Form16>(); });
    kit::on(menu, &QAction::triggered, this, [] { showWindow<portal::Form12>(); });
    kit::on(kay, &QAction::triggered, this, [] { showWindow<display::Form8>(); });
    kit::on(pyoklama, &QAction::triggered, this, [] { showWindow<rosters::frmBilgial>(); });
    kit::on(foto, &QAction::triggered, this, [] { showWindow<rosters::Form10>(); });
    kit::on(gunduzluduzenle, &QAction::triggered, this, [] { showWindow<rosters::Form11>(); });
    kit::on(yatiliduzenle, &QAction::triggered, this, [] { showWindow<rosters::frmpansiyon>(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });

    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    kit::on(Text10, &QLineEdit::textChanged, this, [this] { Text10_Change(); });
    kit::on(Text9, &QLineEdit::textChanged, this, [this] { Text9_Change(); });
    kit::on(Text11, &QLineEdit::textChanged, this, [this] { Text11_Change(); });
    kit::on(Text23, &QLineEdit::textChanged, this, [this] { Text23_Change(); });
    kit::on(Text5, &QLineEdit::textChanged, this, [this] { Text5_Change(); });
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    Text11->installEventFilter(this);

    kit::on(Option1, &QRadioButton::toggled, this, [this] {
        if (Option1->isChecked())
            Option1_Click();
    });
    kit::on(Option2, &QRadioButton::toggled, this, [this] {
        if (Option2->isChecked())
            Option2_Click();
    });
    kit::on(Combo3, &kit::ComboBox::Click, this, [this] { Combo3_Click(); });
    kit::on(Text3, &QLineEdit::textChanged, this, [this] { Text3_Change(); });
    kit::on(Text7, &QLineEdit::textChanged, this, [this] { Text7_Change(); });
    kit::on(Text4, &QLineEdit::textChanged, this, [this] { Text4_Change(); });
    kit::on(Text8, &QLineEdit::textChanged, this, [this] { Text8_Change(); });
    kit::on(Command5, &QPushButton::clicked, this, [this] { Command5_Click(); });
    kit::on(Command4, &QPushButton::clicked, this, [this] { Command4_Click(); });
    kit::on(DataGrid4, &kit::DataGrid::Click, this, [this] { DataGrid4_Click(); });
}

// The key press of Text11 as the original's KeyPress event gives it: the
// character's code, the key itself not swallowed.
bool Form1::eventFilter(QObject* watched, QEvent* event) {
    if (watched == Text11 && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const int code = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter
                             ? 13
                             : (key->text().isEmpty() ? 0 : key->text().at(0).unicode());
        if (code != 0)
            kit::bare([this, code] { Text11_KeyPress(code); });
    }
    return QMainWindow::eventFilter(watched, event);
}

void Form1::Form_Load() {
    // Every step is skipped when it fails; the window opens all the same.
    kit::skip([] {
        const QString workbook = inAppPath(QStringLiteral("YEMEK_MENUSU.XLS"));
        if (!FileFolderExists(workbook))
            LoadDataIntoFile(101, workbook);
    });
    kit::skip([] {
        const QString architecture = GetOsArchitecture();
        const QString key32 = QStringLiteral(
            "SOFTWARE\\Microsoft\\Internet "
            "Explorer\\Main\\FeatureControl\\FEATURE_BROWSER_EMULATION");
        const QString key64 = QStringLiteral(
            "SOFTWARE\\Wow6432Node\\Microsoft\\Internet "
            "Explorer\\Main\\FeatureControl\\FEATURE_BROWSER_EMULATION");
        if (architecture == QStringLiteral("32")) {
            RegSetDword(RegistryRoot::LocalMachine, key32, QStringLiteral("sofravan.exe"), 11000);
        } else if (architecture == QStringLiteral("64")) {
            RegSetDword(RegistryRoot::LocalMachine, key64, QStringLiteral("sofravan.exe"), 11000);
        }
    });
    kit::skip([this] { setWindowTitle(QStringLiteral("Sofravan ") + versionText()); });
    // The class lists, statement by statement: without Adodc1's rows both
    // still begin with "Tümü".
    for (kit::ComboBox* combo : {Combo1, Combo3}) {
        kit::skip([combo] { combo->addItem(QStringLiteral("Tümü")); });
        long rounds = 0;
        kit::skip([this, &rounds] { rounds = Adodc1.Recordset().recordCount(); });
        for (long round = 0; round < rounds; ++round) {
            // A Null class adds nothing; the round goes on.
            kit::skip([this, combo] {
                const jet::Value name = Adodc1.Recordset().field(std::size_t{0});
                if (name.isNull())
                    throw store::DataError("invalid use of Null");
                combo->addItem(QString::fromStdU16String(name.asText()));
            });
            kit::skip([this] { Adodc1.Recordset().moveNext(); });
        }
        kit::skip([this] { Adodc1.Recordset().moveFirst(); });
    }
    kit::skip([this] { Combo2->addItems(aylar()); });
    kit::skip([this] { Combo2->setCurrentText(ayAdi(today().month())); });
    kit::skip([this] { Label16->setText(QString::number(izinler.Recordset().recordCount())); });
    // The school's name, statement by statement: a failing query still
    // leaves the shared connection closed and released.
    const jet::Value okul = readSchoolName(jet::Value());
    kit::skip([this, &okul] {
        if (okul.isNull())
            throw store::DataError("invalid use of Null");
        Text12->setText(QString::fromStdU16String(okul.asText()));
    });
    kit::skip([this] {
        if (!internetvarmi())
            return;
        if (wb == nullptr) {
            wb = new kit::WebBrowser(centralWidget());
            wb->setObjectName(QStringLiteral("wb"));
            wb->hide();
        }
        guncellemeKontrol(*wb);
    });
}

void Form1::closeEvent(QCloseEvent* event) {
    kit::bare([this] { Form_Unload(); });
    event->accept();
}

void Form1::Form_Unload() {
    if (yenisurumvar)
        Shell(outsideProgram(QStringLiteral("tazele")), {QStringLiteral("-z")},
              WindowStyle::NormalFocus);
    ProgramiKapat();
}

void Form1::cik_Click() {
    ProgramiKapat();
}

// The outside tool that takes the students from e-Okul; it is not waited
// for.
void Form1::ogrencial_Click() {
    Shell(outsideProgram(QStringLiteral("ogrencicek")), {QStringLiteral("-oha")},
          WindowStyle::MinimizedFocus);
}

void Form1::Command2_Click() {
    ornek.Refresh();
}

void Form1::Command3_Click() {
    izinler.Refresh();
}

}  // namespace shell
