#include "reports/engine/page_output.h"

#include <QDir>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include "reports/engine/page_painter.h"
#include "reports/engine/units.h"

namespace engine {
namespace {

// Fine enough for barcodes of narrow modules; a PDF keeps text and bars as
// shapes, so the resolution only sets where they may stand.
constexpr int kPdfDotsPerInch = 600;

QPageLayout::Orientation orientationOf(const Page& page) {
    return page.width > page.height ? QPageLayout::Landscape : QPageLayout::Portrait;
}

// The page's own paper, without margins: the page's twips start at the
// paper's corner. A size the paper names (A4, Letter) is given that name.
QPageLayout layoutOf(const Page& page) {
    const bool landscape = orientationOf(page) == QPageLayout::Landscape;
    const QSizeF upright =
        landscape ? QSizeF(page.height, page.width) : QSizeF(page.width, page.height);
    QPageSize size(upright / kTwipsPerPoint, QPageSize::Point, QString(), QPageSize::FuzzyMatch);
    if (!size.isValid())
        size = QPageSize(QPageSize::A4);
    return {size, orientationOf(page), QMarginsF()};
}

// Paints the pages into the PDF file open for writing; false when the
// writer fails.
bool writePdf(const std::vector<Page>& pages, QIODevice& file, const QString& title) {
    QPdfWriter writer(&file);
    writer.setResolution(kPdfDotsPerInch);
    writer.setTitle(title);
    writer.setCreator(QStringLiteral("Sofravan"));
    writer.setPageLayout(layoutOf(pages.front()));
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    const double scale = pixelsPerTwip(writer.resolution());
    for (std::size_t index = 0; index < pages.size(); ++index) {
        if (index > 0) {
            writer.setPageLayout(layoutOf(pages[index]));
            if (!writer.newPage())
                return false;
        }
        paintPage(pages[index], painter, scale);
    }
    return painter.end();
}

// Paints the pages on the printer; false when it fails. The paper is the
// printer's; each page turns it to its own orientation and is placed from
// the paper's corner, as in the PDF.
bool paintOnPrinter(const std::vector<const Page*>& pages, QPrinter& printer) {
    printer.setFullPage(true);
    printer.setPageOrientation(orientationOf(*pages.front()));
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const double scale = pixelsPerTwip(printer.resolution());
    for (std::size_t index = 0; index < pages.size(); ++index) {
        if (index > 0) {
            printer.setPageOrientation(orientationOf(*pages[index]));
            if (!printer.newPage())
                return false;
        }
        paintPage(*pages[index], painter, scale);
    }
    return painter.end() && printer.printerState() != QPrinter::Error;
}

}  // namespace

QString savePdf(const std::vector<Page>& pages, const QString& path, const QString& title) {
    if (pages.empty())
        return QStringLiteral("PDF dosyasına yazılacak sayfa yok.");
    // Until the commit the pages go to a file beside the path, which is
    // removed when anything fails.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !writePdf(pages, file, title) || !file.commit())
        return QStringLiteral("PDF dosyası yazılamadı: %1").arg(QDir::toNativeSeparators(path));
    return {};
}

QString printPages(const std::vector<Page>& pages, QPrinter& printer) {
    // The dialog's page numbers count from 1; no range means every page.
    const QPageRanges ranges = printer.pageRanges();
    const bool everyPage = printer.printRange() != QPrinter::PageRange || ranges.isEmpty();
    std::vector<const Page*> printed;
    for (std::size_t index = 0; index < pages.size(); ++index) {
        if (everyPage || ranges.contains(static_cast<int>(index) + 1))
            printed.push_back(&pages[index]);
    }
    if (!printed.empty() && !paintOnPrinter(printed, printer))
        return QStringLiteral("Yazıcıya yazdırılamadı.");
    return {};
}

}  // namespace engine
