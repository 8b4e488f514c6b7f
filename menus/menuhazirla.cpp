#include "menus/menuhazirla.h"

#include <array>
#include <optional>
#include <tuple>
#include <utility>

#include <QCloseEvent>

#include "menus/school_year.h"
#include "portal/form12.h"
#include "shell/clock.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/kit/vb_number.h"
#include "shell/months.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"
#include "store/data_error.h"
#include "store/date_text.h"
#include "store/write_scope.h"

namespace menus {
namespace {

const QString kMonthPrompt = QStringLiteral("Ay seçimi yapınız...");

// The meal columns of MENULER, in the order of the grid's columns 2 to 5.
constexpr std::array<std::u16string_view, 4> kMealColumns = {u"sabah", u"oglen", u"aksam",
                                                             u"ara_ogun"};

// The designed window, in twips; the controls are placed on it as the
// original form has them, and Resizer1 scales them from there.
constexpr int kWindowWidth = 16200;
constexpr int kWindowHeight = 9900;

using kit::named;
using kit::place;

// The runtime's Trim: blanks only, not tabs or line breaks.
QString trimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == u' ')
        ++first;
    while (last > first && text.at(last - 1) == u' ')
        --last;
    return text.mid(first, last - first);
}

// A value added to a list as text: Null has no text and fails.
QString listText(const jet::Value& value) {
    if (value.isNull())
        throw store::DataError("Invalid use of Null");
    return kit::displayText(value);
}

// A date text read as the Turkish system reads it, day first; a text that is
// no date fails.
QDate dayFirstDate(const QString& text) {
    const std::optional<jet::Date> date = store::readDate(text.toStdU16String());
    if (!date)
        throw store::DataError("Type mismatch");
    const jet::CivilDateTime civil = date->toCivil();
    return {civil.year, civil.month, civil.day};
}

// The system's abbreviated day name of a weekday counted from Monday as 1;
// the Turkish week begins on Monday, so number and name agree.
QString weekdayName(int mondayFirst) {
    static const QStringList names = {
        QStringLiteral("Pzt"), QStringLiteral("Sal"), QStringLiteral("Çar"), QStringLiteral("Per"),
        QStringLiteral("Cum"), QStringLiteral("Cmt"), QStringLiteral("Paz")};
    return names.at(mondayFirst - 1);
}

jet::Value text(const QString& value) {
    return jet::Value::text(value.toStdU16String());
}

}  // namespace

menuhazirla::menuhazirla() {
    kit::designWindow(this, "menuhazirla", QStringLiteral("Yemek menüsü hazırlama"), kWindowWidth,
                      kWindowHeight);
    placeControls();
    connectHandlers();
    // The data control opens as the window loads, before its Form_Load.
    kit::openDataControl(Adodc1);
    Resizer1 = named(new kit::Resizer(this), "Resizer1");
    Form_Load();
}

void menuhazirla::placeControls() {
    Combo1 = named(new kit::ComboBox(this), "Combo1");
    Combo1->setEditable(true);
    Combo1->setInsertPolicy(QComboBox::NoInsert);
    Combo1->addItems(schoolYearMonths());
    Combo1->setCurrentIndex(-1);
    Combo1->setEditText(kMonthPrompt);
    Combo1->setAccessibleName(QStringLiteral("Ay"));
    place(Combo1, 120, 165, 2760, 330);
    Command1 = named(new QPushButton(QStringLiteral("Seçili ay için menü listesi oluştur"), this),
                     "Command1");
    place(Command1, 3000, 120, 3840, 420);
    Command4 =
        named(new QPushButton(QStringLiteral("Seçili ay menü listesi sil"), this), "Command4");
    place(Command4, 6960, 120, 2880, 420);

    placeMealChoice();
    Command2 = named(new QPushButton(QStringLiteral("e okula aktar"), this), "Command2");
    place(Command2, 8760, 780, 1560, 420);

    TDBGrid1 = named(new kit::DataGrid(this), "TDBGrid1");
    place(TDBGrid1, 120, 1380, 10200, 8340);
    TDBGrid1->setDataSource(&Adodc1);
    // Months 7 and 8 have no entry: the grid shows them as bare numbers.
    QMap<QString, QString> monthNames;
    for (const int month : {9, 10, 11, 12, 1, 2, 3, 4, 5, 6})
        monthNames.insert(QString::number(month), shell::ayAdi(month));
    TDBGrid1->setColumns(
        {{QStringLiteral("AY"), QStringLiteral("ay"), true, 1050, monthNames},
         {QStringLiteral("GÜN"), QStringLiteral("gun"), true, 600, {}},
         {QStringLiteral("SABAH"), QStringLiteral("sabah"), true, 2000, {}},
         {QStringLiteral("ÖĞLEN"), QStringLiteral("oglen"), true, 2000, {}},
         {QStringLiteral("AKŞAM"), QStringLiteral("aksam"), true, 2000, {}},
         {QStringLiteral("ARA ÖĞÜN"), QStringLiteral("ara_ogun"), true, 2000, {}}});
    TDBGrid1->setAllowUpdate(true);
    TDBGrid1->setAllowAddNew(false);
    TDBGrid1->allowDelete = false;

    Label5 = named(new QLabel(QStringLiteral("Yemek listesine yemek aktarmak için ilgili öğün "
                                             "listesine çift tıklatın."),
                              this),
                   "Label5");
    Label5->setWordWrap(true);
    place(Label5, 10500, 120, 5580, 600);
    placePickLists();

    // Hidden controls: they hold values, or are not reached at all.
    Text1 = named(new QLineEdit(QStringLiteral("Text1"), this), "Text1");
    Text1->hide();
    Text2 = named(new QLineEdit(QStringLiteral("Text2"), this), "Text2");
    Text2->hide();
    Command3 = named(new QPushButton(QStringLiteral("Command3"), this), "Command3");
    Command3->hide();
}

