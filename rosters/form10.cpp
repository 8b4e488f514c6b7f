#include "rosters/form10.h"

#include <optional>

#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHash>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "shell/form1.h"
#include "shell/kit/app_path.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/kit/vb_number.h"
#include "shell/window_registry.h"
#include "store/data_error.h"
#include "store/number_text.h"
#include "store/write_scope.h"

namespace rosters {
namespace {

using kit::named;

// The fields the position and the single-file saves write, counted from 0
// over ORNEK's columns in their stored order. They differ by one on
// purpose: the file decides which columns they are.
constexpr std::size_t kPositionSaveField = 19;
constexpr std::size_t kSingleSaveField = 20;

// DataGrid1's columns that Command2 reads and writes.
constexpr int kNumaraColumn = 2;
constexpr int kResimColumn = 4;

// A folder and a file name joined where the original joins them with a
// backslash: a folder at the root keeps its own separator too.
QString joined(const QString& folder, const QString& fileName) {
    return QDir::toNativeSeparators(folder) + QDir::separator() + fileName;
}

jet::Value text(const QString& value) {
    return jet::Value::text(value.toStdU16String());
}

// The school number a picture's name starts with: the name up to its first
// blank, read as Val reads it, so "1234 Ali.jpg" and "1234.jpg" give 1234
// and "Ali 1234.jpg" gives 0.
double numberOfPicture(const QString& fileName) {
    // Adding 0 makes a "-0" the 0 it compares equal to, for the lookup.
    return kit::Val(fileName.section(u' ', 0, 0)) + 0.0;
}

// What a grid cell shows, as a number to compare with; nothing for an empty
// cell, since a comparison with Null is never true.
std::optional<double> cellNumber(const QString& shown) {
    const std::optional<store::DecimalNumber> number = store::readNumber(shown.toStdU16String());
    if (!number)
        return std::nullopt;
    return number->toDouble();
}

// A class added to the list as text: Null has no text and fails.
QString classText(const jet::Value& value) {
    if (value.isNull())
        throw store::DataError("Invalid use of Null");
    return kit::displayText(value);
}

}  // namespace

Form10::Form10() {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("Form10"));
    setWindowTitle(QStringLiteral("Resim işlemleri"));
    setAccessibleName(windowTitle());
    placeControls();
    connectHandlers();
    // The data controls open as the window loads, before its Form_Load.
    kit::openDataControl(Adodc1);
    kit::openDataControl(Adodc2);
    resize(1000, 680);
    kit::bare([this] { Form_Load(); });
}

