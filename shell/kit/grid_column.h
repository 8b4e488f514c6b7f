#pragma once

#include <QMap>
#include <QString>

namespace kit {

// One column of a data grid, as the grid's design gives it.
struct GridColumn {
    QString caption;
    QString dataField;
    bool visible = true;
    int widthTwips = 1500;
    // Shown instead of a cell's text when it has an entry: "4" → "NİSAN".
    // Typing a shown text back stores its key.
    QMap<QString, QString> valueItems;
};

// A plain column: caption, field and width.
inline GridColumn gridColumn(const QString& caption, const QString& dataField,
                             int widthTwips = 1500) {
    GridColumn column;
    column.caption = caption;
    column.dataField = dataField;
    column.widthTwips = widthTwips;
    return column;
}

// Twips to pixels at the 96 dots per inch the original's windows assumed.
inline int twipsToPixels(int twips) {
    return twips / 15;
}

inline int pixelsToTwips(int pixels) {
    return pixels * 15;
}

}  // namespace kit