void menuhazirla::placeMealChoice() {
    Frame1 = named(new QGroupBox(QStringLiteral("Aktarılacak Öğün"), this), "Frame1");
    place(Frame1, 120, 600, 8520, 660);
    const auto option = [this](const QString& caption, const char* name, int left) {
        auto* button = named(new QRadioButton(caption, Frame1), name);
        place(button, left, 270, 1560, 300);
        return button;
    };
    Option1 = option(QStringLiteral("Sabah"), "Option1", 240);
    Option2 = option(QStringLiteral("Öğle"), "Option2", 1920);
    Option3 = option(QStringLiteral("Akşam"), "Option3", 3600);
    Option4 = option(QStringLiteral("Ara Öğün"), "Option4", 5280);
    Option5 = option(QStringLiteral("Tümü"), "Option5", 6960);
}

void menuhazirla::placePickLists() {
    const auto pickList = [this](const QString& caption, const char* labelName,
                                 const char* listName, int left, int top, int height) {
        auto* label = named(new QLabel(caption, this), labelName);
        place(label, left, top, 2700, 255);
        auto* list = named(new QListWidget(this), listName);
        list->setAccessibleName(caption);
        label->setBuddy(list);
        place(list, left, top + 255, 2700, height);
        return std::pair{label, list};
    };
    std::tie(Label1, List1) =
        pickList(QStringLiteral("SABAH"), "Label1", "List1", 10500, 840, 3960);
    std::tie(Label2, List2) =
        pickList(QStringLiteral("ÖĞLEN"), "Label2", "List2", 13380, 840, 3960);
    std::tie(Label3, List3) =
        pickList(QStringLiteral("AKŞAM"), "Label3", "List3", 10500, 5160, 4305);
    std::tie(Label4, List4) =
        pickList(QStringLiteral("ARA ÖĞÜN"), "Label4", "List4", 13380, 5160, 4305);
}

void menuhazirla::connectHandlers() {
    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    kit::on(Command4, &QPushButton::clicked, this, [this] { Command4_Click(); });
    kit::on(List1, &QListWidget::itemDoubleClicked, this, [this] { List1_DblClick(); });
    kit::on(List2, &QListWidget::itemDoubleClicked, this, [this] { List2_DblClick(); });
    kit::on(List3, &QListWidget::itemDoubleClicked, this, [this] { List3_DblClick(); });
    kit::on(List4, &QListWidget::itemDoubleClicked, this, [this] { List4_DblClick(); });
    const auto onChoice = [this](QRadioButton* option, void (menuhazirla::*handler)()) {
        kit::on(option, &QRadioButton::toggled, this, [this, option, handler] {
            if (option->isChecked())
                (this->*handler)();
        });
    };
    onChoice(Option1, &menuhazirla::Option1_Click);
    onChoice(Option2, &menuhazirla::Option2_Click);
    onChoice(Option3, &menuhazirla::Option3_Click);
    onChoice(Option4, &menuhazirla::Option4_Click);
    onChoice(Option5, &menuhazirla::Option5_Click);
    // The weekday tool tip fails silently, whatever the click.
    connect(TDBGrid1, &kit::DataGrid::Click, this, [this] { TDBGrid1_Click(); });
}

void menuhazirla::closeEvent(QCloseEvent* event) {
    kit::writePendingEdits(this);
    event->accept();
}

