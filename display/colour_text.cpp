#include "display/colour_text.h"

#include "shell/kit/vb_number.h"

namespace display {
namespace {

// Characters 5 and 6, 3 and 4, 1 and 2: the byte pairs swapped end for end.
QString pairsReversed(const QString& digits) {
    return digits.mid(4, 2) + digits.mid(2, 2) + digits.mid(0, 2);
}

}  // namespace

QString renkhtml(const QString& colourNumber) {
    QString digits = kit::Hex(kit::Val(colourNumber));
    if (digits.size() < 6)
        digits.prepend(QString(6 - digits.size(), u'0'));
    return pairsReversed(digits);
}

QString htmlrenk(QString& htmlColour) {
    if (htmlColour.size() < 6)
        htmlColour.append(QString(6 - htmlColour.size(), u'0'));
    return QStringLiteral("&H") + pairsReversed(htmlColour);
}

}  // namespace display
