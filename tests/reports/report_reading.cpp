#include "tests/reports/report_reading.h"

#include <QAbstractItemView>
#include <QTest>

#include <gtest/gtest.h>

#include "reports/engine/page_output.h"
#include "tests/store/jet/test_files.h"

namespace reports::testing {

using jet::testing::runCommand;
using jet::testing::shellQuote;

namespace {

// mdbtools' tab-separated export, quotes taken off; with `escaped` the
// line breaks inside a memo come back from their escapes.
Rows parseExport(const QString& tsv, bool escaped) {
    Rows rows;
    for (const QString& line : tsv.split(u'\n', Qt::SkipEmptyParts).mid(1)) {
        QStringList fields = line.split(u'\t');
        for (QString& field : fields) {
            if (field.startsWith(u'"') && field.endsWith(u'"'))
                field = field.mid(1, field.size() - 2);
            if (escaped) {
                field.replace(QLatin1String("\\r"), QLatin1String("\r"))
                    .replace(QLatin1String("\\n"), QLatin1String("\n"));
            }
        }
        rows.push_back(fields);
    }
    return rows;
}

}  // namespace

Rows exported(const std::filesystem::path& database, const char* table) {
    return parseExport(
        QString::fromStdString(runCommand(std::string(MDB_EXPORT_EXECUTABLE) + " -d '\t' " +
                                          shellQuote(database.string()) + " " + table)),
        false);
}

std::optional<Rows> exportedMemos(const std::filesystem::path& database, const char* table) {
    int status = 0;
    const QString tsv = QString::fromStdString(
        runCommand(std::string(MDB_EXPORT_EXECUTABLE) + " -e -d '\t' -D '%d.%m.%Y' -T '%d.%m.%Y' " +
                       shellQuote(database.string()) + " " + table + " 2>/dev/null",
                   &status));
    if (status != 0)
        return std::nullopt;
    return parseExport(tsv, true);
}

QString printedText(engine::Report* report, const std::filesystem::path& folder, const char* name) {
    EXPECT_NE(report, nullptr);
    if (report == nullptr)
        return {};
    EXPECT_TRUE(QTest::qWaitFor([report] { return report->done(); }, 120000));
    const std::string pdf = (folder / (std::string(name) + ".pdf")).string();
    EXPECT_EQ(
        engine::savePdf(report->pages(), QString::fromStdString(pdf), QString::fromLatin1(name)),
        QString());
    return QString::fromStdString(runCommand("pdftotext -layout " + shellQuote(pdf) + " -"));
}

void pick(kit::ComboBox* combo, const QString& entry) {
    const int index = combo->findText(entry);
    ASSERT_GE(index, 0) << entry.toStdString();
    combo->showPopup();
    QAbstractItemView* list = combo->view();
    const QModelIndex item = list->model()->index(index, 0);
    list->scrollTo(item);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(item).center());
}

}  // namespace reports::testing
