// The viewer `arv` showing a report laid out from a copy of the school's
// file, driven through its tool bar and keys as a user would.

#include <filesystem>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPrintDialog>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include <gtest/gtest.h>

#include "reports/engine/report.h"
#include "reports/engine/viewer.h"
#include "shell/kit/connection_strings.h"
#include "tests/store/jet/test_files.h"

namespace engine {
namespace {

using jet::testing::TempDir;

Control field(const QString& name, int left, const QString& column) {
    Control control;
    control.kind = ControlKind::Field;
    control.name = name;
    control.box = {left, 0, 3000, 300};
    control.DataField = column;
    return control;
}

// The day students by number, fifty to a page.
class StudentList : public Report {
public:
    explicit StudentList(const std::filesystem::path& database) : Report(design(database)) {}
    QStringList tools;  // the tools clicked, in order
    void ActiveReport_ToolbarClick(const QString& tool) override { tools << tool; }

private:
    static ReportDefinition design(const std::filesystem::path& database) {
        ReportDefinition definition;
        definition.title = QStringLiteral("Öğrenci listesi");
        Control title;
        title.name = QStringLiteral("Label1");
        title.box = {0, 0, 6000, 400};
        title.Caption = QStringLiteral("ÖĞRENCİ LİSTESİ");
        definition.bands = {
            {BandKind::PageHeader, 600, {title}},
            {BandKind::Detail,
             300,
             {field("Field1", 0, "Numara"), field("Field2", 3000, "Adi"),
              field("Field3", 6000, "Soyadi")}},
        };
        definition.dataControl = {kit::connectionString(QString::fromStdString(database.string())),
                                  QStringLiteral("SELECT * FROM ORNEK ORDER BY Numara")};
        return definition;
    }
};

class ViewerTest : public ::testing::Test {
protected:
    void SetUp() override {
        SKIP_WITHOUT_FIXTURES();
        std::filesystem::copy_file(jet::testing::fixturesDir() / "kvl" / "kvl.mdb", database());
        viewer.resize(900, 700);
        viewer.show();
    }
    std::filesystem::path database() const { return folder.path() / "kvl.mdb"; }
    template <class Widget>
    Widget* named(const QString& name) {
        for (Widget* widget : viewer.findChildren<Widget*>()) {
            if (widget->accessibleName() == name)
                return widget;
        }
        ADD_FAILURE() << "no control named " << name.toStdString();
        return nullptr;
    }
    QString pageBox() { return named<QLineEdit>(QStringLiteral("Sayfa numarası"))->text(); }

    TempDir folder;
    Viewer viewer;
};

TEST_F(ViewerTest, PagesOfARunningReportAreTurnedByToolsKeysAndThePageBox) {
    EXPECT_EQ(pageBox(), QStringLiteral("0 / 0"));
    for (QWidget* control : viewer.findChildren<QWidget*>()) {
        if (qobject_cast<QAbstractButton*>(control) || qobject_cast<QLineEdit*>(control) ||
            qobject_cast<QComboBox*>(control) || qobject_cast<QToolBar*>(control)) {
            EXPECT_FALSE(control->accessibleName().isEmpty()) << control->metaObject()->className();
        }
    }
    named<QWidget>(QStringLiteral("Rapor sayfaları"));

    StudentList report(database());
    viewer.setReportSource(&report);
    ASSERT_TRUE(QTest::qWaitFor([&] { return report.done(); }, 30000));
    const int count = static_cast<int>(report.pages().size());
    ASSERT_GE(count, 9);  // 480 students
    EXPECT_EQ(viewer.pageCount(), count);
    EXPECT_EQ(pageBox(), QStringLiteral("1 / %1").arg(count));

    named<QAbstractButton>(QStringLiteral("Sonraki sayfa"))->click();
    EXPECT_EQ(viewer.currentPage(), 1);
    QTest::keyClick(named<QWidget>(QStringLiteral("Rapor sayfaları")), Qt::Key_PageDown);
    EXPECT_EQ(pageBox(), QStringLiteral("3 / %1").arg(count));
    QTest::keyClick(named<QWidget>(QStringLiteral("Rapor sayfaları")), Qt::Key_PageUp);
    EXPECT_EQ(viewer.currentPage(), 1);
    named<QAbstractButton>(QStringLiteral("Son sayfa"))->click();
    EXPECT_EQ(pageBox(), QStringLiteral("%1 / %1").arg(count));
    named<QAbstractButton>(QStringLiteral("Önceki sayfa"))->click();
    EXPECT_EQ(viewer.currentPage(), count - 2);
    named<QAbstractButton>(QStringLiteral("İlk sayfa"))->click();
    EXPECT_EQ(viewer.currentPage(), 0);
    QLineEdit* box = named<QLineEdit>(QStringLiteral("Sayfa numarası"));
    box->setText(QStringLiteral("5"));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(pageBox(), QStringLiteral("5 / %1").arg(count));

    // Fitted to the width, a page fills the view but for the gaps at its sides.
    viewer.setZoom(-1);
    EXPECT_EQ(named<QComboBox>(QStringLiteral("Yakınlaştırma"))->currentText(),
              QStringLiteral("Sayfa genişliği"));
    QWidget* area = named<QWidget>(QStringLiteral("Rapor sayfaları"));
    const QImage shown = area->grab().toImage();
    shown.save(QDir::temp().filePath(QStringLiteral("report_paint_viewer.png")));
    int white = 0;
    for (int x = 0; x < shown.width(); ++x)
        white += shown.pixel(x, shown.height() / 2) == qRgb(255, 255, 255) ? 1 : 0;
    EXPECT_GT(white, shown.width() * 8 / 10);
    EXPECT_LT(white, shown.width() - 20);
    viewer.setZoom(50);
    EXPECT_EQ(named<QComboBox>(QStringLiteral("Yakınlaştırma"))->currentText(),
              QStringLiteral("%50"));

    viewer.addTool(QStringLiteral("Pdf kaydet"));
    named<QAbstractButton>(QStringLiteral("Pdf kaydet"))->click();
    EXPECT_EQ(report.tools, QStringList{QStringLiteral("Pdf kaydet")});

    viewer.setReportSource(nullptr);
    EXPECT_EQ(pageBox(), QStringLiteral("0 / 0"));
}

// Print finishes a running report before the dialog, and the printer gets
// every page.
TEST_F(ViewerTest, PrintRunsTheReportToItsEndAndPrintsEveryPage) {
    StudentList report(database());
    viewer.setReportSource(&report);
    const std::filesystem::path pdf = folder.path() / "yazici.pdf";
    int pagesWhenAsked = -1;
    QTimer answer;
    answer.setInterval(10);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible())
            return;
        pagesWhenAsked = viewer.pageCount();
        for (QLineEdit* file : dialog->findChildren<QLineEdit*>()) {
            if (file->objectName() == QLatin1String("filename"))
                file->setText(QString::fromStdString(pdf.string()));
        }
        dialog->accept();
    });
    answer.start();
    viewer.print();
    EXPECT_TRUE(report.done());
    EXPECT_EQ(pagesWhenAsked, static_cast<int>(report.pages().size()));
    const std::string info =
        jet::testing::runCommand("pdfinfo " + jet::testing::shellQuote(pdf.string()));
    EXPECT_NE(info.find("Pages:" + std::string(11, ' ') + std::to_string(report.pages().size())),
              std::string::npos)
        << info;
}

}  // namespace
}  // namespace engine
