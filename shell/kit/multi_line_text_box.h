#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace kit {

// The original's text box with MultiLine set. Its text has a carriage
// return and a line feed between lines, while the editor keeps lines as
// paragraphs; Text and setText turn one into the other, so a text of CR LF
// lines comes back as it went in, the last line end included.
class MultiLineTextBox : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit MultiLineTextBox(QWidget* parent = nullptr);

    QString Text() const;
    void setText(const QString& text);
};

}  // namespace kit
