#include "menus/form13.h"

#include <QDir>

#include "menus/form15.h"
#include "shell/kit/failure_modes.h"
#include "shell/platform.h"
#include "shell/window_registry.h"
#include "store/connection.h"

namespace menus {

Form13::Form13() {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Excel bağlantısı yap"));
    setAccessibleName(windowTitle());

    Drive1 = new kit::DriveListBox(this);
    Drive1->setObjectName(QStringLiteral("Drive1"));
    Drive1->setAccessibleName(QStringLiteral("Sürücü"));
    Drive1->setGeometry(8, 8, 300, 24);
    Dir1 = new kit::DirListBox(this);
    Dir1->setObjectName(QStringLiteral("Dir1"));
    Dir1->setAccessibleName(QStringLiteral("Klasör"));
    Dir1->setGeometry(8, 38, 300, 250);
    File1 = new kit::FileListBox(QStringLiteral("*.xls"), this);
    File1->setObjectName(QStringLiteral("File1"));
    File1->setAccessibleName(QStringLiteral("Excel dosyası"));
    File1->setGeometry(316, 8, 260, 280);
    Text1 = new QLineEdit(this);
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->setAccessibleName(QStringLiteral("Seçili dosya"));
    Text1->hide();
    Combo1 = new kit::ComboBox(this);
    Combo1->setObjectName(QStringLiteral("Combo1"));
    Combo1->setAccessibleName(QStringLiteral("Sayfa adı"));
    Combo1->setEditable(true);
    Combo1->setEditText(QStringLiteral("Sayfa adı seçiniz"));
    Combo1->setGeometry(8, 300, 300, 26);
    Command2 = new QPushButton(QStringLiteral("İLERİ -->"), this);
    Command2->setObjectName(QStringLiteral("Command2"));
    Command2->setGeometry(456, 298, 120, 30);
    Command3 = new QPushButton(QStringLiteral("Excel ile aç"), this);
    Command3->setObjectName(QStringLiteral("Command3"));
    Command3->setGeometry(316, 298, 130, 30);
    Command1 = new QPushButton(QStringLiteral("Command1"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command1->hide();

    kit::on(Drive1, &kit::DriveListBox::Change, this, [this] { Drive1_Change(); });
    kit::on(Dir1, &kit::DirListBox::Change, this, [this] { Dir1_Change(); });
    kit::on(File1, &kit::FileListBox::Click, this, [this] { File1_Click(); });
    // Only a change of the text lists the sheets: the same file clicked
    // again does not.
    kit::on(Text1, &QLineEdit::textChanged, this, [this] { Text1_Change(); });
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    resize(584, 336);
    kit::bare([this] { Form_Load(); });
}

void Form13::Form_Load() {
    // The folder list starts at the working folder, which is the program's.
    Drive1->setDrive(shell::appPath());
}

void Form13::Drive1_Change() {
    // A drive keeps its present folder: the working folder on its own drive.
    const QString current = QDir::currentPath();
    Dir1->setPath(current.startsWith(Drive1->Drive(), Qt::CaseInsensitive) ? current
                                                                           : Drive1->Drive());
}

void Form13::Dir1_Change() {
    File1->setPath(Dir1->Path());
}

void Form13::File1_Click() {
    // The backslash is always added; the data layer reads it as a separator.
    Text1->setText(File1->Path() + QStringLiteral("\\") + File1->FileName());
}

void Form13::Text1_Change() {
    kit::silentExit([this] {
        const QString file = Text1->text();
        Combo1->clear();
        Combo1->setEditText(QStringLiteral("Sayfa adı seçiniz..."));
        store::Connection connection;
        connection.Open((QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + file +
                         QStringLiteral(";Extended Properties=\"Excel 8.0;HDR=NO;\""))
                            .toStdString());
        const sql::QueryResult schema = connection.OpenSchema(store::Connection::kSchemaTables);
        for (const std::vector<jet::Value>& row : schema.rows) {
            if (row[3].kind() != jet::Value::Kind::Text || row[3].asText() != u"TABLE")
                continue;
            // Blind: the last character goes, the "$" of a sheet, the
            // closing quote of a quoted name, a letter of a named range.
            QString name = QString::fromStdU16String(row[2].asText());
            name.chop(1);
            Combo1->addItem(name);
            // No sheet is chosen for the user.
            Combo1->setCurrentIndex(-1);
            Combo1->setEditText(QStringLiteral("Sayfa adı seçiniz..."));
        }
    });
}

void Form13::Command1_Click() {
    // A second copy of the listing stood here behind a file dialog that was
    // never created: it ended at its first statement and did nothing.
}

void Form13::Command2_Click() {
    Form15& next = shell::instance<Form15>();
    next.Text3->setText(Text1->text());
    next.Text4->setText(Combo1->currentText());
    shell::showWindow<Form15>();
    next.Command1_Click();
    shell::unload<Form13>();
}

void Form13::Command3_Click() {
    // The result is not looked at; the window stays open so that the user
    // can look at the sheets before going on.
    shell::ShellExecuteOpen(Text1->text());
}

}  // namespace menus
