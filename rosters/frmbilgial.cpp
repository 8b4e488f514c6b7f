#include "rosters/frmbilgial.h"

#include <array>
#include <stdexcept>

#include <QDir>
#include <QSignalBlocker>

#include "rosters/roster_backup.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/platform.h"
#include "shell/program_state.h"
#include "store/connection.h"
#include "store/recordset.h"
#include "store/source.h"

namespace rosters {
namespace {

// The roll-call program's file: its own password, not the school's. It is
// opened for reading alone, so nothing here ever writes the other program's
// file.
QString rollCallConnectionString(const QString& path) {
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + path +
           QStringLiteral(";Persist Security Info=True;Jet OLEDB:database Password=HtRvZpSw2019") +
           QStringLiteral(";Mode=Read");
}

// The day students' columns copied by name, in the order they are assigned.
constexpr std::array<std::u16string_view, 9> kOrnekColumns = {u"TCKimlikNo", u"Adi",   u"Soyadi",
                                                              u"Numara",     u"Sinif", u"Cinsiyet",
                                                              u"Seviye",     u"sno",   u"resim"};

// The school's file under baglanti, or null when baglantiac could not open it.
jet::Database* schoolDatabase() {
    if (!shell::baglanti || !shell::baglanti->isOpen())
        return nullptr;
    auto* file = dynamic_cast<store::JetSource*>(shell::baglanti->source().get());
    return file != nullptr ? &file->database() : nullptr;
}

// A statement that returns no rows, run as the import runs them: by opening
// kayit with it, which leaves it closed; then kayit is cleared.
void runOnKayit(std::u16string_view statement) {
    shell::kayit = std::make_unique<store::Recordset>();
    shell::kayit->open(statement, *shell::baglanti);
    shell::kayit.reset();
}

void openBoth(std::u16string_view query) {
    shell::kayit = std::make_unique<store::Recordset>();
    shell::kayit->open(query, *shell::baglanti);
    shell::kayit2 = std::make_unique<store::Recordset>();
    shell::kayit2->open(query, *shell::baglanti2);
}

}  // namespace

frmBilgial::frmBilgial() {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Yurtsayim program klasörü seç"));
    setAccessibleName(windowTitle());
    QFont bold = font();
    bold.setBold(true);

    Text1 = new QLineEdit(this);
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->setAccessibleName(QStringLiteral("Yurtsayim veri tabanı"));
    Text1->setGeometry(8, 8, 464, 24);
    Drive1 = new kit::DriveListBox(this);
    Drive1->setObjectName(QStringLiteral("Drive1"));
    Drive1->setAccessibleName(QStringLiteral("Sürücü"));
    Drive1->setGeometry(8, 40, 260, 26);
    Dir1 = new kit::DirListBox(this);
    Dir1->setObjectName(QStringLiteral("Dir1"));
    Dir1->setAccessibleName(QStringLiteral("Klasör"));
    Dir1->setGeometry(8, 72, 260, 200);
    Label1 = new QLabel(this);
    Label1->setObjectName(QStringLiteral("Label1"));
    Label1->setAccessibleName(QStringLiteral("Veri tabanı durumu"));
    Label1->setFont(bold);
    Label1->setWordWrap(true);
    Label1->setGeometry(280, 72, 192, 48);
    Command2 = new QPushButton(QStringLiteral("Bilgileri al"), this);
    Command2->setObjectName(QStringLiteral("Command2"));
    Command2->setFont(bold);
    Command2->setGeometry(280, 128, 192, 36);
    Command2->setEnabled(false);

    // Below the window's visible edge in the original: nobody sees them.
    File1 = new kit::FileListBox(QStringLiteral("kvl.mdb"), this);
    File1->setObjectName(QStringLiteral("File1"));
    File1->setAccessibleName(QStringLiteral("Veri tabanı dosyası"));
    File1->hide();
    Combo1 = new kit::ComboBox(this);
    Combo1->setObjectName(QStringLiteral("Combo1"));
    Combo1->setAccessibleName(QStringLiteral("Sayfa adı"));
    Combo1->setEditable(true);
    Combo1->setEditText(QStringLiteral("Sayfa adı seçiniz"));
    Combo1->hide();
    Command1 = new QPushButton(QStringLiteral("Command1"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command1->hide();

    // As designed, both lists stand on the working folder, which is the
    // program's, and nothing is chosen yet.
    kit::skip([this] {
        const QSignalBlocker quiet(Dir1);
        Dir1->setPath(QDir::currentPath());
    });
    File1->setPath(QDir::currentPath());

    kit::on(Drive1, &kit::DriveListBox::Change, this, [this] { Drive1_Change(); });
    kit::on(Dir1, &kit::DirListBox::Change, this, [this] { Dir1_Change(); });
    kit::on(File1, &kit::FileListBox::Click, this, [this] { File1_Click(); });
    kit::on(Text1, &QLineEdit::textChanged, this, [this] { Text1_Change(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    resize(480, 280);
    kit::bare([this] { Form_Load(); });
}

void frmBilgial::Form_Load() {
    Drive1->setDrive(shell::appPath());
}

void frmBilgial::Drive1_Change() {
    // A drive keeps its present folder: the working folder on its own drive.
    const QString current = QDir::currentPath();
    Dir1->setPath(current.startsWith(Drive1->Drive(), Qt::CaseInsensitive) ? current
                                                                           : Drive1->Drive());
}

void frmBilgial::Dir1_Change() {
    // The file list's new folder raises its PathChange at once.
    kit::skip([this] {
        File1->setPath(Dir1->Path());
        File1_PathChange();
    });
    kit::skip([this] {
        if (File1->ListCount() == 0)
            throw std::out_of_range("Invalid property value");
        File1->setListIndex(0);
    });
}

void frmBilgial::File1_Click() {
    // The backslash is always added; the data layer reads it as a separator.
    Text1->setText(File1->Path() + QStringLiteral("\\") + File1->FileName());
}

void frmBilgial::File1_PathChange() {
    File1_Click();
}

void frmBilgial::Text1_Change() {
    // Exactly "kvl.mdb", case included: KVL.mdb is listed but not taken.
    const bool found = Text1->text().right(7) == QStringLiteral("kvl.mdb");
    Label1->setText(found ? QStringLiteral("Veri tabanı bulundu")
                          : QStringLiteral("Veri tabanı bulunamadı.."));
    Command2->setEnabled(found);
}

void frmBilgial::Command2_Click() {
    const QString question =
        QStringLiteral("Mevcut veriler silinecek ve diğer programdan alınacak.") +
        QStringLiteral("\n") + QStringLiteral("Onaylıyor musunuz?");
    if (kit::MsgBox(question, 4 + 32) != kit::vbYes)
        return;
    kit::fixedMessage(
        [this] {
            std::optional<QString> notBackedUp;
            {
                const kit::BusyCursor busy;
                const bool schoolWasOpen = shell::baglanti && shell::baglanti->isOpen();
                shell::baglantiac();
                // An open baglanti2 (an import earlier in this run) fails here,
                // before anything is deleted.
                if (!shell::baglanti2)
                    shell::baglanti2 = std::make_unique<store::Connection>();
                shell::baglanti2->Open(rollCallConnectionString(Text1->text()).toStdString());
                notBackedUp = backUpSchoolFile(schoolWasOpen);
                if (!notBackedUp)
                    replaceRosters();
            }
            if (notBackedUp) {
                kit::MsgBox(*notBackedUp, kit::vbExclamation);
                return;
            }
            kit::MsgBox(QStringLiteral("Veri aktarımı gerçekleştirildi."), 64);
        },
        QStringLiteral("Hata oluştu.Tekrar deneyiniz."), kit::vbExclamation);
}

// The copy of the school's file that the import writes before its first
// delete. When it cannot be written, the import does not start: what this
// click opened is closed again, so that the next try finds things as they
// were, and the clerk is told why. Without an open school file there is
// nothing to copy; the delete that follows fails before it touches anything.
std::optional<QString> frmBilgial::backUpSchoolFile(bool schoolWasOpen) {
    jet::Database* school = schoolDatabase();
    if (school == nullptr)
        return std::nullopt;
    try {
        rosters::backUpSchoolFile(*school);
        return std::nullopt;
    } catch (const BackupError& error) {
        shell::baglanti2.reset();
        if (!schoolWasOpen)
            shell::baglanti.reset();
        return QStringLiteral(
                   "Veri tabanının yedeği alınamadığı için aktarım başlatılmadı; "
                   "mevcut bilgiler olduğu gibi duruyor.\n\n") +
               QString::fromStdString(error.what()) +
               QStringLiteral("\n\nSorunu giderip yeniden deneyiniz.");
    }
}

// Deletes each roster and copies the other program's rows in: ORNEK by the
// names of nine columns, Pansiyon column by column by position, the row
// updated after each column. Nothing undoes a failure: a roster deleted
// stays deleted, rows copied stay copied. The writes are one write of the
// file, for speed and so that a crash in the middle loses nothing; a write
// that fails is undone alone and the rest is kept, as separate writes would.
// baglanti, baglanti2, kayit and kayit2 are left open behind it.
void frmBilgial::replaceRosters() {
    using shell::kayit;
    using shell::kayit2;
    jet::Database* school = schoolDatabase();
    std::optional<jet::Database::WriteScope> scope;
    if (school != nullptr)
        scope.emplace(*school);

    runOnKayit(u"delete* from ORNEK");
    openBoth(u"select* from ORNEK");
    kayit2->moveFirst();
    const long students = kayit2->recordCount();
    for (long index = 0; index < students; ++index) {
        kayit->addNew();
        for (const std::u16string_view column : kOrnekColumns)
            kayit->setField(column, kayit2->field(column));
        kayit->update();
        kayit2->moveNext();
    }
    kayit->close();
    kayit2->close();

    runOnKayit(u"delete* from Pansiyon");
    openBoth(u"select* from Pansiyon");
    kayit2->moveFirst();
    const long boarders = kayit2->recordCount();
    for (long index = 0; index < boarders; ++index) {
        kayit->addNew();
        for (std::size_t column = 0; column < kayit->fieldNames().size(); ++column) {
            kayit->setField(column, kayit2->field(column));
            kayit->update();
        }
        kayit2->moveNext();
    }
    if (scope)
        scope->commit();
}

}  // namespace rosters
