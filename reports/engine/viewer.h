#pragma once

#include <QPointer>
#include <QWidget>

class QAction;
class QComboBox;
class QLineEdit;
class QToolBar;

namespace engine {

class PageView;
class Report;

// The report viewer (`arv` on every report window): a tool bar with print,
// page up and down, the page number and the zoom, above the pages of the
// report it holds. Assigning a report starts its run in slices, so the
// first page shows while the later ones are still being laid out.
class Viewer : public QWidget {
    Q_OBJECT
public:
    explicit Viewer(QWidget* parent = nullptr);

    // The original's ReportSource. Assigning a report starts it; null shows
    // nothing. The viewer does not own the report.
    void setReportSource(Report* report);
    Report* ReportSource() const;

    // Percent, or -1 for the page fitted to the viewer's width.
    void setZoom(int zoom);
    int Zoom() const { return zoom_; }

    // The page shown at the top, 0-based, and how many are ready.
    int currentPage() const;
    void showPage(int index);
    int pageCount() const;

    // Adds a tool of the caption to the tool bar; a click on it reaches the
    // held report's ActiveReport_ToolbarClick.
    QAction* addTool(const QString& caption);
    QToolBar* toolBar() const { return toolBar_; }

    // Prints the held report through the system's print dialog.
    void print();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QAction* addButton(const QString& text, const QString& name);
    void pagesChanged();
    void showPageNumber();
    void goToTypedPage();

    QPointer<Report> report_;
    QToolBar* toolBar_ = nullptr;
    QLineEdit* pageBox_ = nullptr;  // "n / total"
    QComboBox* zoomBox_ = nullptr;
    PageView* pageView_ = nullptr;
    int zoom_ = 100;
};

}  // namespace engine
