#include "reports/engine/viewer.h"

#include <algorithm>

#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QToolBar>
#include <QVBoxLayout>

#include "reports/engine/page_output.h"
#include "reports/engine/page_view.h"
#include "reports/engine/report.h"
#include "shell/kit/busy_cursor.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"

namespace engine {
namespace {

constexpr int kFitWidth = -1;
constexpr int kZooms[] = {kFitWidth, 25, 50, 75, 100, 150, 200, 400};
constexpr int kSmallestZoom = 10;
constexpr int kLargestZoom = 800;

QString zoomText(int zoom) {
    return zoom == kFitWidth ? QStringLiteral("Sayfa genişliği") : QStringLiteral("%%1").arg(zoom);
}

}  // namespace

Viewer::Viewer(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Rapor görüntüleyici"));
    toolBar_ = new QToolBar(this);
    toolBar_->setAccessibleName(QStringLiteral("Rapor araç çubuğu"));
    pageView_ = new PageView(this);
    pageView_->setAccessibleName(QStringLiteral("Rapor sayfaları"));
    setFocusProxy(pageView_);

    kit::on(addButton(QStringLiteral("Yazdır"), QStringLiteral("Yazdır")), &QAction::triggered,
            this, [this] { print(); });
    toolBar_->addSeparator();
    connect(addButton(QStringLiteral("|◀"), QStringLiteral("İlk sayfa")), &QAction::triggered, this,
            [this] { showPage(0); });
    connect(addButton(QStringLiteral("◀"), QStringLiteral("Önceki sayfa")), &QAction::triggered,
            this, [this] { showPage(currentPage() - 1); });
    pageBox_ = new QLineEdit(toolBar_);
    pageBox_->setAccessibleName(QStringLiteral("Sayfa numarası"));
    pageBox_->setToolTip(pageBox_->accessibleName());
    pageBox_->setAlignment(Qt::AlignCenter);
    pageBox_->setFixedWidth(
        pageBox_->fontMetrics().horizontalAdvance(QStringLiteral("0000 / 0000")) + 12);
    toolBar_->addWidget(pageBox_);
    connect(pageBox_, &QLineEdit::returnPressed, this, &Viewer::goToTypedPage);
    connect(addButton(QStringLiteral("▶"), QStringLiteral("Sonraki sayfa")), &QAction::triggered,
            this, [this] { showPage(currentPage() + 1); });
    connect(addButton(QStringLiteral("▶|"), QStringLiteral("Son sayfa")), &QAction::triggered, this,
            [this] { showPage(pageCount() - 1); });
    toolBar_->addSeparator();
    zoomBox_ = new QComboBox(toolBar_);
    zoomBox_->setAccessibleName(QStringLiteral("Yakınlaştırma"));
    zoomBox_->setToolTip(zoomBox_->accessibleName());
    for (int zoom : kZooms)
        zoomBox_->addItem(zoomText(zoom), zoom);
    toolBar_->addWidget(zoomBox_);
    connect(zoomBox_, &QComboBox::activated, this,
            [this](int index) { setZoom(zoomBox_->itemData(index).toInt()); });

    // The button that unfolds the tools a narrow window has no room for.
    if (auto* more = toolBar_->findChild<QWidget*>(QStringLiteral("qt_toolbar_ext_button")))
        more->setAccessibleName(QStringLiteral("Diğer araçlar"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(toolBar_);
    layout->addWidget(pageView_, 1);
    connect(pageView_, &PageView::currentPageChanged, this, &Viewer::showPageNumber);
    setZoom(100);
    showPageNumber();
}

void Viewer::setReportSource(Report* report) {
    if (report_ != nullptr)
        disconnect(report_, nullptr, this, nullptr);
    report_ = report;
    pageView_->setReport(report);
    if (report != nullptr) {
        connect(report, &Report::pageAdded, this, &Viewer::pagesChanged);
        connect(report, &Report::finished, this, &Viewer::pagesChanged);
        connect(report, &QObject::destroyed, this, &Viewer::pagesChanged);
        // A report that runs or has run shows the pages it has.
        report->start();
    }
    pagesChanged();
}

Report* Viewer::ReportSource() const {
    return report_;
}

void Viewer::setZoom(int zoom) {
    if (zoom != kFitWidth)
        zoom = std::clamp(zoom, kSmallestZoom, kLargestZoom);
    zoom_ = zoom;
    int item = zoomBox_->findData(zoom);
    if (item < 0) {
        // A zoom the list lacks joins it in its place among the percents.
        item = 1;
        while (item < zoomBox_->count() && zoomBox_->itemData(item).toInt() < zoom)
            ++item;
        zoomBox_->insertItem(item, zoomText(zoom), zoom);
    }
    zoomBox_->setCurrentIndex(item);
    pageView_->setZoom(zoom);
}

int Viewer::currentPage() const {
    return pageView_->currentPage();
}

void Viewer::showPage(int index) {
    pageView_->showPage(index);
}

int Viewer::pageCount() const {
    return pageView_->pageCount();
}

QAction* Viewer::addTool(const QString& caption) {
    QAction* tool = addButton(caption, caption);
    kit::on(tool, &QAction::triggered, this, [this, caption] {
        if (report_ != nullptr)
            report_->ActiveReport_ToolbarClick(caption);
    });
    return tool;
}

void Viewer::print() {
    if (report_ == nullptr)
        return;
    if (report_->running()) {
        // The whole report goes to the printer: lay out the rest first.
        const kit::BusyCursor busy;
        kit::bare([this] { report_->Run(); });
        pagesChanged();
    }
    if (report_ == nullptr || report_->pages().empty())
        return;
    const Page& first = report_->pages().front();
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(report_->definition().title);
    printer.setPageOrientation(first.width > first.height ? QPageLayout::Landscape
                                                          : QPageLayout::Portrait);
    QPrintDialog dialog(&printer, this);
    dialog.setMinMax(1, pageCount());
    if (dialog.exec() != QDialog::Accepted || report_ == nullptr)
        return;
    QString message;
    {
        const kit::BusyCursor busy;
        message = printPages(report_->pages(), printer);
    }
    if (!message.isEmpty())
        kit::MsgBox(message, 48);
}

void Viewer::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_PageDown)
        showPage(currentPage() + 1);
    else if (event->key() == Qt::Key_PageUp)
        showPage(currentPage() - 1);
    else
        QWidget::keyPressEvent(event);
}

QAction* Viewer::addButton(const QString& text, const QString& name) {
    QAction* action = toolBar_->addAction(text);
    action->setToolTip(name);
    toolBar_->widgetForAction(action)->setAccessibleName(name);
    return action;
}

void Viewer::pagesChanged() {
    pageView_->pagesChanged();
    showPageNumber();
}

void Viewer::showPageNumber() {
    const int count = pageCount();
    pageBox_->setText(QStringLiteral("%1 / %2").arg(count == 0 ? 0 : currentPage() + 1).arg(count));
}

// The reader typed a page number into the box and pressed Enter.
void Viewer::goToTypedPage() {
    bool number = false;
    const int page = pageBox_->text().section(QLatin1Char('/'), 0, 0).trimmed().toInt(&number);
    if (number)
        showPage(page - 1);
    showPageNumber();
}

}  // namespace engine
