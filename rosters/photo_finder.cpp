#include "rosters/photo_finder.h"

#include <QDir>
#include <QPixmap>

#include "rosters/form11.h"
#include "rosters/frmpansiyon.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/placing.h"
#include "shell/platform.h"
#include "shell/window_registry.h"
#include "store/data_error.h"

namespace rosters {

PhotoFinder::PhotoFinder(const QString& caption, const char* name,
                         std::function<kit::DataGrid*()> targetGrid,
                         std::function<void()> unloadSelf)
    : targetGrid_(std::move(targetGrid)), unloadSelf_(std::move(unloadSelf)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QString::fromLatin1(name));
    setWindowTitle(caption);
    setAccessibleName(caption);

    Drive1 = kit::named(new kit::DriveListBox(this), "Drive1");
    Drive1->setAccessibleName(QStringLiteral("Sürücü"));
    Drive1->setGeometry(8, 8, 260, 24);
    Dir1 = kit::named(new kit::DirListBox(this), "Dir1");
    Dir1->setAccessibleName(QStringLiteral("Klasör"));
    Dir1->setGeometry(8, 38, 260, 250);
    File1 = kit::named(new kit::FileListBox(QStringLiteral("*.jpeg;*.jpg"), this), "File1");
    File1->setAccessibleName(QStringLiteral("Resim dosyası"));
    File1->setGeometry(276, 8, 180, 280);
    Image1 = kit::named(new QLabel(this), "Image1");
    Image1->setAccessibleName(QStringLiteral("Seçili resim"));
    Image1->setFrameShape(QFrame::Box);
    Image1->setScaledContents(true);
    Image1->setGeometry(464, 8, 128, 160);
    Text1 = kit::named(new QLineEdit(this), "Text1");
    Text1->setAccessibleName(QStringLiteral("Resmin yolu"));
    Text1->setGeometry(8, 296, 584, 24);
    Command2 = kit::named(new QPushButton(QStringLiteral("Seç"), this), "Command2");
    Command2->setGeometry(392, 328, 96, 30);
    Command1 = kit::named(new QPushButton(QStringLiteral("Vazgeç"), this), "Command1");
    Command1->setGeometry(496, 328, 96, 30);

    kit::on(Drive1, &kit::DriveListBox::Change, this, [this] { Drive1_Change(); });
    kit::on(Dir1, &kit::DirListBox::Change, this, [this] { Dir1_Change(); });
    kit::on(File1, &kit::FileListBox::Click, this, [this] { File1_Click(); });
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    resize(600, 366);
    kit::bare([this] { Form_Load(); });
}

void PhotoFinder::Form_Load() {
    // Not the folder of the path already in the cell: the program's drive.
    Drive1->setDrive(shell::appPath());
}

void PhotoFinder::Drive1_Change() {
    // A drive keeps its present folder: the working folder on its own drive.
    const QString current = QDir::currentPath();
    Dir1->setPath(current.startsWith(Drive1->Drive(), Qt::CaseInsensitive) ? current
                                                                           : Drive1->Drive());
}

void PhotoFinder::Dir1_Change() {
    File1->setPath(Dir1->Path());
}

// No error trap: a file that is no picture ends the program through the
// run-time error report.
void PhotoFinder::File1_Click() {
    QPixmap picture;
    if (!picture.load(QDir(File1->Path()).filePath(File1->FileName())))
        throw store::DataError("invalid picture");
    Image1->setPixmap(picture);
    // The backslash is always added, in the root of a drive too.
    Text1->setText(File1->Path() + QStringLiteral("\\") + File1->FileName());
}

void PhotoFinder::Command1_Click() {
    unloadSelf_();
}

// No test: the text, empty or not, goes into whatever cell is current.
void PhotoFinder::Command2_Click() {
    targetGrid_()->setText(Text1->text());
    unloadSelf_();
}

resimbul::resimbul()
    : PhotoFinder(
          QStringLiteral("Resim İşlemleri"), "resimbul",
          [] { return shell::instance<Form11>().DataGrid1; }, [] { shell::unload<resimbul>(); }) {}

resimbul2::resimbul2()
    : PhotoFinder(
          QStringLiteral("Resim kaydet"), "resimbul2",
          [] { return shell::instance<frmpansiyon>().TDBGrid1; },
          [] { shell::unload<resimbul2>(); }) {}

}  // namespace rosters