void menuhazirla::Form_Load() {
    Option1->setChecked(true);
    // From here every failing step is passed over: a file that cannot be
    // opened leaves the lists empty, with no message.
    shell::baglantiac();
    fillPickList(List1, u"SELECT DISTINCT MENULER.sabah From MENULER ORDER BY MENULER.sabah",
                 u"sabah", false);
    fillPickList(List2, u"SELECT DISTINCT MENULER.oglen From MENULER ORDER BY MENULER.oglen",
                 u"oglen", true);
    fillPickList(List3, u"SELECT DISTINCT MENULER.aksam From MENULER ORDER BY MENULER.aksam",
                 u"aksam", true);
    fillPickList(List4, u"SELECT DISTINCT MENULER.ara_ogun From MENULER ORDER BY MENULER.ara_ogun",
                 u"ara_ogun", true);
    kit::skip([] { shell::kayit.reset(); });
    kit::skip([] {
        if (shell::baglanti)
            shell::baglanti->Close();
    });
    kit::skip([] { shell::baglanti.reset(); });
}

// One pick list from the dishes used so far in its column, a whole cell an
// entry. Only List1 counts from where the open leaves the record set.
void menuhazirla::fillPickList(QListWidget* list, std::u16string_view query,
                               std::u16string_view column, bool fromFirstRow) {
    kit::skip([&] {
        if (!shell::baglanti)
            throw store::DataError("Object variable not set");
        if (!shell::kayit)
            shell::kayit = std::make_unique<store::Recordset>();
        shell::kayit->open(query, *shell::baglanti, store::CursorType::Keyset,
                           store::LockType::Optimistic, -1);
    });
    kit::skip([&] { list->clear(); });
    if (fromFirstRow)
        kit::skip([] { shell::kayit->moveFirst(); });
    long rows = 0;
    kit::skip([&] { rows = shell::kayit->recordCount(); });
    for (long row = 0; row < rows; ++row) {
        kit::skip([&] { list->addItem(listText(shell::kayit->field(column))); });
        kit::skip([] { shell::kayit->moveNext(); });
    }
    kit::skip([] { shell::kayit->close(); });
}

void menuhazirla::Combo1_Click() {
    const int month = monthAtPosition(Combo1->ListIndex());
    Text2->setText(QString::number(month));
    Text1->setText(QString::number(shell::aygunu(month)));
    Adodc1.Recordset().setFilter(
        (QStringLiteral(" ay=") + QString::number(month)).toStdU16String());
}

// With rows in view (the chosen month's, or every month's while none is
// chosen) it offers to clear them; otherwise it makes the month's day
// blocks, four rows a day in ascending order.
void menuhazirla::Command1_Click() {
    store::Recordset& rows = Adodc1.Recordset();
    const long count = rows.recordCount();
    if (count >= 1) {
        const int answer =
            kit::MsgBox(QStringLiteral("Bu ay için önceden menü listesi oluşturulmuş\n"
                                       "listeyi temizlemek istermisiniz?"),
                        36, QStringLiteral("Menü listesi oluşturma"));
        if (answer == kit::vbNo)
            return;
        store::WriteScope scope(rows);
        rows.moveFirst();
        for (long row = 0; row < count; ++row) {
            for (const std::u16string_view column : kMealColumns)
                rows.setField(column, jet::Value::text(u""));
            rows.update();
            rows.moveNext();
        }
        scope.commit();
        Adodc1.announce();
        return;
    }
    Text1->setText(QString::number(shell::aygunu(static_cast<int>(kit::Val(Text2->text())))));
    store::WriteScope scope(rows);
    const int month = static_cast<int>(kit::Val(Text2->text()));
    for (int day = 1; day <= shell::aygunu(month); ++day) {
        for (int line = 0; line < 4; ++line) {
            rows.addNew();
            rows.setField(u"ay", jet::Value::integer(month));
            rows.setField(u"gun", jet::Value::integer(day));
            rows.update();
        }
    }
    scope.commit();
    Adodc1.announce();
}

// On to the portal: the window goes, with what unloading its data control
// writes, and the e-Okul window comes.
void menuhazirla::Command2_Click() {
    kit::writePendingEdits(this);
    shell::unload<menuhazirla>();
    shell::showWindow<portal::Form12>();
}

// Not reachable by the user: the weekday of a fixed date in a plain box.
void menuhazirla::Command3_Click() {
    kit::MsgBox(weekdayName(dayFirstDate(QStringLiteral("3/2/2020")).dayOfWeek()));
}

