#pragma once

#include <vector>

#include <QImage>
#include <QString>

namespace engine {

// A rectangle in whole twips, from the corner of its band (a control) or of
// the paper (an item of a laid-out page).
struct Box {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// How a label's or field's text is set. The family is always the report
// font, Tahoma, with the Turkish character set.
struct TextStyle {
    double pointSize = 9;
    bool bold = false;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
};

enum class ControlKind { Label, Field, Picture, Barcode };

// One control of a band, as the report's design gives it; the report's
// handlers change Caption, Text, Picture and Visible while it runs, with the
// names the design gives them.
struct Control {
    ControlKind kind = ControlKind::Label;
    QString name;
    Box box;
    bool Visible = true;
    bool border = false;  // a thin frame around the box
    TextStyle style;
    QString Caption;    // Label: its text
    QString DataField;  // Field, Barcode: the bound column, or empty
    QString Text;  // Field: its text, from the column or set by code; Barcode: the encoded text
    QString OutputFormat;  // Field: a date format such as "dd-mmm-yyyy dddd", or empty
    QImage Picture;        // Picture: what is shown, fitted into the box; null shows nothing
};

enum class BandKind { PageHeader, GroupHeader1, Detail, GroupFooter1, PageFooter };

struct Band {
    BandKind kind = BandKind::Detail;
    int height = 0;                 // twips; controls below it are cut off at the band's edge
    std::vector<Control> controls;  // in drawing order
};

// The paper as the design gives it, in twips of the paper held upright; a
// landscape page swaps width and height.
struct PageSetup {
    int paperWidth = 11906;  // A4
    int paperHeight = 16838;
    bool landscape = false;
    int leftMargin = 567;
    int rightMargin = 567;
    int topMargin = 567;
    int bottomMargin = 567;
    int printWidth = 10772;  // the width the bands are laid out in
};

// The report's one data control: where its rows come from.
struct ReportDataControl {
    QString ConnectionString;
    QString Source;  // SQL
};

struct ReportDefinition {
    QString title;  // the report's words for itself, e.g. in a PDF's title
    PageSetup page;
    std::vector<Band> bands;  // at most one of each kind
    int detailColumns =
        1;  // Detail laid out down, then across, in columns of printWidth / detailColumns
    ReportDataControl dataControl;
};

}  // namespace engine
