#include "reports/form7.h"

#include "reports/puantaj.h"
#include "reports/tally.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/vb_number.h"
#include "store/data_error.h"

namespace reports {
namespace {

// A working view laid in the row of choices, right of the text boxes: small,
// but there for the eye and for assistive technology.
kit::DataGrid* workingView(QWidget* window, const char* name, kit::DataControl& control,
                           const QVector<kit::GridColumn>& columns, int left) {
    auto* grid = new kit::DataGrid(window);
    grid->setObjectName(QString::fromLatin1(name));
    grid->setDataSource(&control);
    grid->setColumns(columns);
    grid->setAccessibleName(QString::fromLatin1(name));
    grid->setGeometry(left, 1, 150, 22);
    return grid;
}

QVector<kit::GridColumn> tmpColumns() {
    QVector<kit::GridColumn> columns;
    for (const QString& name : {QStringLiteral("tarih"), QStringLiteral("sabah"),
                                QStringLiteral("ogle"), QStringLiteral("aksam")})
        columns.push_back({name, name, true, 900, {}});
    return columns;
}

}  // namespace

Form7::Form7() : ReportWindow(QStringLiteral("Puantaj")) {
    setObjectName(QStringLiteral("Form7"));
    const MonthChoice choice = addMonthChoice(this);
    Label1 = choice.Label1;
    Combo1 = choice.Combo1;
    Text1 = choice.Text1;
    Text2 = new QLineEdit(QStringLiteral("Text2"), this);
    Text2->setObjectName(QStringLiteral("Text2"));
    Text2->setAccessibleName(QStringLiteral("Genel toplam"));
    Text2->setGeometry(260, 1, 60, 22);

    QVector<kit::GridColumn> logColumns;
    for (const QString& name : {QStringLiteral("gun"), QStringLiteral("ay"), QStringLiteral("YIL"),
                                QStringLiteral("ogun"), QStringLiteral("gunduzlu")})
        logColumns.push_back({name, name, true, 900, {}});
    DataGrid1 = workingView(this, "DataGrid1", Adodc1, logColumns, 330);
    DataGrid2 = workingView(this, "DataGrid2", temp, tmpColumns(), 490);
    DataGrid3 = workingView(this, "DataGrid3", Adodc2, tmpColumns(), 650);

    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    // The data controls open as the window loads, before its Form_Load.
    for (kit::DataControl* control : {&Adodc1, &temp, &Adodc2})
        kit::openDataControl(*control);
    Form_Load();
}

void Form7::Form_Load() {
    fillMonthCombo(Combo1);
    temp.Recordset().setSort(u"tarih asc");
}

// The month's lookup cannot fail; every later step is passed over when it
// fails, and the report is shown all the same.
void Form7::Combo1_Click() {
    Tally();
    kit::skip([&] { showReport<puantaj>(); });
}

void Form7::Tally() {
    Text1->setText(monthNumberText(Combo1->currentText()));
    {
        const kit::BusyCursor busy;
        // Clearing and counting are one pass over YEMEK and one write of
        // TMP that leaves it as the 93 clearing updates, the 93 grouped
        // queries and their updates would. Counts that cannot be read stay
        // 0, as the cleared columns do when every query fails.
        TallyCounts counts{};
        kit::skip([&] {
            const jet::Database* database = temp.Recordset().writableDatabase();
            if (database == nullptr)
                throw store::DataError("TMP is not open");
            counts = countMeals(*database, static_cast<int>(kit::Val(Text1->text())));
        });
        writeTally(temp.Recordset(), counts);

        kit::skip([&] { temp.Recordset().clearFilter(); });
        kit::skip([&] { temp.Refresh(); });
        kit::skip([&] { temp.Refresh(); });
        kit::skip([&] { temp.Recordset().setSort(u"tarih asc"); });
        kit::skip([&] { DataGrid2->Refresh(); });
        kit::skip([&] { Adodc2.Refresh(); });

        Text2->clear();
        kit::skip(
            [&] { Text2->setText(QString::fromStdU16String(firstRowTotal(Adodc2.Recordset()))); });
    }
}

// Its one statement stops a report variable of its own that never holds a
// report; the error is ignored. So, unlike the month selectors, closing the
// window leaves the default instance of puantaj alone.
void Form7::Form_Unload() {}

}  // namespace reports
