#pragma once

#include <vector>

#include <QAbstractScrollArea>
#include <QPointer>
#include <QRect>

#include "reports/engine/display_list.h"

namespace engine {

class Report;

// The pages of a report one under the other on a grey ground, at a zoom.
// Only the pages in sight are painted, so a report of hundreds of pages
// scrolls as lightly as one of a single page.
class PageView : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit PageView(QWidget* parent = nullptr);

    // The report whose pages are shown; null shows none. Not owned.
    void setReport(Report* report);
    // Percent of a 96 dpi screen, or -1 for the widest page fitted to the width.
    void setZoom(int zoom);
    // The report added pages, dropped them or ended.
    void pagesChanged();

    // The page the reader is on, 0-based: the one last chosen, or the one
    // at the top of the view since the reader scrolled.
    int currentPage() const;
    void showPage(int index);
    int pageCount() const;

signals:
    void currentPageChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Where each page stands in the column of all pages, in pixels.
    struct Column {
        std::vector<QRect> pages;
        QSize size;
    };

    const std::vector<Page>& pages() const;
    double scale() const;  // screen pixels per twip
    Column layout() const;
    void updateScrollBars();
    void followScroll();

    QPointer<Report> report_;
    int zoom_ = 100;
    int current_ = 0;
    bool choosingPage_ = false;  // the scroll comes from showPage, not from the reader
};

}  // namespace engine
