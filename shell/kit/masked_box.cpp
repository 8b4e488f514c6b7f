#include "shell/kit/masked_box.h"

#include <stdexcept>

namespace kit {
namespace {

constexpr QChar kDigitPlace = u'#';

// Qt's input mask for ours: a digit that may be left out for each place,
// every literal escaped, and our prompt as the blank.
QString inputMaskOf(const QString& mask) {
    static const QString kQtMaskCharacters = QStringLiteral("AaNnXx90DdHhBb#><![]{}\\;");
    QString inputMask;
    for (const QChar character : mask) {
        if (character == kDigitPlace) {
            inputMask += u'0';
            continue;
        }
        if (kQtMaskCharacters.contains(character))
            inputMask += u'\\';
        inputMask += character;
    }
    return inputMask + u';' + MaskedBox::kPrompt;
}

bool isAsciiDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

}  // namespace

MaskedBox::MaskedBox(QWidget* parent) : QLineEdit(parent) {}

void MaskedBox::setMask(const QString& mask) {
    const QString shown = Text();
    mask_ = mask;
    setInputMask(mask.isEmpty() ? QString() : inputMaskOf(mask));
    if (mask.isEmpty())
        QLineEdit::setText(shown);
}

QString MaskedBox::Text() const {
    return mask_.isEmpty() ? text() : displayText();
}

QString MaskedBox::ClipText() const {
    if (mask_.isEmpty())
        return text();
    const QString shown = displayText();
    QString filled;
    for (qsizetype place = 0; place < mask_.size() && place < shown.size(); ++place) {
        if (mask_[place] == kDigitPlace && shown[place] != kPrompt)
            filled += shown[place];
    }
    return filled;
}

void MaskedBox::assignText(const QString& text) {
    if (!fitsMask(text))
        throw std::invalid_argument("Invalid property value");
    QLineEdit::setText(text);
}

bool MaskedBox::fitsMask(const QString& text) const {
    if (mask_.isEmpty())
        return true;
    if (text.size() != mask_.size())
        return false;
    for (qsizetype place = 0; place < mask_.size(); ++place) {
        const bool fits = mask_[place] == kDigitPlace
                              ? isAsciiDigit(text[place]) || text[place] == kPrompt
                              : text[place] == mask_[place];
        if (!fits)
            return false;
    }
    return true;
}

}  // namespace kit
