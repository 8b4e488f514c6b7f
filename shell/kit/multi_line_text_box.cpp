#include "shell/kit/multi_line_text_box.h"

#include <QTextDocument>

namespace kit {

MultiLineTextBox::MultiLineTextBox(QWidget* parent) : QPlainTextEdit(parent) {
    // Lines are broken where the text breaks them, not at the box's edge.
    setLineWrapMode(QPlainTextEdit::NoWrap);
}

// The raw text keeps every character, a no-break space too, with the
// paragraph separator between lines.
QString MultiLineTextBox::Text() const {
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
    return text;
}

void MultiLineTextBox::setText(const QString& text) {
    setPlainText(text);
}

}  // namespace kit
