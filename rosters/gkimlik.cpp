#include "rosters/gkimlik.h"

#include "reports/engine/design.h"
#include "reports/engine/page_output.h"
#include "reports/engine/picture.h"
#include "reports/report_window.h"
#include "rosters/kimlik.h"
#include "shell/clock.h"
#include "shell/kit/app_path.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/window_registry.h"
#include "store/data_error.h"

namespace rosters {
namespace {

using engine::BandKind;
using engine::field;
using engine::picture;

const QString kAllClasses = QStringLiteral("Tümü");

// Letter paper turned to landscape, three cards across the print width:
// one Detail band is one card, filled down a column, then across.
engine::ReportDefinition design() {
    engine::ReportDefinition definition;
    definition.title = QStringLiteral("Öğrenci kimlik basımı");
    definition.page = {12240, 15840, true, 720, 720, 1080, 720, 14445};
    definition.detailColumns = 3;
    definition.dataControl.ConnectionString = kit::relativeConnectionString();
    definition.dataControl.Source = QStringLiteral("SELECT* FROM ORNEK ORDER BY Sinif asc");

    engine::Control path =
        field(QStringLiteral("Field6"), {0, 2268, 1701, 283}, QStringLiteral("resim"));
    path.Visible = false;  // it only carries the photograph's path to Detail_Format
    definition.bands = {
        {BandKind::PageHeader, 360, {}},
        {BandKind::GroupHeader1, 0, {}},
        {BandKind::Detail,
         2880,
         {picture(QStringLiteral("Image2"), {0, 0, 4394, 2693}),
          picture(QStringLiteral("Image1"), {3240, 1230, 992, 1220}),
          field(QStringLiteral("Field4"), {1276, 1150, 1275, 284}, QStringLiteral("Sinif")),
          field(QStringLiteral("Field5"), {1276, 1376, 1842, 283}, QStringLiteral("Numara")),
          field(QStringLiteral("Field2"), {1276, 1600, 1842, 284}, QStringLiteral("Adi")),
          field(QStringLiteral("Field3"), {1276, 1843, 1559, 283}, QStringLiteral("Soyadi")), path,
          field(QStringLiteral("Field7"), {1276, 2100, 1559, 283}),
          engine::barcode(QStringLiteral("Barcode1"), {992, 2320, 1984, 283},
                          QStringLiteral("TCKimlikNo"))}},
        {BandKind::GroupFooter1, 0, {}},
        {BandKind::PageFooter, 360, {}},
    };
    return definition;
}

QString& classWithoutWindow() {
    static QString chosen = kAllClasses;
    return chosen;
}

}  // namespace

QString cardClass() {
    if (shell::isLoaded<kimlik>())
        return shell::instance<kimlik>().Combo1->currentText();
    return classWithoutWindow();
}

void setCardClassWithoutWindow(const QString& chosen) {
    classWithoutWindow() = chosen;
}

QString cardPdfPath(QDate day) {
    return kit::appPath() + day.toString(QStringLiteral("dd_MM_yyyy")) +
           QStringLiteral("Gunduzlu_kimlik") + QStringLiteral(".pdf");
}

gkimlik::gkimlik(QObject* parent) : engine::Report(design(), parent) {
    ActiveReport_Initialize();
}

// The class's text goes into the SQL as it stands; students of a class
// come in no further order.
void gkimlik::ActiveReport_Initialize() {
    kit::skip([this] {
        const QString chosen = cardClass();
        const QString query =
            chosen == kAllClasses
                ? QStringLiteral("SELECT* from ORNEK")
                : QStringLiteral("SELECT* from ORNEK where SINIF='") + chosen + QStringLiteral("'");
        DataControl1.Source = query + QStringLiteral(" ORDER BY ORNEK.SINIF asc");
    });
}

// Both pictures are loaded for every card. A picture that cannot be loaded
// leaves its box with what it held before; the Stop reaches the default
// instance, not the report being laid out, so the next card follows and
// the message comes again for each card with a bad picture.
void gkimlik::Detail_Format() {
    bool loaded = false;
    kit::silentExit([&] {
        control(u"Image2").Picture =
            engine::LoadPicture(kit::inAppPath(QStringLiteral("GunduzluKimlik.jpg")));
        control(u"Image1").Picture = engine::LoadPicture(kit::localPath(control(u"Field6").Text));
        loaded = true;
    });
    if (loaded)
        return;
    kit::MsgBox(QStringLiteral("Resim dosyaları bulunamadı.Resim işlerinden\nkontrol ediniz."), 0,
                QStringLiteral("Hata!"));
    shell::instance<gkimlik>().Stop();
}

// The export runs on the default instance, made for it when there is none,
// and the reference it leaves becomes the default instance again.
void gkimlik::ActiveReport_ToolbarClick(const QString& toolCaption) {
    if (toolCaption != kPdfTool)
        return;
    QPointer<gkimlik> report = &shell::instance<gkimlik>();
    pdf(report);
    shell::defaultInstanceSlot<gkimlik>() = report;
}

void gkimlik::ActiveReport_QueryClose(int& /*cancel*/, int /*closeMode*/) {
    reports::releaseReport<gkimlik>();
}

// The default instance runs once more here, with the class Combo1 shows now.
// The export's text option is passed as the engine's PDF writer has it:
// text stays text, in the embedded fonts.
void gkimlik::pdf(QPointer<gkimlik>& pdf_obj) {
    kit::fixedMessage(
        [&] {
            const kit::BusyCursor busy;
            const QString path = cardPdfPath(shell::today());
            if (pdf_obj.isNull())
                throw store::DataError("object variable not set");
            pdf_obj->Run();
            const QString failure =
                engine::savePdf(pdf_obj->pages(), path, pdf_obj->definition().title);
            if (!failure.isEmpty())
                throw store::DataError(failure.toStdString());
            delete pdf_obj.data();
            pdf_obj = nullptr;
        },
        QStringLiteral("Önce rapor oluşturunuz"), kit::vbExclamation);
}

}  // namespace rosters
