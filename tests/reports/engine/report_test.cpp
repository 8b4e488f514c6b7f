// The report object over a database made by our engine: pages checked as
// display lists (page counts either side of an exact fit, where rows and
// columns stand, what does not print), the order of the events, and runs
// stopped, restarted, failing and unloaded.

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "reports/engine/design.h"
#include "reports/engine/report.h"
#include "store/data_error.h"
#include "store/jet/database.h"
#include "tests/store/jet/test_files.h"

namespace engine {
namespace {

// Eleven students, numbered 1 to 11, born on 5 August 2026 (a Wednesday).
class StudentFile {
public:
    StudentFile() : path_((dir_.path() / "okul.mdb").string()) {
        jet::Database::create(path_, {});
        jet::Database database(path_, jet::PageFile::Mode::ReadWrite);
        database.createTable(
            u"CREATE TABLE OGRENCI (Numara LONG, Adi TEXT(40), Tarih DATETIME, TCKimlikNo "
            u"TEXT(11))");
        std::vector<std::vector<jet::Value>> rows;
        for (int number = 1; number <= 11; ++number) {
            rows.push_back(
                {jet::Value::integer(number),
                 jet::Value::text(u"Ad " + QString::number(number).toStdU16String()),
                 jet::Value::date(jet::Date::fromCivil({2026, 8, 5})),
                 jet::Value::text(u"100000000" + QString::number(10 + number).toStdU16String())});
        }
        database.insertRows(u"OGRENCI", rows);
    }
    QString connectionString() const {
        return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") +
               QString::fromStdString(path_);
    }

private:
    jet::testing::TempDir dir_;
    std::string path_;
};

// A page of 6000 by 3000 twips: the header ends at 600, the footer begins
// at 2600, so ten Details of 200 twips fill the page exactly. The group
// footer prints only when given a height.
ReportDefinition listDefinition(const StudentFile& file, int detailHeight = 200,
                                int groupFooterHeight = 0) {
    ReportDefinition definition;
    definition.page = {6000, 3000, false, 300, 300, 100, 100, 5400};
    Control hidden = label("Gizli", {0, 0, 1000, 200}, "GİZLİ");
    hidden.Visible = false;
    definition.bands.push_back(
        {BandKind::PageHeader, 500, {label("Baslik", {0, 0, 3000, 400}, "LİSTE"), hidden}});
    Control name = field("Ad", {500, 0, 2000, 200}, "Adi");
    name.border = true;
    Control date = field("Tarih", {2500, 0, 2500, 200}, "Tarih");
    date.OutputFormat = "dd-mmm-yyyy dddd";
    definition.bands.push_back({BandKind::Detail,
                                detailHeight,
                                {field("Sira", {0, 0, 500, 200}), name, date,
                                 field("Alt", {100, 425, 800, 284}, "TCKimlikNo")}});
    definition.bands.push_back(
        {BandKind::GroupFooter1, groupFooterHeight, {field("Toplam", {0, 0, 2000, 250})}});
    definition.bands.push_back(
        {BandKind::PageFooter, 300, {label("Son", {0, 0, 2000, 300}, "SAYFA SONU")}});
    definition.dataControl.ConnectionString = file.connectionString();
    return definition;
}

// A report that writes down its events, numbers its rows as the lists do,
// and lets a test act inside Detail_Format.
class RecordingReport : public Report {
public:
    RecordingReport(ReportDefinition definition, QString source)
        : Report(std::move(definition)), source_(std::move(source)) {
        connect(this, &Report::pageAdded, this,
                [this](int index) { events.push_back(QStringLiteral("page %1").arg(index)); });
    }

    std::vector<QString> events;
    std::function<void()> onDetail;
    std::optional<int> endDataAt;  // the fetch at which the handler sets EOF
    int cancelClose = 0;

