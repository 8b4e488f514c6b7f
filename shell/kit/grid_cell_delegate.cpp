#include "shell/kit/grid_cell_delegate.h"

#include <QPainter>

namespace kit {
namespace {

// Texts kept at most; a grid scrolled through a large table starts over.
constexpr qsizetype kKeptTexts = 20000;
constexpr int kTextIndent = 3;

}  // namespace

const QStaticText& GridCellDelegate::laidOut(const QString& text, const QFont& font) const {
    if (font != font_ || texts_.size() > kKeptTexts) {
        texts_.clear();
        font_ = font;
    }
    auto found = texts_.find(text);
    if (found == texts_.end()) {
        QStaticText laid(text);
        laid.setTextFormat(Qt::PlainText);
        laid.prepare(QTransform(), font);
        found = texts_.insert(text, laid);
    }
    return *found;
}

void GridCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const QString text = index.data(Qt::DisplayRole).toString();
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    if (selected)
        painter->fillRect(option.rect, option.palette.brush(QPalette::Highlight));
    if (!text.isEmpty()) {
        painter->setClipRect(option.rect);
        painter->setFont(option.font);
        painter->setPen(
            option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        const QStaticText& laid = laidOut(text, option.font);
        const qreal top = option.rect.top() + (option.rect.height() - laid.size().height()) / 2;
        painter->drawStaticText(QPointF(option.rect.left() + kTextIndent, top), laid);
    }
    painter->restore();
}

}  // namespace kit