void Form10::placeControls() {
    Combo1 = named(new kit::ComboBox, "Combo1");
    Combo1->setAccessibleName(QStringLiteral("Sınıf"));
    // The list is the classes of the file, filled at load; the design's
    // text stays as the prompt.
    Combo1->setPlaceholderText(QStringLiteral("Sınıf Seçiniz...."));
    Combo1->setMinimumWidth(180);
    Label1 = named(new QLabel, "Label1");
    Label1->setAccessibleName(QStringLiteral("Öğrenci sayısı"));
    Label1->setMinimumWidth(60);
    DataGrid1 = named(new kit::DataGrid, "DataGrid1");
    DataGrid1->setDataSource(&Adodc1);
    DataGrid1->setAccessibleName(QStringLiteral("Öğrenciler"));
    DataGrid1->setColumns(
        {kit::gridColumn(QStringLiteral("Adi"), QStringLiteral("Adi"), 1500),
         kit::gridColumn(QStringLiteral("Soyadi"), QStringLiteral("Soyadi"), 1500),
         kit::gridColumn(QStringLiteral("Numara"), QStringLiteral("Numara"), 900),
         kit::gridColumn(QStringLiteral("Sinif"), QStringLiteral("Sinif"), 750),
         kit::gridColumn(QStringLiteral("resim"), QStringLiteral("resim"), 3000),
         kit::gridColumn(QStringLiteral("yatililik"), QStringLiteral("yatililik"), 1000)});
    DataGrid1->setAllowUpdate(true);

    Dir1 = named(new kit::DirListBox, "Dir1");
    Dir1->setAccessibleName(QStringLiteral("Klasör"));
    File1 = named(new kit::FileListBox(QStringLiteral("*.jpg")), "File1");
    File1->setAccessibleName(QStringLiteral("Resim dosyaları"));
    {
        // The lists start where the design leaves them, in the working
        // folder; only a move from there is a change.
        const QSignalBlocker quiet(Dir1);
        kit::skip([this] { Dir1->setPath(QDir::currentPath()); });
    }
    File1->setPath(QDir::currentPath());
    Text1 = named(new QLineEdit(QStringLiteral("Text1")), "Text1");
    Text1->setAccessibleName(QStringLiteral("Klasör ya da seçili dosya"));
    Text2 = named(new QLineEdit, "Text2");
    Text2->setAccessibleName(QStringLiteral("Dosya sayısı"));
    Text2->setMaximumWidth(80);
    Command1 = named(new QPushButton(QStringLiteral("Kaydet")), "Command1");
    Command1->setAccessibleDescription(QStringLiteral("Dosyaları liste sırasıyla kaydeder"));
    Command2 = named(new QPushButton(QStringLiteral("Sırala ve Kaydet")), "Command2");
    Command3 = named(new QPushButton(QStringLiteral("Tek tek Kaydet")), "Command3");
    List1 = named(new QListWidget, "List1");
    List1->setAccessibleName(QStringLiteral("Eşleşen numaralar"));

    Label2 = named(new QLabel(QStringLiteral("Kimlik Kartında Çıkacak Resim dosyasını seçiniz")),
                   "Label2");
    Text3 = named(new QLineEdit, "Text3");
    Label2->setBuddy(Text3);
    Command4 = named(new QPushButton(QStringLiteral("...")), "Command4");
    Command4->setAccessibleName(QStringLiteral("Resim dosyası seç"));
    Command4->setMaximumWidth(40);
    Command5 = named(new QPushButton(QStringLiteral("Kaydet")), "Command5");
    Command5->setAccessibleDescription(QStringLiteral("Kimlik kartı resmi"));

    auto* students = new QVBoxLayout;
    auto* filter = new QHBoxLayout;
    filter->addWidget(Combo1);
    filter->addWidget(Label1);
    filter->addStretch();
    students->addLayout(filter);
    students->addWidget(DataGrid1, 1);

    auto* pictures = new QVBoxLayout;
    pictures->addWidget(Dir1, 2);
    pictures->addWidget(File1, 3);
    auto* folder = new QHBoxLayout;
    folder->addWidget(Text1, 1);
    folder->addWidget(Text2);
    pictures->addLayout(folder);
    auto* saving = new QHBoxLayout;
    saving->addWidget(Command1);
    saving->addWidget(Command2);
    saving->addWidget(Command3);
    pictures->addLayout(saving);
    pictures->addWidget(List1, 1);

    auto* card = new QHBoxLayout;
    card->addWidget(Label2);
    card->addWidget(Text3, 1);
    card->addWidget(Command4);
    card->addWidget(Command5);

    auto* window = new QGridLayout(this);
    window->addLayout(students, 0, 0);
    window->addLayout(pictures, 0, 1);
    window->addLayout(card, 1, 0, 1, 2);
    window->setColumnStretch(0, 3);
    window->setColumnStretch(1, 2);
}

void Form10::connectHandlers() {
    kit::on(Dir1, &kit::DirListBox::Change, this, [this] { Dir1_Change(); });
    kit::on(File1, &kit::FileListBox::Click, this, [this] { File1_Click(); });
    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    kit::on(Command4, &QPushButton::clicked, this, [this] { Command4_Click(); });
}

void Form10::closeEvent(QCloseEvent* event) {
    // The window goes down: its grid's pending edit is written first, so
    // that the main window's reload sees it too.
    kit::writePendingEdits(this);
    kit::bare([this] { Form_Unload(); });
    event->accept();
}

void Form10::Form_Load() {
    Dir1->setPath(kit::appPath());
    File1->setPath(kit::appPath());
    // From here every failing step is passed over.
    kit::skip([this] { Adodc2.Refresh(); });
    kit::skip([this] { Combo1->clear(); });
    store::Recordset& classes = Adodc2.Recordset();
    kit::skip([&] { classes.setSort(u"SINIF ASC"); });
    kit::skip([&] { classes.moveFirst(); });
    long count = 0;
    kit::skip([&] { count = classes.recordCount(); });
    for (long index = 0; index < count; ++index) {
        kit::skip([&] { Combo1->addItem(classText(classes.field(u"SINIF"))); });
        kit::skip([&] { classes.moveNext(); });
    }
}

// The main window's students are read again, with the paths written here.
void Form10::Form_Unload() {
    if (shell::isLoaded<shell::Form1>())
        shell::instance<shell::Form1>().ornek.Refresh();
}

