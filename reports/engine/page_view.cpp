#include "reports/engine/page_view.h"

#include <algorithm>

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include "reports/engine/page_painter.h"
#include "reports/engine/report.h"
#include "reports/engine/units.h"

namespace engine {
namespace {

constexpr int kGap = 12;  // pixels around and between the pages
constexpr double kScreenDotsPerInch = 96;
// The smallest scale a fitted page gets in a very narrow view.
constexpr double kSmallestScale = 0.005;

const QColor kGround(128, 128, 128);
const QColor kPageEdge(64, 64, 64);

}  // namespace

PageView::PageView(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    // A vertical bar that comes and goes would change the width a fitted
    // page is measured against, and with it the height that called for the bar.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalScrollBar()->setSingleStep(20);
    horizontalScrollBar()->setSingleStep(20);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &PageView::followScroll);
}

void PageView::setReport(Report* report) {
    report_ = report;
    current_ = 0;
    updateScrollBars();
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    viewport()->update();
    emit currentPageChanged(current_);
}

void PageView::setZoom(int zoom) {
    zoom_ = zoom;
    updateScrollBars();
    if (pageCount() > 0)
        showPage(current_);
    viewport()->update();
}

void PageView::pagesChanged() {
    updateScrollBars();
    viewport()->update();
    if (current_ >= pageCount()) {
        current_ = std::max(0, pageCount() - 1);
        emit currentPageChanged(current_);
    }
}

int PageView::currentPage() const {
    return std::clamp(current_, 0, std::max(0, pageCount() - 1));
}

void PageView::showPage(int index) {
    const Column column = layout();
    if (column.pages.empty())
        return;
    current_ = std::clamp(index, 0, static_cast<int>(column.pages.size()) - 1);
    choosingPage_ = true;
    verticalScrollBar()->setValue(column.pages[current_].top() - kGap);
    choosingPage_ = false;
    emit currentPageChanged(current_);
}

int PageView::pageCount() const {
    return static_cast<int>(pages().size());
}

const std::vector<Page>& PageView::pages() const {
    static const std::vector<Page> none;
    return report_ != nullptr ? report_->pages() : none;
}

double PageView::scale() const {
    if (zoom_ != -1)
        return zoom_ / 100.0 * pixelsPerTwip(kScreenDotsPerInch);
    int widest = 0;
    for (const Page& page : pages())
        widest = std::max(widest, page.width);
    if (widest <= 0)
        return pixelsPerTwip(kScreenDotsPerInch);
    return std::max(kSmallestScale, static_cast<double>(viewport()->width() - 2 * kGap) / widest);
}

PageView::Column PageView::layout() const {
    Column column;
    const double scale = this->scale();
    std::vector<QSize> sizes;
    int widest = 0;
    for (const Page& page : pages()) {
        sizes.emplace_back(qRound(page.width * scale), qRound(page.height * scale));
        widest = std::max(widest, sizes.back().width());
    }
    const int width = std::max(viewport()->width(), widest + 2 * kGap);
    int top = kGap;
    for (const QSize& size : sizes) {
        column.pages.emplace_back(QPoint((width - size.width()) / 2, top), size);
        top += size.height() + kGap;
    }
    column.size = QSize(width, top);
    return column;
}

void PageView::updateScrollBars() {
    const QSize size = layout().size;
    const QSize view = viewport()->size();
    verticalScrollBar()->setPageStep(view.height());
    verticalScrollBar()->setRange(0, std::max(0, size.height() - view.height()));
    horizontalScrollBar()->setPageStep(view.width());
    horizontalScrollBar()->setRange(0, std::max(0, size.width() - view.width()));
}

// Scrolling by hand makes the page at the top the current one.
void PageView::followScroll() {
    if (choosingPage_)
        return;
    const Column column = layout();
    const int y = verticalScrollBar()->value() + kGap;
    const auto below =
        std::upper_bound(column.pages.begin(), column.pages.end(), y,
                         [](int top, const QRect& page) { return top < page.top(); });
    const int page = std::max(0, static_cast<int>(below - column.pages.begin()) - 1);
    if (page != current_) {
        current_ = page;
        emit currentPageChanged(current_);
    }
}

void PageView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), kGround);
    const Column column = layout();
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const QRect sight(scrolled, viewport()->size());
    // The pages stand in order of their tops: start at the last one that
    // begins above the view, stop at the first one below it.
    auto page = std::upper_bound(column.pages.begin(), column.pages.end(), sight.top(),
                                 [](int top, const QRect& rect) { return top < rect.top(); });
    if (page != column.pages.begin())
        --page;
    const double scale = this->scale();
    for (; page != column.pages.end() && page->top() <= sight.bottom(); ++page) {
        if (!page->intersects(sight))
            continue;
        const QRect onScreen = page->translated(-scrolled);
        painter.save();
        painter.setPen(kPageEdge);
        painter.drawRect(onScreen.adjusted(-1, -1, 0, 0));
        painter.setClipRect(onScreen);
        painter.translate(onScreen.topLeft());
        paintPage(pages()[page - column.pages.begin()], painter, scale);
        painter.restore();
    }
}

void PageView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
    // A fitted page changes its height with the width: keep the current
    // page at the top.
    if (zoom_ == -1 && pageCount() > 0)
        showPage(current_);
}

// Page Up and Page Down turn pages; the viewer that holds the view does it.
void PageView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown) {
        event->ignore();
        return;
    }
    QAbstractScrollArea::keyPressEvent(event);
}

}  // namespace engine
