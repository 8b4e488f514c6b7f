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

#include "reports/engine/design.h"
#include "reports/engine/report.h"
#include "reports/engine/viewer.h"
#include "shell/kit/connection_strings.h"
#include "tests/store/jet/test_files.h"

namespace engine {
namespace {

// The day students by number, fifty to a page under a title.
class StudentList : public Report {
public:
    explicit StudentList(const std::filesystem::path& database) : Report(design(database)) {}
    QStringList tools;  // the tools clicked, in order
    void ActiveReport_ToolbarClick(const QString& tool) override { tools << tool; }

private:
    static ReportDefinition design(const std::filesystem::path& database) {
        ReportDefinition definition;
        const Control title =
            label(QStringLiteral("Label1"), {0, 0, 6000, 400}, QStringLiteral("ÖĞRENCİ LİSTESİ"));
        Band detail{BandKind::Detail, 300, {}};
        for (const char* column : {"Numara", "Adi", "Soyadi"}) {
            const int left = static_cast<int>(detail.controls.size()) * 3000;
            detail.controls.push_back(
                field(QStringLiteral("Field%1").arg(detail.controls.size() + 1),
                      {left, 0, 3000, 300}, QString::fromLatin1(column)));
        }
        definition.bands = {{BandKind::PageHeader, 600, {title}}, detail};
        definition.dataControl = {kit::connectionString(QString::fromStdString(database.string())),
                                  QStringLiteral("SELECT * FROM ORNEK ORDER BY Numara")};
        return definition;
    }
};

template <class Widget = QWidget>
Widget* named(const QWidget& parent, const char* name) {
    for (Widget* widget : parent.findChildren<Widget*>()) {
        if (widget->accessibleName() == QString::fromUtf8(name))
            return widget;
    }
    throw std::runtime_error(std::string("no control named ") + name);
}

// Prints into the file through the system's print dialog, as a user who
// chooses printing to a file; keeps the page count the viewer had then.
void answerPrintDialog(QTimer& timer, const Viewer& viewer, const std::filesystem::path& pdf,
                       int& pagesShown) {
    QObject::connect(&timer, &QTimer::timeout, [&viewer, pdf, &pagesShown] {
        auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible())
            return;
        pagesShown = viewer.pageCount();
        for (QLineEdit* file : dialog->findChildren<QLineEdit*>()) {
            if (file->objectName() == QLatin1String("filename"))
                file->setText(QString::fromStdString(pdf.string()));
        }
        dialog->accept();
    });
    timer.start(10);
}

TEST(Viewer, PrintsARunningReportWholeAndTurnsItsPages) {
    SKIP_WITHOUT_FIXTURES();
    const jet::testing::TempDir folder;
    std::filesystem::copy_file(jet::testing::fixturesDir() / "kvl" / "kvl.mdb",
                               folder.path() / "kvl.mdb");
    Viewer viewer;
    viewer.resize(900, 700);
    viewer.show();
    QLineEdit* pageBox = named<QLineEdit>(viewer, "Sayfa numarası");
    EXPECT_EQ(pageBox->text(), QStringLiteral("0 / 0"));
    for (QWidget* control : viewer.findChildren<QWidget*>()) {
        if (qobject_cast<QAbstractButton*>(control) || qobject_cast<QLineEdit*>(control) ||
            qobject_cast<QComboBox*>(control) || qobject_cast<QToolBar*>(control)) {
            EXPECT_FALSE(control->accessibleName().isEmpty()) << control->metaObject()->className();
        }
    }

    // Printing at once lays out the rest of the report before the dialog.
    StudentList report(folder.path() / "kvl.mdb");
    viewer.setReportSource(&report);
    EXPECT_TRUE(report.running());
    QTimer answer;
    int pagesShown = 0;
    answerPrintDialog(answer, viewer, folder.path() / "yazici.pdf", pagesShown);
    named<QAbstractButton>(viewer, "Yazdır")->click();
    const int count = static_cast<int>(report.pages().size());
    ASSERT_GE(count, 9);  // 480 students
    EXPECT_EQ(pagesShown, count);
    EXPECT_TRUE(
        QString::fromStdString(
            jet::testing::runCommand(
                "pdfinfo " + jet::testing::shellQuote((folder.path() / "yazici.pdf").string())))
            .simplified()
            .contains(QStringLiteral("Pages: %1").arg(count)));

    EXPECT_EQ(pageBox->text(), QStringLiteral("1 / %1").arg(count));
    named<QAbstractButton>(viewer, "Sonraki sayfa")->click();
    EXPECT_EQ(viewer.currentPage(), 1);
    QWidget* pages = named(viewer, "Rapor sayfaları");
    QTest::keyClick(pages, Qt::Key_PageDown);
    EXPECT_EQ(pageBox->text(), QStringLiteral("3 / %1").arg(count));
    QTest::keyClick(pages, Qt::Key_PageUp);
    EXPECT_EQ(viewer.currentPage(), 1);
    named<QAbstractButton>(viewer, "Son sayfa")->click();
    EXPECT_EQ(pageBox->text(), QStringLiteral("%1 / %1").arg(count));
    named<QAbstractButton>(viewer, "Önceki sayfa")->click();
    EXPECT_EQ(viewer.currentPage(), count - 2);
    named<QAbstractButton>(viewer, "İlk sayfa")->click();
    EXPECT_EQ(viewer.currentPage(), 0);
    pageBox->setText(QStringLiteral("5"));
    QTest::keyClick(pageBox, Qt::Key_Return);
    EXPECT_EQ(pageBox->text(), QStringLiteral("5 / %1").arg(count));

    // Fitted to the width, a page fills the view but for the gaps at its sides.
    viewer.setZoom(-1);
    EXPECT_EQ(named<QComboBox>(viewer, "Yakınlaştırma")->currentText(),
              QStringLiteral("Sayfa genişliği"));
    const QImage shown = pages->grab().toImage();
    shown.save(QDir::temp().filePath(QStringLiteral("report_paint_viewer.png")));
    int white = 0;
    for (int x = 0; x < shown.width(); ++x)
        white += shown.pixel(x, shown.height() / 2) == qRgb(255, 255, 255) ? 1 : 0;
    EXPECT_GT(white, shown.width() * 8 / 10);
    EXPECT_LT(white, shown.width() - 20);

    viewer.addTool(QStringLiteral("Pdf kaydet"));
    named<QAbstractButton>(viewer, "Pdf kaydet")->click();
    EXPECT_EQ(report.tools, QStringList{QStringLiteral("Pdf kaydet")});
    viewer.setReportSource(nullptr);
    EXPECT_EQ(pageBox->text(), QStringLiteral("0 / 0"));
}

}  // namespace
}  // namespace engine
