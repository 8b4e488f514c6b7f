#include "reports/engine/page_painter.h"

#include <algorithm>
#include <cmath>

#include <QCache>
#include <QFontMetricsF>
#include <QPaintEngine>
#include <QTextLayout>

#include "reports/engine/report_font.h"
#include "reports/engine/units.h"

namespace engine {
namespace {

// Text is laid out in twips, the painter scaled to the device: the font's
// pixel size is its size in twips, so a line breaks at the same word on the
// screen, in a PDF and on paper. Frames, pictures and bars are placed on
// whole device pixels instead, so they stay crisp and inside their boxes.

// A frame is half a point wide, and never thinner than one device pixel.
constexpr double kFrameTwips = kTwipsPerPoint / 2.0;

// Text stands this far in from the left and right edges of its box.
constexpr double kTextPaddingTwips = 30;

// The bars keep at least this share of a barcode's height; the text below
// them is made smaller when the box is too low for both.
constexpr double kBarsShare = 0.5;

// Code 128 wants ten modules of white at each side of the bars.
constexpr int kQuietZoneModules = 10;

constexpr qsizetype kReductionsBytes = 64 * 1024 * 1024;

QRectF twipsRect(const Box& box) {
    return {static_cast<double>(box.left), static_cast<double>(box.top),
            static_cast<double>(box.width), static_cast<double>(box.height)};
}

// The box on the device, each edge rounded to a whole pixel: boxes that
// meet in twips meet on the device, without gap or overlap.
QRect deviceRect(const Box& box, double scale) {
    const int left = static_cast<int>(std::lround(box.left * scale));
    const int top = static_cast<int>(std::lround(box.top * scale));
    const int right = static_cast<int>(std::lround((box.left + box.width) * scale));
    const int bottom = static_cast<int>(std::lround((box.top + box.height) * scale));
    return {left, top, right - left, bottom - top};
}

// A font whose pixel size is its height in twips, for a painter scaled to twips.
QFont twipsFont(QFont font, double pointSize) {
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(pointSize * kTwipsPerPoint))));
    return font;
}

// Where a font's lines stand, in twips: the baseline's distance from the
// line's top, and the distance from one line's top to the next.
struct LineMetrics {
    double ascent;
    double height;
};

LineMetrics reportLine(double pointSize) {
    const double em = pointSize * kTwipsPerPoint;
    return {em * kReportFontAscentEm, em * kReportFontHeightEm};
}

// Lines break at words within the box's width and where the text breaks
// them; memo values end their lines with CR LF.
QString withLineBreaks(QString text) {
    text.replace(QLatin1String("\r\n"), QString(QChar::LineSeparator));
    text.replace(QLatin1Char('\r'), QChar::LineSeparator);
    text.replace(QLatin1Char('\n'), QChar::LineSeparator);
    return text;
}

// Draws the text in the box, in twips on a painter scaled to the device,
// cut off at the box's edges. A text taller than its box shows its first
// lines.
void drawTwipsText(QPainter& painter, double scale, const QRectF& box, const QFont& font,
                   const LineMetrics& metrics, Qt::Alignment alignment, const QString& text) {
    QTextLayout layout(withLineBreaks(text), font);
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WordWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    double height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(box.width());
        line.setPosition(QPointF(0, height + metrics.ascent - line.ascent()));
        height += metrics.height;
    }
    layout.endLayout();

    double top = box.top();
    if (height < box.height() && (alignment & Qt::AlignVCenter))
        top += (box.height() - height) / 2;
    else if (height < box.height() && (alignment & Qt::AlignBottom))
        top += box.height() - height;
    painter.save();
    painter.scale(scale, scale);
    painter.setClipRect(box, Qt::IntersectClip);
    painter.setPen(Qt::black);
    layout.draw(&painter, QPointF(box.left(), top));
    painter.restore();
}

// A picture reduced smoothly to the size it is shown at on a screen. The
// view repaints the same pictures at the same size as it scrolls, so the
// last reductions are kept.
QImage reduced(const QImage& image, QSize size) {
    static QCache<QString, QImage> reductions(kReductionsBytes);
    const QString key =
        QStringLiteral("%1 %2x%3").arg(image.cacheKey()).arg(size.width()).arg(size.height());
    if (const QImage* kept = reductions.object(key))
        return *kept;
    QImage made = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    reductions.insert(key, new QImage(made), made.sizeInBytes());
    return made;
}

struct ItemPainter {
    QPainter& painter;
    double scale;  // device pixels per twip

