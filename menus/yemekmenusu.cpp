#include "menus/yemekmenusu.h"

#include "menus/form16.h"
#include "reports/engine/design.h"
#include "reports/school_name.h"
#include "shell/kit/connection_strings.h"

namespace menus {
namespace {

using engine::label;
using engine::withBorder;

// Letter paper with a quarter inch all round.
constexpr int kPaperWidth = 12240;
constexpr int kPaperHeight = 15840;
constexpr int kMargin = 360;

constexpr int kTitleHeight = 567;
constexpr int kHeadTop = 600;
constexpr int kHeadHeight = 340;
constexpr int kRowHeight = 992;  // room for a meal of four lines

const engine::TextStyle kTitle{14, true, Qt::AlignCenter};
const engine::TextStyle kHead{9, true, Qt::AlignCenter};
const engine::TextStyle kCell{8, false, Qt::AlignLeft | Qt::AlignTop};

// One column: its head in the page header, its field in Detail.
struct Column {
    int width;
    const char* head;
    const char* headCaption;
    const char* field;
    const char* dataField;
};

constexpr Column kColumns[] = {{1134, "Label3", "TARİH", "Field1", "TARIH"},
                               {2551, "Label4", "SABAH", "Field2", "SABAH"},
                               {2551, "Label5", "ÖĞLE", "Field3", "OGLE"},
                               {2835, "Label6", "AKŞAM", "Field4", "AKSAM"},
                               {1984, "Label8", "ARA ÖĞÜN", "Field5", "ARA_OGUN"}};

engine::ReportDefinition menuDesign() {
    engine::ReportDefinition design;
    design.title = QStringLiteral("yemekmenusu");
    design.page = {kPaperWidth, kPaperHeight, false,   kMargin,
                   kMargin,     kMargin,      kMargin, kPaperWidth - 2 * kMargin};
    design.dataControl.ConnectionString = kit::relativeConnectionString();
    design.dataControl.Source = QStringLiteral("MENULER");

    engine::Band header{engine::BandKind::PageHeader, kHeadTop + kHeadHeight, {}};
    engine::Band detail{engine::BandKind::Detail, kRowHeight, {}};
    int left = 0;
    for (const Column& column : kColumns) {
        header.controls.push_back(withBorder(label(QString::fromUtf8(column.head),
                                                   {left, kHeadTop, column.width, kHeadHeight},
                                                   QString::fromUtf8(column.headCaption), kHead)));
        detail.controls.push_back(withBorder(
            engine::field(QString::fromUtf8(column.field), {left, 0, column.width, kRowHeight},
                          QString::fromUtf8(column.dataField), QString(), kCell)));
        left += column.width;
    }
    // The title spans the five columns.
    header.controls.insert(header.controls.begin(),
                           label(QStringLiteral("Label1"), {0, 0, left, kTitleHeight},
                                 QStringLiteral("Label1"), kTitle));
    detail.controls.front().OutputFormat = QStringLiteral("dd-mmm-yyyy dddd");

    design.bands.push_back(std::move(header));
    design.bands.push_back({engine::BandKind::GroupHeader1, 0, {}});
    design.bands.push_back(std::move(detail));
    design.bands.push_back({engine::BandKind::GroupFooter1, 0, {}});
    design.bands.push_back({engine::BandKind::PageFooter, 0, {}});
    return design;
}

}  // namespace

yemekmenusu::yemekmenusu(QObject* parent)
    : engine::Report(menuDesign(), parent), Label1(&control(u"Label1")) {}

// The days in date order, whatever order TMPMENU holds them in.
void yemekmenusu::ActiveReport_ReportStart() {
    DataControl1.Source = QStringLiteral("select* from TMPMENU ORDER BY TARIH asc");
}

// The month as Combo1 shows it at this moment.
void yemekmenusu::PageHeader_Format() {
    Label1->Caption = reports::schoolName() + QStringLiteral(" ") +
                      shell::instance<Form16>().Combo1->currentText() +
                      QStringLiteral(" AYI YEMEK MENÜSÜ");
}

// The fields show their columns as they are.
void yemekmenusu::Detail_Format() {}

void yemekmenusu::ActiveReport_QueryClose(int& /*cancel*/, int /*closeMode*/) {
    reports::releaseReport<yemekmenusu>();
}

}  // namespace menus