// Deletes what the record set holds: the chosen month under its filter, the
// whole table while no month is chosen.
void menuhazirla::Command4_Click() {
    const bool monthChosen = Combo1->currentText() != kMonthPrompt;
    const int answer =
        kit::MsgBox(monthChosen ? QStringLiteral("Seçili ay menüsü tamamen silinsin mi?")
                                : QStringLiteral("Tüm menüler tamamen silinsin mi?"),
                    36, QStringLiteral("Menü silme"));
    if (answer == kit::vbNo)
        return;
    store::Recordset& rows = Adodc1.Recordset();
    std::optional<store::WriteScope> scope;
    kit::skip([&] { scope.emplace(rows); });
    kit::skip([&] { rows.moveFirst(); });
    long count = 0;
    kit::skip([&] { count = rows.recordCount(); });
    for (long row = 0; row < count; ++row) {
        kit::skip([&] { rows.remove(); });
        kit::skip([&] { rows.moveNext(); });
    }
    kit::skip([&] { rows.update(); });
    kit::skip([&] {
        if (scope)
            scope->commit();
    });
    Adodc1.announce();
}

void menuhazirla::List1_DblClick() {
    pickDish(List1, u"sabah");
}

void menuhazirla::List2_DblClick() {
    pickDish(List2, u"oglen");
}

void menuhazirla::List3_DblClick() {
    pickDish(List3, u"aksam");
}

void menuhazirla::List4_DblClick() {
    pickDish(List4, u"ara_ogun");
}

// Writes the picked dish into the current row's column, after what it
// holds when the grid's current cell shows something. The test is on the
// current cell, whichever column that is, so under "Tümü" it may look at
// another column than the one written. No Update: the edit is written when
// the record set leaves the row.
void menuhazirla::pickDish(QListWidget* list, std::u16string_view column) {
    const QString picked = list->currentItem() != nullptr ? list->currentItem()->text() : QString();
    if (picked.isEmpty())
        return;
    store::Recordset& rows = Adodc1.Recordset();
    if (!TDBGrid1->Text().isEmpty()) {
        const QString held = kit::displayText(rows.field(column));
        rows.setField(column, text(held + QStringLiteral(",") + trimBlanks(picked)));
    } else {
        rows.setField(column, text(trimBlanks(picked)));
    }
    Adodc1.announce();
}

void menuhazirla::Option1_Click() {
    showMeal(2);
}

void menuhazirla::Option2_Click() {
    showMeal(3);
}

void menuhazirla::Option3_Click() {
    showMeal(4);
}

void menuhazirla::Option4_Click() {
    showMeal(5);
}

// All four meals side by side; their widths are set only on a maximised
// window.
void menuhazirla::Option5_Click() {
    showAllMeals();
    if (isMaximized()) {
        const int width = TDBGrid1->widthTwips();
        for (const int column : {2, 3, 4})
            TDBGrid1->setColumnWidthTwips(column, width - 8000);
        TDBGrid1->setColumnWidthTwips(5, width - 11000);
    }
    for (QListWidget* list : {List1, List2, List3, List4})
        list->setEnabled(true);
}

// One meal's column alone beside AY and GÜN, as wide as the grid allows,
// and its pick list the only one enabled.
void menuhazirla::showMeal(int column) {
    showAllMeals();
    const std::array<QListWidget*, 4> lists = {List1, List2, List3, List4};
    for (int other = 2; other <= 5; ++other) {
        if (other != column)
            TDBGrid1->setColumnVisible(other, false);
    }
    TDBGrid1->setColumnWidthTwips(column, TDBGrid1->widthTwips() - 2500);
    for (QListWidget* list : lists)
        list->setEnabled(true);
    for (int other = 2; other <= 5; ++other) {
        if (other != column)
            lists.at(static_cast<std::size_t>(other - 2))->setEnabled(false);
    }
}

void menuhazirla::showAllMeals() {
    for (int column = 2; column <= 5; ++column)
        TDBGrid1->setColumnVisible(column, true);
}

// The weekday of the clicked row's date as the grid's tool tip. A month
// the comparisons do not know (7 and 8, shown as numbers) leaves the date
// text no date, and the tool tip empty.
void menuhazirla::TDBGrid1_Click() {
    kit::silentExit([this] {
        const QString name = TDBGrid1->columnText(0);
        QString month;
        for (int position = 0; position < 12; ++position) {
            if (name == schoolYearMonths().at(position))
                month = QString::number(monthAtPosition(position));
        }
        TDBGrid1->setToolTip(QString());
        const QDate day =
            dayFirstDate(TDBGrid1->columnText(1) + QStringLiteral("/") + month +
                         QStringLiteral("/") + QString::number(shell::today().year()));
        TDBGrid1->setToolTip(weekdayName(day.dayOfWeek()));
    });
}

}  // namespace menus