    void operator()(const TextItem& item) const {
        if (item.text.isEmpty() || item.box.width <= 0 || item.box.height <= 0)
            return;
        // A little room at each side keeps the text off the frame's lines.
        const QRectF box =
            twipsRect(item.box).adjusted(kTextPaddingTwips, 0, -kTextPaddingTwips, 0);
        drawTwipsText(painter, scale, box, twipsFont(reportFont(item.style), item.style.pointSize),
                      reportLine(item.style.pointSize), item.style.alignment, item.text);
    }

    void operator()(const FrameItem& item) const {
        const QRect area = deviceRect(item.box, scale);
        if (area.isEmpty())
            return;
        const int width = std::max(1, static_cast<int>(std::lround(kFrameTwips * scale)));
        // Four strips inside the box: the frame covers no pixel outside it.
        painter.fillRect(QRect(area.left(), area.top(), area.width(), width), Qt::black);
        painter.fillRect(QRect(area.left(), area.bottom() - width + 1, area.width(), width),
                         Qt::black);
        painter.fillRect(QRect(area.left(), area.top(), width, area.height()), Qt::black);
        painter.fillRect(QRect(area.right() - width + 1, area.top(), width, area.height()),
                         Qt::black);
    }

    void operator()(const ImageItem& item) const {
        const QRect area = deviceRect(item.box, scale);
        if (item.image.isNull() || area.isEmpty())
            return;
        const QSize size = item.image.size().scaled(area.size(), Qt::KeepAspectRatio);
        if (size.isEmpty())
            return;
        const QRect target(area.left() + (area.width() - size.width()) / 2,
                           area.top() + (area.height() - size.height()) / 2, size.width(),
                           size.height());
        painter.save();
        painter.setClipRect(area, Qt::IntersectClip);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        // A PDF or a printer takes the picture whole, so one picture on many
        // pages is stored once; on a screen a picture much larger than its
        // box is reduced first, which looks better than the painter's
        // bilinear reduction.
        const bool raster = painter.paintEngine() != nullptr &&
                            painter.paintEngine()->type() == QPaintEngine::Raster;
        if (raster && item.image.width() > 2 * size.width())
            painter.drawImage(target, reduced(item.image, size));
        else
            painter.drawImage(target, item.image);
        painter.restore();
    }

    void operator()(const BarcodeItem& item) const {
        const QRect area = deviceRect(item.box, scale);
        if (item.modules.empty() || area.isEmpty())
            return;
        painter.save();
        painter.setClipRect(area, Qt::IntersectClip);

        // The text's line below the bars, in twips.
        QFont font = barcodeFont();
        LineMetrics line{0, 0};
        if (!item.text.isEmpty()) {
            const double pointSize = std::min(
                font.pointSizeF(), font.pointSizeF() * (1 - kBarsShare) * item.box.height /
                                       QFontMetricsF(twipsFont(font, font.pointSizeF())).height());
            font = twipsFont(font, pointSize);
            line = {QFontMetricsF(font).ascent(), QFontMetricsF(font).height()};
        }

        // Every module the same whole number of device pixels, the bars
        // centred in the box with a quiet zone at each side that a reader
        // needs to find the symbol.
        const int count = static_cast<int>(item.modules.size());
        const int moduleWidth = std::max(1, area.width() / (count + 2 * kQuietZoneModules));
        const int barsLeft = area.left() + (area.width() - moduleWidth * count) / 2;
        const int barsBottom =
            static_cast<int>(std::lround((item.box.top + item.box.height - line.height) * scale));
        const int barsHeight = barsBottom - area.top();
        for (int start = 0; start < count;) {
            int end = start;
            while (end < count && item.modules[end] == item.modules[start])
                ++end;
            if (item.modules[start])
                painter.fillRect(QRect(barsLeft + start * moduleWidth, area.top(),
                                       (end - start) * moduleWidth, barsHeight),
                                 Qt::black);
            start = end;
        }
        painter.restore();

        if (line.height > 0) {
            const QRectF textBox(item.box.left, item.box.top + item.box.height - line.height,
                                 item.box.width, line.height);
            drawTwipsText(painter, scale, textBox, font, line, Qt::AlignHCenter | Qt::AlignTop,
                          item.text);
        }
    }
};

}  // namespace

void paintPage(const Page& page, QPainter& painter, double pixelsPerTwip) {
    if (!(pixelsPerTwip > 0))
        return;
    painter.save();
    painter.fillRect(deviceRect(Box{0, 0, page.width, page.height}, pixelsPerTwip), Qt::white);
    const ItemPainter paint{painter, pixelsPerTwip};
    for (const PageItem& item : page.items)
        std::visit(paint, item);
    painter.restore();
}

}  // namespace engine
