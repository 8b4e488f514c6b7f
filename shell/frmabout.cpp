#include "shell/frmabout.h"

#include <optional>

#include <QFileInfo>
#include <QPainter>
#include <QPainterPath>
#include <QProcess>

#include "shell/kit/app_path.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/placing.h"
#include "shell/platform.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"

namespace shell {
namespace {

using kit::named;
using kit::place;

// The designed window, in twips.
constexpr int kWindowWidth = 7200;
constexpr int kWindowHeight = 5520;

const QString kTerms = QStringLiteral(
    "KULLANIM KOŞULLARI\r\n"
    "\r\n"
    "1. Sofravan, okul yemekhanesinin işlerini yürüten personelin kullanımı içindir.\r\n"
    "2. Program bütün bilgileri kendi klasöründeki kvl.mdb dosyasında tutar; bu dosyanın "
    "düzenli olarak yedeğini alınız.\r\n"
    "3. Öğrencilerin kişisel bilgileri yalnızca yemekhane işleri için kullanılabilir. "
    "6698 sayılı Kişisel Verilerin Korunması Kanunu'na uymak kullanıcının "
    "sorumluluğundadır.\r\n"
    "4. Program olduğu gibi sunulur; yanlış girilen bilgilerden doğacak sonuçlardan program "
    "sahibi sorumlu tutulamaz.");

const QString kDisclaimer = QStringLiteral(
    "Uyarı: Bu program telif hakkı yasalarıyla korunmaktadır. Programın tamamının ya da bir "
    "bölümünün izinsiz çoğaltılması veya dağıtılması yasaktır.");

// The program's emblem, drawn: a plate between a fork and a knife.
QPixmap emblem(int size, const QColor& colour) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal unit = size / 16.0;
    painter.setPen(QPen(colour, unit));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(8 * unit, 8 * unit), 4.5 * unit, 4.5 * unit);
    painter.drawEllipse(QPointF(8 * unit, 8 * unit), 3 * unit, 3 * unit);
    // The fork's three tines over its handle, the knife's blade.
    for (const qreal x : {1.2, 2.0, 2.8})
        painter.drawLine(QPointF(x * unit, 2 * unit), QPointF(x * unit, 5 * unit));
    painter.drawLine(QPointF(2 * unit, 5 * unit), QPointF(2 * unit, 14 * unit));
    QPainterPath blade;
    blade.moveTo(14 * unit, 2 * unit);
    blade.quadTo(15.2 * unit, 5 * unit, 14 * unit, 8 * unit);
    blade.lineTo(14 * unit, 14 * unit);
    painter.drawPath(blade);
    return picture;
}

// The system's information tool as the registry names it, or nothing.
std::optional<QString> sysInfoTool() {
    if (std::optional<QString> path = RegGetString(
            RegistryRoot::LocalMachine, QStringLiteral("SOFTWARE\\Microsoft\\Shared Tools\\MSINFO"),
            QStringLiteral("PATH"))) {
        return path;
    }
    const std::optional<QString> folder = RegGetString(
        RegistryRoot::LocalMachine, QStringLiteral("SOFTWARE\\Microsoft\\Shared Tools Location"),
        QStringLiteral("MSINFO"));
    if (!folder)
        return std::nullopt;
    const QString path = *folder + QStringLiteral("\\MSINFO32.EXE");
    if (!QFileInfo(kit::localPath(path)).isFile())
        return std::nullopt;
    return path;
}

}  // namespace

frmAbout::frmAbout() {
    kit::designWindow(this, "frmAbout", QStringLiteral("Program Hakkında"), kWindowWidth,
                      kWindowHeight);
    placeControls();
    connectHandlers();
    kit::bare([this] { Form_Load(); });
}

void frmAbout::placeControls() {
    const QColor tint = palette().color(QPalette::Highlight);
    picIcon = named(new QLabel(this), "picIcon");
    picIcon->setPixmap(emblem(48, tint));
    picIcon->setAccessibleName(QStringLiteral("Program simgesi"));
    place(picIcon, 240, 240, 720, 720);

    lblTitle = named(new QLabel(this), "lblTitle");
    QFont big = lblTitle->font();
    big.setPointSize(big.pointSize() * 2);
    big.setBold(true);
    lblTitle->setFont(big);
    place(lblTitle, 1200, 180, 4200, 600);
    lblVersion = named(new QLabel(this), "lblVersion");
    place(lblVersion, 1200, 840, 4200, 285);

    Image1 = named(new QLabel(this), "Image1");
    Image1->setPixmap(emblem(80, tint.lighter(160)));
    Image1->setAccessibleName(QStringLiteral("Tabak resmi"));
    place(Image1, 5760, 120, 1200, 1200);

    Text1 = named(new kit::MultiLineTextBox(this), "Text1");
    Text1->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    Text1->setReadOnly(true);
    Text1->setText(kTerms);
    Text1->setAccessibleName(QStringLiteral("Kullanım koşulları"));
    place(Text1, 240, 1440, 6720, 2280);

    lblDisclaimer = named(new QLabel(kDisclaimer, this), "lblDisclaimer");
    lblDisclaimer->setWordWrap(true);
    lblDisclaimer->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    place(lblDisclaimer, 240, 3900, 4920, 1320);

    cmdOK = named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdOK->setDefault(true);
    place(cmdOK, 5400, 3900, 1560, 420);
    cmdSysInfo = named(new QPushButton(QStringLiteral("&System Info..."), this), "cmdSysInfo");
    place(cmdSysInfo, 5400, 4440, 1560, 420);
}

void frmAbout::connectHandlers() {
    kit::on(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    kit::on(cmdSysInfo, &QPushButton::clicked, this, [this] { cmdSysInfo_Click(); });
}

void frmAbout::Form_Load() {
    setWindowTitle(QStringLiteral("Hakkında ") + QStringLiteral("Sofravan"));
    lblVersion->setText(QStringLiteral("Version ") + versionText());
    lblTitle->setText(QStringLiteral("Sofravan"));
}

void frmAbout::cmdOK_Click() {
    unload<frmAbout>();
}

void frmAbout::cmdSysInfo_Click() {
    StartSysInfo();
}

void frmAbout::StartSysInfo() {
    const std::optional<QString> tool = sysInfoTool();
    if (!tool || !QProcess::startDetached(kit::localPath(*tool), {})) {
        kit::MsgBox(QStringLiteral("System Information Is Unavailable At This Time"), 0);
    }
}

}  // namespace shell
