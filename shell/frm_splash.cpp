#include "shell/frm_splash.h"

#include <QVBoxLayout>

#include "shell/form1.h"
#include "shell/form9.h"
#include "shell/kit/failure_modes.h"
#include "shell/program_state.h"
#include "shell/stored_password.h"
#include "shell/window_registry.h"
#include "shell/window_role.h"

namespace shell {

frmSplash::frmSplash() {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlags(Qt::SplashScreen);
    setWindowTitle(QStringLiteral("Sofravan"));
    setAccessibleRole(this, QAccessible::Window);
    setAccessibleName(QStringLiteral("Sofravan açılış ekranı"));
    lblProductName = new QLabel(QStringLiteral("Sofravan"));
    QFont big = lblProductName->font();
    big.setPointSize(28);
    big.setBold(true);
    lblProductName->setFont(big);
    lblVersion = new QLabel;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 36, 48, 36);
    layout->addWidget(lblProductName, 0, Qt::AlignCenter);
    layout->addWidget(lblVersion, 0, Qt::AlignCenter);

    Timer1.setInterval(1000);
    Timer1.setSingleShot(false);
    Timer2.setInterval(2000);
    kit::on(&Timer1, &QTimer::timeout, this, [this] { Timer1_Timer(); });
    kit::on(&Timer2, &QTimer::timeout, this, [this] { Timer2_Timer(); });
    Form_Load();
    Timer1.start();
}

void frmSplash::Form_Load() {
    lblVersion->setText(QStringLiteral("Version ") + versionText());
    setAccessibleDescription(QStringLiteral("Program açılıyor, ") + lblVersion->text());
}

void frmSplash::Timer1_Timer() {
    Timer2.start();
    Timer1.stop();
}

void frmSplash::Timer2_Timer() {
    Timer2.stop();
    unload<frmSplash>();
    sifrevarmi();
}

void sifrevarmi() {
    const jet::Value password = storedPassword();
    // A Null password is not unequal to "" either: the main window opens.
    if (password.kind() == jet::Value::Kind::Text && !password.asText().empty()) {
        instance<Form9>().show();
    } else {
        instance<Form1>().show();
        unload<frmSplash>();
    }
}

}  // namespace shell