void Form10::Dir1_Change() {
    File1->setPath(Dir1->Path());
    Text1->setText(joined(File1->Path(), QString()));
    Text2->setText(QString::number(File1->ListCount()));
}

void Form10::File1_Click() {
    Text1->clear();
    Text1->setText(chosenFile());
}

QString Form10::chosenFile() const {
    return joined(File1->Path(), File1->FileName());
}

void Form10::Combo1_Click() {
    const QString chosen = Combo1->currentText();
    store::Recordset& students = Adodc1.Recordset();
    if (chosen == QStringLiteral("Tümü")) {
        kit::skip([&] { students.clearFilter(); });
        kit::skip([this] { Adodc1.Refresh(); });
    } else {
        kit::skip([&] {
            students.setFilter(
                (QStringLiteral(" SINIF =") + QStringLiteral("'") + chosen + QStringLiteral("'"))
                    .toStdU16String());
        });
    }
    kit::skip([&] { Label1->setText(QString::number(students.recordCount())); });
}

// The n-th file to the n-th student: the order of both lists is trusted,
// and only the counts are compared.
void Form10::Command1_Click() {
    store::Recordset& students = Adodc1.Recordset();
    students.moveFirst();
    const long count = students.recordCount();
    if (count != File1->ListCount()) {
        kit::MsgBox(QStringLiteral("Öğrenci sayısı ile fotoğraf sayısı uyuşmuyor!"), 16,
                    QStringLiteral("Hata!"));
        return;
    }
    const kit::BusyCursor busy;
    store::WriteScope scope(students);
    for (long n = 1; n <= count; ++n) {
        File1->setListIndex(static_cast<int>(n - 1));
        students.setField(kPositionSaveField, text(chosenFile()));
        students.update();
        students.moveNext();
    }
    scope.commit();
}

// Each student is paired with every file whose name starts with the
// student's number; the last such file in the list stays, each one leaving
// its number in List1. The grid's edit is written as the record set moves
// on.
//
// The names are read once, not once per student: the pairs, the log and the
// files standing chosen at the end are those of trying every student with
// every file in turn.
void Form10::Command2_Click() {
    store::Recordset& students = Adodc1.Recordset();
    students.moveFirst();
    const long count = students.recordCount();
    const kit::BusyCursor busy;

    const int files = File1->ListCount();
    QHash<double, QList<int>> filesByNumber;
    for (int index = 0; index < files; ++index)
        filesByNumber[numberOfPicture(File1->item(index)->text())].append(index);

    const std::size_t resim = students.ordinalOf(
        DataGrid1->model().columns().at(kResimColumn).dataField.toStdU16String());
    store::WriteScope scope(students);
    for (long student = 0; student < count; ++student) {
        const std::optional<double> numara = cellNumber(DataGrid1->columnText(kNumaraColumn));
        const QList<int> matches = numara ? filesByNumber.value(*numara) : QList<int>();
        for (int index : matches) {
            List1->addItem(kit::plainNumber(*numara));
            students.setField(resim, text(joined(Dir1->Path(), File1->item(index)->text())));
        }
        students.moveNext();
    }
    scope.commit();
    // The loop leaves the last file chosen, as each pair chose its file.
    if (count > 0 && files > 0)
        File1->setListIndex(files - 1);
}

// The chosen file to the current student; with no file chosen, the folder
// alone.
void Form10::Command3_Click() {
    store::Recordset& students = Adodc1.Recordset();
    students.setField(kSingleSaveField, text(chosenFile()));
    students.update();
    DataGrid1->Refresh();
}

// The picture for the identity card is only shown: nothing reads Text3.
void Form10::Command4_Click() {
    kit::silentExit([this] {
        QFileDialog cd1(this);
        cd1.setObjectName(QStringLiteral("cd1"));
        cd1.setFileMode(QFileDialog::ExistingFile);
        cd1.setAcceptMode(QFileDialog::AcceptOpen);
        cd1.setNameFilter(QStringLiteral("RESIM dosyaları (.jpg) (*.jpg*)"));
        // Cancel is an error that ends the handler.
        if (cd1.exec() != QDialog::Accepted || cd1.selectedFiles().isEmpty())
            throw store::DataError("Cancel was selected.");
        Text3->setText(QDir::toNativeSeparators(cd1.selectedFiles().constFirst()));
        Text2->setFocus();
        Text3->setFocus();
    });
}

}  // namespace rosters