    void ActiveReport_ReportStart() override {
        events.push_back("start");
        DataControl1.Source = source_;
        rows_ = 0;
    }
    void ActiveReport_FetchData(bool& eof) override {
        events.push_back(eof ? "fetch eof" : "fetch");
        if (!eof && endDataAt == rows_ + 1)
            eof = true;
        if (!eof)
            control(u"Sira").Text = QString::number(rows_ + 1);
        ++rows_;
    }
    void PageHeader_Format() override { events.push_back("header"); }
    void Detail_Format() override {
        events.push_back(control(u"ad").Text);
        if (onDetail)
            onDetail();
    }
    void GroupFooter1_Format() override {
        events.push_back("group footer");
        control(u"Toplam").Text = QStringLiteral("TOPLAM %1").arg(rows_ - 1);
    }
    void ActiveReport_QueryClose(int& cancel, int closeMode) override {
        events.push_back(QStringLiteral("close %1 %2").arg(cancel).arg(closeMode));
        cancel = cancelClose;
    }

    int rows() const { return rows_; }

private:
    QString source_;
    int rows_ = 0;
};

QString upTo(int number) {
    return QStringLiteral("select * from OGRENCI where Numara <= %1").arg(number);
}

// The boxes of the texts on the page that read `text`.
std::vector<Box> textBoxes(const Page& page, const QString& text) {
    std::vector<Box> boxes;
    for (const PageItem& item : page.items) {
        if (const auto* textItem = std::get_if<TextItem>(&item); textItem && textItem->text == text)
            boxes.push_back(textItem->box);
    }
    return boxes;
}

template <class Item>
std::vector<Box> boxesOf(const Page& page) {
    std::vector<Box> boxes;
    for (const PageItem& item : page.items) {
        if (const auto* found = std::get_if<Item>(&item))
            boxes.push_back(found->box);
    }
    return boxes;
}

#define EXPECT_AT(boxes, x, y)           \
    do {                                 \
        ASSERT_EQ((boxes).size(), 1u);   \
        EXPECT_EQ((boxes)[0].left, (x)); \
        EXPECT_EQ((boxes)[0].top, (y));  \
    } while (false)

TEST(ReportLayout, DetailsFillThePageToTheFooterAndNoFurther) {
    StudentFile file;
    RecordingReport ten(listDefinition(file), upTo(10));
    ten.Run();
    ASSERT_EQ(ten.pages().size(), 1u);
    const Page& page = ten.pages()[0];
    EXPECT_AT(textBoxes(page, "LİSTE"), 300, 100);
    EXPECT_AT(textBoxes(page, "Ad 1"), 800, 600);
    EXPECT_AT(textBoxes(page, "Ad 10"), 800, 2400);
    EXPECT_AT(textBoxes(page, "SAYFA SONU"), 300, 2600);
    // The row number set in FetchData, the bound date in its output format.
    EXPECT_AT(textBoxes(page, "10"), 300, 2400);
    EXPECT_EQ(textBoxes(page, "05-Ağu-2026 Çarşamba").size(), 10u);
    // A border frames its field; a hidden control and one below its band's
    // height print nothing.
    EXPECT_EQ(boxesOf<FrameItem>(page).size(), 10u);
    EXPECT_TRUE(textBoxes(page, "GİZLİ").empty());
    EXPECT_TRUE(textBoxes(page, "10000000011").empty());
    EXPECT_EQ(ten.control(u"Alt").Text, "10000000020");

    RecordingReport eleven(listDefinition(file), upTo(11));
    eleven.Run();
    ASSERT_EQ(eleven.pages().size(), 2u);
    EXPECT_AT(textBoxes(eleven.pages()[1], "Ad 11"), 800, 600);
    EXPECT_AT(textBoxes(eleven.pages()[1], "LİSTE"), 300, 100);

    // One twip more a Detail and the tenth no longer fits.
    RecordingReport taller(listDefinition(file, 201), upTo(10));
    taller.Run();
    ASSERT_EQ(taller.pages().size(), 2u);
    EXPECT_AT(textBoxes(taller.pages()[0], "Ad 9"), 800, 600 + 8 * 201);
    EXPECT_AT(textBoxes(taller.pages()[1], "Ad 10"), 800, 600);
}

TEST(ReportLayout, EventsComeInTheirOrder) {
    StudentFile file;
    const ReportDefinition definition = listDefinition(file, 200, 250);
    RecordingReport two(definition, upTo(2));
    two.Run();
    EXPECT_EQ(two.events, (std::vector<QString>{"start", "header", "fetch", "Ad 1", "fetch", "Ad 2",
                                                "fetch eof", "group footer", "page 0"}));
    EXPECT_AT(textBoxes(two.pages()[0], "TOPLAM 2"), 300, 1000);
    EXPECT_TRUE(two.done());

    // A full page: the footer of the group goes to a page of its own.
    RecordingReport ten(definition, upTo(10));
    ten.Run();
    EXPECT_EQ(
        std::vector<QString>(ten.events.end() - 6, ten.events.end()),
        (std::vector<QString>{"Ad 10", "fetch eof", "group footer", "page 0", "header", "page 1"}));
    ASSERT_EQ(ten.pages().size(), 2u);
    EXPECT_AT(textBoxes(ten.pages()[1], "TOPLAM 10"), 300, 600);

    // No rows: one page with its header, group footer and footer.
    RecordingReport none(definition, upTo(0));
    none.Run();
    EXPECT_EQ(none.events,
              (std::vector<QString>{"start", "header", "fetch eof", "group footer", "page 0"}));
    ASSERT_EQ(none.pages().size(), 1u);
    EXPECT_AT(textBoxes(none.pages()[0], "LİSTE"), 300, 100);
    EXPECT_AT(textBoxes(none.pages()[0], "SAYFA SONU"), 300, 2600);
    EXPECT_TRUE(boxesOf<FrameItem>(none.pages()[0]).empty());

    // A handler that sets EOF ends the data without another fetch.
    RecordingReport cut(definition, upTo(10));
    cut.endDataAt = 3;
    cut.Run();
    EXPECT_EQ(std::vector<QString>(cut.events.begin() + 6, cut.events.end()),
              (std::vector<QString>{"fetch", "group footer", "page 0"}));
}

TEST(ReportLayout, CardsFillThreeColumnsOfALandscapePage) {
    StudentFile file;
    ReportDefinition definition;
    definition.page = {12240, 15840, true, 720, 720, 1080, 720, 14445};
    definition.detailColumns = 3;
    const Control photo = picture("Image1", {3240, 1230, 992, 1220});
    const Control code = barcode("Barcode1", {992, 2320, 1984, 700}, "TCKimlikNo");
    definition.bands = {{BandKind::PageHeader, 360, {}},
                        {BandKind::GroupHeader1, 0, {}},
                        {BandKind::Detail,
                         2880,
                         {field("Sira", {0, 0, 100, 100}),
                          field("Ad", {1276, 1600, 1842, 284}, "Adi"), photo, code}},
                        {BandKind::GroupFooter1, 0, {field("Toplam", {0, 0, 1, 1})}},
                        {BandKind::PageFooter, 360, {}}};
    definition.dataControl.ConnectionString = file.connectionString();
    RecordingReport cards(definition, upTo(10));
    QImage picture(20, 30, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    // The photograph of every other student.
    cards.onDetail = [&] {
        cards.control(u"Image1").Picture = cards.rows() % 2 == 1 ? picture : QImage();
    };
    cards.Run();

    // Three cards down a column of 2880 twips from 1440, nine to a page.
    ASSERT_EQ(cards.pages().size(), 2u);
    const Page& first = cards.pages()[0];
    EXPECT_EQ(first.width, 15840);
    EXPECT_EQ(first.height, 12240);
    const int column = 14445 / 3;
    EXPECT_AT(textBoxes(first, "Ad 1"), 720 + 1276, 1440 + 1600);
    EXPECT_AT(textBoxes(first, "Ad 4"), 720 + column + 1276, 1440 + 1600);
    EXPECT_AT(textBoxes(first, "Ad 9"), 720 + 2 * column + 1276, 1440 + 2 * 2880 + 1600);
    EXPECT_AT(textBoxes(cards.pages()[1], "Ad 10"), 720 + 1276, 1440 + 1600);
    const std::vector<Box> photos = boxesOf<ImageItem>(first);
    ASSERT_EQ(photos.size(), 5u);  // students 1, 3, 5, 7 and 9
    EXPECT_AT(std::vector<Box>{photos[2]}, 720 + column + 3240, 1440 + 2880 + 1230);
    // The barcode takes its column's value as text; its box is cut off at
    // the bottom of the card's band.
    const auto* barcodeItem = std::get_if<BarcodeItem>(&first.items.back());
    ASSERT_NE(barcodeItem, nullptr);
    EXPECT_EQ(barcodeItem->text, "10000000019");
    EXPECT_EQ(barcodeItem->box.top, 1440 + 2 * 2880 + 2320);
    EXPECT_EQ(barcodeItem->box.height, 2880 - 2320);
    EXPECT_EQ(boxesOf<BarcodeItem>(first).size(), 9u);
}

TEST(ReportRun, StopRestartFailureAndUnload) {
    StudentFile file;
    auto* report = new RecordingReport(listDefinition(file), upTo(11));
    QPointer<Report> alive(report);
    QSignalSpy finished(report, &Report::finished);
    // Stopped while the eleventh row's Detail is formatted: that row is laid
    // out, the first page stays, the second is dropped, nothing more is
    // fetched.
    report->onDetail = [&] {
        if (report->rows() == 11)
            report->Stop();
    };
    report->start();
    EXPECT_TRUE(report->running());
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(report->running());
    EXPECT_EQ(report->pages().size(), 1u);
    EXPECT_EQ(std::vector<QString>(report->events.end() - 4, report->events.end()),
              (std::vector<QString>{"fetch", "Ad 11", "page 0", "header"}));
    report->start();
    EXPECT_FALSE(report->running());

    // Restart runs the same object again from its start.
    report->onDetail = nullptr;
    report->events.clear();
    report->Restart();
    EXPECT_TRUE(report->pages().empty());
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(finished.count(), 2);
    EXPECT_EQ(report->pages().size(), 2u);
    EXPECT_EQ(report->events.front(), "start");
    EXPECT_EQ(report->events.back(), "page 1");

    // A handler's failure leaves Run; the finished page stays.
    RecordingReport failing(listDefinition(file, 201), upTo(11));
    QSignalSpy failingFinished(&failing, &Report::finished);
    failing.onDetail = [&] {
        if (failing.rows() == 11)
            throw std::runtime_error("Detail_Format failed");
    };
    EXPECT_THROW(failing.Run(), std::runtime_error);
    EXPECT_FALSE(failing.running());
    EXPECT_EQ(failing.pages().size(), 1u);
    EXPECT_EQ(failingFinished.count(), 0);

    // A column the rows lack, and a data control without a source.
    ReportDefinition missing = listDefinition(file);
    missing.bands[1].controls[1].DataField = "Soyadi";
    EXPECT_THROW(RecordingReport(missing, upTo(3)).Run(), store::DataError);
    EXPECT_THROW(RecordingReport(listDefinition(file), QString()).Run(), store::DataError);

    // Unload asks first: a cancel keeps the report, otherwise it goes at once.
    report->cancelClose = 1;
    unload(report);
    ASSERT_FALSE(alive.isNull());
    EXPECT_EQ(report->events.back(), "close 0 1");
    report->cancelClose = 0;
    unload(report);
    EXPECT_TRUE(alive.isNull());

    // Unloaded from inside its own layout, it stops there and goes when the
    // slice returns.
    auto* inside = new RecordingReport(listDefinition(file), upTo(11));
    QPointer<Report> insideAlive(inside);
    QSignalSpy insideFinished(inside, &Report::finished);
    bool aliveAfterUnload = false;
    inside->onDetail = [&] {
        if (inside->rows() == 3) {
            unload(inside);
            aliveAfterUnload = !insideAlive.isNull();
        }
    };
    inside->start();
    ASSERT_TRUE(insideFinished.wait(10000));
    EXPECT_TRUE(aliveAfterUnload);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(insideAlive.isNull());
}

}  // namespace
}  // namespace engine
