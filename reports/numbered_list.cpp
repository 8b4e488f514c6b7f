#include "reports/numbered_list.h"

#include <QLocale>

#include "reports/engine/design.h"
#include "shell/clock.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/vb_number.h"

namespace reports {
namespace {

using engine::Box;
using engine::field;
using engine::label;
using engine::withBorder;

constexpr int kHeadTop = 850;
constexpr int kHeadHeight = 284;
constexpr int kRowHeight = 283;

const engine::TextStyle kTitle{14, true, Qt::AlignCenter};
const engine::TextStyle kHead{9, true, Qt::AlignCenter};
const engine::TextStyle kCell{8, false, Qt::AlignLeft | Qt::AlignVCenter};

// One column of a list: its head in the page header and its field in the
// Detail band, the same left and width.
struct Column {
    int left;
    int width;
    const char* head;
    const char* headCaption;
    const char* field;
    const char* dataField;
};

engine::ReportDefinition listDesign(Box title, int pageHeaderHeight,
                                    std::initializer_list<Column> columns) {
    engine::ReportDefinition design;
    design.dataControl.ConnectionString = kit::relativeConnectionString();
    engine::Band header{engine::BandKind::PageHeader, pageHeaderHeight, {}};
    engine::Band detail{engine::BandKind::Detail, kRowHeight, {}};
    header.controls.push_back(
        label(QStringLiteral("Label7"), title, QStringLiteral("Label7"), kTitle));
    for (const Column& column : columns) {
        header.controls.push_back(withBorder(label(
            QString::fromUtf8(column.head), {column.left, kHeadTop, column.width, kHeadHeight},
            QString::fromUtf8(column.headCaption), kHead)));
        detail.controls.push_back(withBorder(
            field(QString::fromUtf8(column.field), {column.left, 0, column.width, kRowHeight},
                  QString::fromUtf8(column.dataField), QString::fromUtf8(column.field), kCell)));
    }
    design.bands.push_back(std::move(header));
    design.bands.push_back(std::move(detail));
    return design;
}

}  // namespace

NumberedList::NumberedList(engine::ReportDefinition definition, QObject* parent)
    : engine::Report(std::move(definition), parent),
      Label7(&control(u"Label7")),
      Field4(&control(u"Field4")) {}

void NumberedList::ActiveReport_FetchData(bool& eof) {
    if (!eof)
        Field4->Text = QString::number(kit::addIntegers(counter_, 1));
    counter_ = kit::addIntegers(counter_, 1);
}

engine::ReportDefinition permitListDesign() {
    engine::ReportDefinition design =
        listDesign({709, 0, 7370, 709}, 1130,
                   {{567, 567, "Label1", "SNo", "Field4", ""},
                    {1134, 567, "Label2", "Sınıf", "Field5", "Sinif"},
                    {1701, 1559, "Label8", "T.C. No", "Field8", "TCKimlikNo"},
                    {3260, 567, "Label3", "No", "Field6", "Numara"},
                    {3827, 2267, "Label4", "Adı", "Field2", "Adi"},
                    {6094, 1701, "Label5", "Soyadı", "Field3", "Soyadi"},
                    {7795, 1559, "Label6", "Açıklama", "Field7", "aciklama"}});
    design.title = QStringLiteral("izinliler");
    design.dataControl.Source = QStringLiteral("select* from IZINLER");
    return design;
}

engine::ReportDefinition mealListDesign() {
    engine::ReportDefinition design =
        listDesign({1701, 0, 7370, 709}, kHeadTop + kHeadHeight,
                   {{0, 567, "Label1", "SNo", "Field4", ""},
                    {567, 567, "Label2", "Sınıf", "Field5", "Sinif"},
                    {1134, 567, "Label3", "No", "Field6", "Numara"},
                    {1701, 1701, "Label4", "Adı", "Field2", "Adi"},
                    {3402, 1700, "Label5", "Soyadı", "Field3", "Soyadi"},
                    {5102, 1134, "Label6", "Tarih", "Field7", "yemektarih"},
                    {6236, 1134, "Label8", "Saat", "Field8", "yemeksaati"},
                    {7370, 1134, "Label9", "Öğün", "Field9", "ogun"},
                    {8504, 2268, "Label10", "Açıklama", "Field10", "aciklama"}});
    design.title = QStringLiteral("yemekyiyenler");
    design.dataControl.Source = QStringLiteral("select* from yemek");
    return design;
}

QString presentYear() {
    return QString::number(shell::today().year());
}

QString upperCase(const QString& text) {
    return QLocale(QLocale::Turkish).toUpper(text);
}

}  // namespace reports
