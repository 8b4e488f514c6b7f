#pragma once

#include <cstddef>
#include <vector>

#include "reports/engine/display_list.h"
#include "reports/engine/report_definition.h"
#include "store/data_control.h"

namespace engine {

class Report;

// Lays out one run of a report, record by record, into pages. It can stop
// after any record and go on later: all it needs for the next record is in
// its members.
//
// The rules of the layout, in twips of the paper:
// - The paper is the definition's, width and height swapped for landscape.
//   Bands stand at x = leftMargin (a Detail column further right); the first
//   band of a page at y = topMargin. A control stands at its band's corner
//   plus its box, cut off at the band's top and bottom edges: a control that
//   begins below the band's height does not print; nor does a hidden one.
// - A page begins with PageHeader_Format and the page header band; the
//   first page also with the group header. It ends with the page footer
//   band, whose bottom edge stands at the bottom margin.
// - Details follow one another down a column. One fits when its bottom edge
//   is not below the page footer's top (or the bottom margin without a page
//   footer): an exact fit fits, one twip over does not. With N columns each
//   is printWidth / N wide; a column full, the next one begins at the height
//   where the page's details began; the last column full, a new page. A
//   Detail taller than an empty column is placed all the same, so that a
//   run always ends.
// - The group footer follows the last detail, below the deepest column, at
//   x = leftMargin; when it does not fit there it goes to a new page.
// - A label prints its Caption, a field its Text; an empty text adds no
//   item, a border adds a frame after the text. A picture prints when it
//   holds one; a barcode when it has a text, its modules made from it.
//   Items are copies of what the controls held when the band was placed.
class PageBuilder {
public:
    // REQUIRES: `report` outlives the builder.
    explicit PageBuilder(Report& report);

    // Lays out the next record; the first call starts the report, the call
    // that meets the end of the data closes it and hands over the last page.
    // True while more remains. Throws what a handler or the data throws; the
    // builder is then of no further use.
    bool next();

private:
    enum class Phase { NotStarted, Records, Finished };

    void startReport();
    // Fetches, formats and places one record; false when the data has ended
    // (the end-of-data fetch and the closing bands are done then).
    bool layOutRecord();
    void finishReport();

    void openData();
    void bindFields();
    void beginPage();
    void endPage();
    // Where the next Detail goes, beginning a new column or page when it
    // does not fit where the column stands.
    void makeRoomForDetail(int height);
    void placeBand(const Band& band, int left, int top);
    void placeControl(const Control& control, const Box& box);
    int detailBottomLimit() const;

    // A bound control and the ordinal of its column in the record set.
    struct Binding {
        Control* control;
        std::size_t ordinal;
    };

    Report& report_;
    ReportDefinition& definition_;      // the report's own: handlers change its controls
    const Band* pageHeader_ = nullptr;  // each band of the design, or null
    const Band* groupHeader_ = nullptr;
    const Band* detail_ = nullptr;
    const Band* groupFooter_ = nullptr;
    const Band* pageFooter_ = nullptr;
    int paperWidth_ = 0;  // landscape applied
    int paperHeight_ = 0;
    int columnCount_ = 1;
    int columnWidth_ = 0;

    Phase phase_ = Phase::NotStarted;
    store::DataControl data_;        // DataControl1's rows, read in place
    std::vector<Binding> bindings_;  // every bound control of the design
    Page page_;                      // the page being filled
    std::size_t itemsPerPage_ = 0;   // of the last finished page: the next one's reserve
    int column_ = 0;                 // the Detail column being filled
    int columnTop_ = 0;              // y where this page's details begin
    int y_ = 0;                      // the next free y in the column
    int lowestY_ = 0;                // the deepest y any band reached on this page
};

}  // namespace engine
