#include "reports/engine/page_builder.h"

#include <algorithm>
#include <utility>

#include "reports/engine/barcode.h"
#include "reports/engine/field_text.h"
#include "reports/engine/report.h"
#include "store/data_error.h"

namespace engine {
namespace {

const Band* findBand(const ReportDefinition& definition, BandKind kind) {
    for (const Band& band : definition.bands) {
        if (band.kind == kind)
            return &band;
    }
    return nullptr;
}

}  // namespace

PageBuilder::PageBuilder(Report& report) : report_(report), definition_(report.definition_) {
    pageHeader_ = findBand(definition_, BandKind::PageHeader);
    groupHeader_ = findBand(definition_, BandKind::GroupHeader1);
    detail_ = findBand(definition_, BandKind::Detail);
    groupFooter_ = findBand(definition_, BandKind::GroupFooter1);
    pageFooter_ = findBand(definition_, BandKind::PageFooter);
    const PageSetup& setup = definition_.page;
    paperWidth_ = setup.landscape ? setup.paperHeight : setup.paperWidth;
    paperHeight_ = setup.landscape ? setup.paperWidth : setup.paperHeight;
    columnCount_ = std::max(1, definition_.detailColumns);
    columnWidth_ = setup.printWidth / columnCount_;
}

bool PageBuilder::next() {
    switch (phase_) {
        case Phase::NotStarted:
            startReport();
            phase_ = Phase::Records;
            return true;
        case Phase::Records:
            if (!layOutRecord())
                phase_ = Phase::Finished;
            return phase_ != Phase::Finished;
        case Phase::Finished:
            break;
    }
    return false;
}

void PageBuilder::startReport() {
    report_.ActiveReport_ReportStart();
    openData();
    beginPage();
    if (groupHeader_ != nullptr)
        placeBand(*groupHeader_, definition_.page.leftMargin, y_);
    columnTop_ = y_;
}

// The record set holds every row the query gave; the builder reads the
// current row's values through it instead of copying them.
void PageBuilder::openData() {
    const ReportDataControl& source = definition_.dataControl;
    if (source.Source.trimmed().isEmpty())
        throw store::DataError("the report's data control has no Source");
    data_.connectionString = source.ConnectionString.toStdString();
    data_.recordSource = source.Source.toStdU16String();
    data_.Refresh();
    // Columns are looked up once: a bound column the rows lack fails here,
    // before the first record.
    const store::Recordset& rows = data_.recordset();
    for (Band& band : definition_.bands) {
        for (Control& control : band.controls) {
            if (!control.DataField.isEmpty())
                bindings_.push_back({&control, rows.ordinalOf(control.DataField.toStdU16String())});
        }
    }
}

// A handler that sets EOF while a record is fetched ends the data there:
// that fetch was the last one. Clearing EOF on the fetch at the end of the
// data brings no more rows.
bool PageBuilder::layOutRecord() {
    store::Recordset& rows = data_.recordset();
    const bool dataEnded = rows.eof();
    bool eof = dataEnded;
    report_.ActiveReport_FetchData(eof);
    if (dataEnded || eof) {
        finishReport();
        return false;
    }
    bindFields();
    report_.Detail_Format();
    if (detail_ != nullptr) {
        makeRoomForDetail(detail_->height);
        placeBand(*detail_, definition_.page.leftMargin + column_ * columnWidth_, y_);
    }
    rows.moveNext();
    return true;
}

void PageBuilder::bindFields() {
    const store::Recordset& rows = data_.recordset();
    for (const Binding& binding : bindings_) {
        binding.control->Text =
            fieldText(rows.field(binding.ordinal), binding.control->OutputFormat);
    }
}

void PageBuilder::finishReport() {
    report_.GroupFooter1_Format();
    if (groupFooter_ != nullptr) {
        y_ = lowestY_;
        if (y_ + groupFooter_->height > detailBottomLimit() && y_ > columnTop_) {
            endPage();
            beginPage();
        }
        placeBand(*groupFooter_, definition_.page.leftMargin, y_);
    }
    endPage();
}

void PageBuilder::beginPage() {
    page_ = Page{paperWidth_, paperHeight_, {}};
    page_.items.reserve(itemsPerPage_);
    y_ = definition_.page.topMargin;
    lowestY_ = y_;
    column_ = 0;
    report_.PageHeader_Format();
    if (pageHeader_ != nullptr)
        placeBand(*pageHeader_, definition_.page.leftMargin, y_);
    columnTop_ = y_;
}

void PageBuilder::endPage() {
    if (pageFooter_ != nullptr) {
        placeBand(*pageFooter_, definition_.page.leftMargin,
                  paperHeight_ - definition_.page.bottomMargin - pageFooter_->height);
    }
    itemsPerPage_ = page_.items.size();
    report_.addPage(std::exchange(page_, Page{}));
}

int PageBuilder::detailBottomLimit() const {
    const int bottom = paperHeight_ - definition_.page.bottomMargin;
    return pageFooter_ != nullptr ? bottom - pageFooter_->height : bottom;
}

void PageBuilder::makeRoomForDetail(int height) {
    const int limit = detailBottomLimit();
    // A column that holds nothing yet takes the Detail whatever its height.
    if (y_ + height <= limit || y_ == columnTop_)
        return;
    if (column_ + 1 < columnCount_) {
        ++column_;
        y_ = columnTop_;
        return;
    }
    endPage();
    beginPage();
}

// Moves y_ down by the band's height; the Detail's column alone keeps its
// own y, so the deepest column is remembered for the group footer.
void PageBuilder::placeBand(const Band& band, int left, int top) {
    for (const Control& control : band.controls) {
        if (!control.Visible)
            continue;
        // The part of the box inside the band, from its top edge to its bottom.
        const int from = std::max(control.box.top, 0);
        const int to = std::min(control.box.top + control.box.height, band.height);
        if (to <= from || control.box.width <= 0)
            continue;
        placeControl(control,
                     Box{left + control.box.left, top + from, control.box.width, to - from});
    }
    y_ = top + band.height;
    lowestY_ = std::max(lowestY_, y_);
}

void PageBuilder::placeControl(const Control& control, const Box& box) {
    std::vector<PageItem>& items = page_.items;
    switch (control.kind) {
        case ControlKind::Label:
        case ControlKind::Field: {
            const QString& text =
                control.kind == ControlKind::Label ? control.Caption : control.Text;
            if (!text.isEmpty())
                items.emplace_back(TextItem{box, text, control.style});
            if (control.border)
                items.emplace_back(FrameItem{box});
            break;
        }
        case ControlKind::Picture:
            if (!control.Picture.isNull())
                items.emplace_back(ImageItem{box, control.Picture});
            break;
        case ControlKind::Barcode:
            if (!control.Text.isEmpty())
                items.emplace_back(BarcodeItem{box, code128Modules(control.Text), control.Text});
            break;
    }
}

}  // namespace engine
