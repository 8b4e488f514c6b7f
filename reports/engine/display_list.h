#pragma once

#include <variant>
#include <vector>

#include <QImage>
#include <QString>

#include "reports/engine/report_definition.h"

namespace engine {

// A finished page is a plain list of positioned items in twips of the paper;
// the viewer, the PDF writer and the printer only read such pages.

// Text set in the report font, wrapped at word boundaries inside its box and
// cut off at the box's edge.
struct TextItem {
    Box box;
    QString text;
    TextStyle style;
};

// A thin frame, as a control's border draws it.
struct FrameItem {
    Box box;
};

// A picture fitted into its box, keeping its proportions, centred.
struct ImageItem {
    Box box;
    QImage image;  // implicitly shared: the same file on many pages is held once
};

// A barcode: the dark and light modules from left to right, drawn across the
// box's width above the human-readable text.
struct BarcodeItem {
    Box box;
    std::vector<bool> modules;
    QString text;
};

using PageItem = std::variant<TextItem, FrameItem, ImageItem, BarcodeItem>;

struct Page {
    int width = 0;  // twips, landscape already applied
    int height = 0;
    std::vector<PageItem> items;  // in drawing order
};

}  // namespace engine
