#include "reports/puantaj.h"

#include <QDate>
#include <QLocale>

#include "reports/engine/design.h"
#include "reports/form7.h"
#include "reports/school_name.h"
#include "shell/clock.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/window_registry.h"
#include "store/data_error.h"
#include "store/date_text.h"
#include "store/number_text.h"

namespace reports {
namespace {

using engine::BandKind;
using engine::Box;
using engine::field;
using engine::label;
using engine::withBorder;

const engine::TextStyle kTitle{12, true, Qt::AlignCenter};
const engine::TextStyle kHead{9, true, Qt::AlignCenter};
const engine::TextStyle kFigure{9, false, Qt::AlignCenter};
const engine::TextStyle kCaption{9, true, Qt::AlignRight | Qt::AlignVCenter};

engine::Control head(const char* name, Box box, const QString& caption) {
    return withBorder(label(QString::fromLatin1(name), box, caption, kHead));
}

// A field bound to a column shows the column's name until a record fills
// it; the report's initialization reads that design text.
engine::Control figure(const char* name, Box box, const QString& dataField) {
    return withBorder(field(QString::fromLatin1(name), box, dataField, dataField, kFigure));
}

engine::Control caption(const char* name, Box box, const QString& text) {
    return withBorder(field(QString::fromLatin1(name), box, QString(), text, kCaption));
}

// Under "GÜN", Field2 is bound to sabah as Field3 is: the column prints the
// breakfasts again, and the weekday the initialization writes is replaced
// by each record. Field6, below the Detail band's height, is cut off.
engine::ReportDefinition design() {
    engine::ReportDefinition definition;
    definition.title = QStringLiteral("Puantaj");
    definition.dataControl.ConnectionString = kit::relativeConnectionString();
    definition.dataControl.Source = QStringLiteral("select*  from TMP order by TARIH asc");
    definition.bands = {
        {BandKind::PageHeader,
         992,
         {label(QStringLiteral("Label1"), {1417, 0, 6237, 567}, QStringLiteral("Label1"), kTitle),
          head("Label2", {0, 709, 1134, 283}, QStringLiteral("TARİH")),
          head("Label3", {1134, 709, 1275, 283}, QStringLiteral("GÜN")),
          head("Label4", {2409, 709, 1134, 283}, QStringLiteral("SABAH")),
          head("Label5", {3543, 709, 1134, 283}, QStringLiteral("ÖĞLE")),
          head("Label6", {4677, 709, 1134, 283}, QStringLiteral("AKŞAM"))}},
        {BandKind::GroupHeader1, 0, {}},
        {BandKind::Detail,
         300,
         {figure("Field1", {0, 0, 1134, 283}, QStringLiteral("tarih")),
          figure("Field2", {1134, 0, 1275, 283}, QStringLiteral("sabah")),
          figure("Field3", {2409, 0, 1134, 283}, QStringLiteral("sabah")),
          figure("Field4", {3543, 0, 1134, 283}, QStringLiteral("ogle")),
          figure("Field5", {4677, 0, 1134, 283}, QStringLiteral("aksam")),
          field(QStringLiteral("Field6"), {142, 425, 850, 284}, QStringLiteral("tarih"),
                QStringLiteral("tarih"), kFigure)}},
        {BandKind::GroupFooter1,
         555,
         {caption("Field11", {0, 0, 2409, 283}, QStringLiteral("TOPLAM : ")),
          figure("Field7", {2409, 0, 1134, 283}, QString()),
          figure("Field8", {3543, 0, 1134, 283}, QString()),
          figure("Field9", {4677, 0, 1134, 283}, QString()),
          caption("Field13", {0, 283, 4677, 284}, QStringLiteral(" GENEL TOPLAM : ")),
          figure("Field12", {4677, 283, 1134, 284}, QString())}},
        {BandKind::PageFooter, 0, {}},
    };
    return definition;
}

// The day of an OLE date, Monday first, by its full Turkish name.
QString weekdayName(jet::Date date) {
    const jet::CivilDateTime civil = date.toCivil();
    const QDate day(civil.year, civil.month, civil.day);
    return QLocale(QLocale::Turkish, QLocale::Turkey).dayName(day.dayOfWeek(), QLocale::LongFormat);
}

// A bound field's figure as the sums add it; an empty field (Null) adds
// nothing.
double figureOf(const QString& text) {
    const std::optional<store::DecimalNumber> number = store::readNumber(text.toStdU16String());
    return number ? number->toDouble() : 0;
}

QString figureText(double sum) {
    return QString::fromStdU16String(store::numberText(sum));
}

}  // namespace

puantaj::puantaj(QObject* parent) : engine::Report(design(), parent) {
    ActiveReport_Initialize();
}

// Written for a report that would run it per record; it runs once, before
// the first record, and the bound fields overwrite what it sets.
void puantaj::ActiveReport_Initialize() {
    const QString month = monthNumberText(shell::instance<Form7>().Combo1->currentText());
    // From here on every failure is passed over.
    kit::skip([&] {
        control(u"Field1").Text = control(u"Field6").Text + QStringLiteral("/") + month +
                                  QStringLiteral("/") + QString::number(shell::today().year());
    });
    // Field6 still holds "tarih": the conversion fails and the date stays at
    // day zero.
    jet::Date date;
    kit::skip([&] {
        const std::optional<jet::Date> read =
            store::readDate(control(u"Field1").Text.toStdU16String());
        if (!read)
            throw store::DataError("type mismatch");
        date = *read;
    });
    kit::skip([&] { control(u"Field2").Text = weekdayName(date); });
    kit::skip([&] {
        control(u"Label1").Caption = schoolName() + QStringLiteral(" ") +
                                     shell::instance<Form7>().Combo1->currentText() +
                                     QStringLiteral(" AYI YEMEK PUANTAJI");
    });
}

// The report itself always closes.
void puantaj::ActiveReport_QueryClose(int& /*cancel*/, int /*closeMode*/) {
    releaseReport<puantaj>();
}

void puantaj::ActiveReport_ReportStart() {
    sabahSum_ = ogleSum_ = aksamSum_ = 0;
}

void puantaj::Detail_Format() {
    sabahSum_ += figureOf(control(u"Field3").Text);
    ogleSum_ += figureOf(control(u"Field4").Text);
    aksamSum_ += figureOf(control(u"Field5").Text);
}

void puantaj::GroupFooter1_Format() {
    control(u"Field7").Text = figureText(sabahSum_);
    control(u"Field8").Text = figureText(ogleSum_);
    control(u"Field9").Text = figureText(aksamSum_);
    control(u"Field12").Text = shell::instance<Form7>().Text2->text();
}

}  // namespace reports
