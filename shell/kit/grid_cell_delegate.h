#pragma once

#include <QFont>
#include <QHash>
#include <QStaticText>
#include <QStyledItemDelegate>

namespace kit {

// Paints a data grid's cells as the original's grids do: the text on one
// line from the cell's left, cut at its right edge without an ellipsis, the
// current cell highlighted. Each text is laid out once and kept, since a
// grid shows the same names, classes and numbers again and again; a grid
// repaints whole at each keystroke of a search box. Editing is the styled
// delegate's.
class GridCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    const QStaticText& laidOut(const QString& text, const QFont& font) const;

    mutable QHash<QString, QStaticText> texts_;
    mutable QFont font_;
};

}  // namespace kit
