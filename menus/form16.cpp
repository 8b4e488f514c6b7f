#include "menus/form16.h"

#include <memory>
#include <optional>

#include "menus/yemekmenusu.h"
#include "reports/engine/field_text.h"
#include "shell/clock.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/value_text.h"
#include "shell/program_state.h"
#include "store/connection.h"
#include "store/data_error.h"
#include "store/recordset.h"
#include "store/write_scope.h"

namespace menus {
namespace {

const std::u16string kCreateTmpMenu =
    u"CREATE TABLE TMPMENU (TARIH DATETIME, GUN CHAR, SABAH MEMO, OGLE MEMO, AKSAM MEMO, "
    u"ARA_OGUN MEMO, CONSTRAINT MyTableConstraint UNIQUE (TARIH, GUN, SABAH, OGLE, AKSAM, "
    u"ARA_OGUN));";

// A meal column of TMPMENU and the MENULER column whose lines it gathers.
struct MealColumn {
    std::u16string_view day;
    std::u16string_view line;
};
constexpr MealColumn kMeals[] = {
    {u"SABAH", u"sabah"}, {u"OGLE", u"oglen"}, {u"AKSAM", u"aksam"}, {u"ARA_OGUN", u"ara_ogun"}};

// The shared connection, which baglantiac opens; it swallows its failures,
// so a file it could not open shows here.
store::Connection& openedBaglanti() {
    shell::baglantiac();
    if (!shell::baglanti)
        throw store::DataError("the connection could not be made");
    return *shell::baglanti;
}

// The day's cell with one more line: text joined with a line break, Null
// joining as nothing, so an unset line leaves a break with nothing after it.
jet::Value appended(const jet::Value& cell, const jet::Value& line) {
    return jet::Value::text(
        (kit::displayText(cell) + QStringLiteral("\r\n") + kit::displayText(line))
            .toStdU16String());
}

// Whether the day's SABAH already holds something; Null is never unequal
// to "", so an unset cell counts as empty.
bool holdsText(const jet::Value& cell) {
    return !cell.isNull() && !kit::displayText(cell).isEmpty();
}

}  // namespace

Form16::Form16() : ReportWindow(QStringLiteral("Aylık Yemek Menüsü")) {
    setObjectName(QStringLiteral("Form16"));
    const reports::MonthChoice choice = reports::addMonthChoice(this);
    Label1 = choice.Label1;
    Label1->setText(QStringLiteral("Ay :"));
    Combo1 = choice.Combo1;
    Text1 = choice.Text1;
    Text1->hide();
    Command1 = new QPushButton(QStringLiteral("GÖSTER"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command1->hide();
    Command2 = new QPushButton(QStringLiteral("DURDUR"), this);
    Command2->setObjectName(QStringLiteral("Command2"));
    Command2->hide();

    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::bare([this] { Form_Load(); });
}

// The months, then TMPMENU made when the file has none; the schema is read
// on a connection of the handler's own.
void Form16::Form_Load() {
    reports::fillMonthCombo(Combo1);
    store::Connection connection;
    connection.Open(kit::relativeConnectionString().toStdString());
    // The table rows of schema 20: TABLE_NAME compared as it stands.
    const sql::QueryResult schema = connection.OpenSchema(store::Connection::kSchemaTables);
    std::size_t tableName = 0;
    while (tableName < schema.columnNames.size() && schema.columnNames[tableName] != u"TABLE_NAME")
        ++tableName;
    bool found = false;
    for (const std::vector<jet::Value>& row : schema.rows) {
        const jet::Value& name = row.at(tableName);
        if (name.kind() == jet::Value::Kind::Text && name.asText() == u"TMPMENU")
            found = true;
    }
    if (!found)
        Command2_Click();
    connection.Close();
}

void Form16::Command2_Click() {
    openedBaglanti().Execute(kCreateTmpMenu);
    shell::baglanti->Close();
    shell::baglanti.reset();
}

void Form16::Combo1_Click() {
    Text1->setText(reports::monthNumberText(Combo1->currentText()));
    Command1_Click();
    shell::instance<yemekmenusu>().Stop();
    reports::clearDefaultInstance<yemekmenusu>();
    showReport<yemekmenusu>();
}

// Each block of four MENULER rows, in table order, becomes day 1, 2, ... of
// the month in the present year, whatever its gun says; an incomplete last
// block is left out. Within a block SABAH alone decides: while it is empty
// a row replaces all four cells, once it holds text a row adds a line to
// each.
void Form16::Command1_Click() {
    const kit::BusyCursor busy;
    store::Connection& connection = openedBaglanti();
    shell::kayit = std::make_unique<store::Recordset>();
    store::Recordset& menu = *shell::kayit;
    menu.open(u"select* from MENULER where ay=" + Text1->text().toStdU16String(), connection);
    shell::kayit2 = std::make_unique<store::Recordset>();
    shell::kayit2->open(u"delete* from TMPMENU", connection);
    shell::kayit2 = std::make_unique<store::Recordset>();
    store::Recordset& days = *shell::kayit2;
    days.open(u"select* from TMPMENU", connection);

    // The month's rows become durable together, when the last day is in.
    std::optional<store::WriteScope> scope;
    scope.emplace(days);
    const QString monthAndYear = QStringLiteral("/") + Text1->text() + QStringLiteral("/") +
                                 QString::number(shell::today().year());
    // The count of days in floating point: 30.25 for a stray fifth row.
    const double dayCount = static_cast<double>(menu.recordCount()) / 4;
    for (int day = 1; day <= dayCount; ++day) {
        days.addNew();
        // Read day first; a day the month lacks (29 February in another
        // year) is refused here and ends the program.
        days.setField(u"TARIH",
                      jet::Value::text((QString::number(day) + monthAndYear).toStdU16String()));
        const jet::Value date = days.field(u"TARIH");
        days.setField(
            u"GUN",
            jet::Value::text(
                engine::formatDate(date.asDate(), QStringLiteral("dddd")).toStdU16String()));
        for (int row = 0; row < 4; ++row) {
            const bool append = holdsText(days.field(u"SABAH"));
            for (const MealColumn& meal : kMeals) {
                const jet::Value line = menu.field(meal.line);
                days.setField(meal.day, append ? appended(days.field(meal.day), line) : line);
            }
            days.update();
            menu.moveNext();
        }
    }
    scope->commit();
    // The scope goes before the record sets and the connection it writes
    // through.
    scope.reset();

    menu.close();
    days.close();
    shell::kayit.reset();
    shell::kayit2.reset();
    shell::baglanti->Close();
    shell::baglanti.reset();
}

void Form16::Form_Unload() {
    reports::releaseReport<yemekmenusu>();
}

}  // namespace menus
