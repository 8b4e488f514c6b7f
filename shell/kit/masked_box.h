#pragma once

#include <QLineEdit>
#include <QString>

namespace kit {

// The original's masked edit box for the masks the program uses: in the
// mask, "#" is a place for one digit and any other character a literal that
// the box shows and the cursor steps over. An unfilled place shows the
// prompt "_". Typing puts digits into the places and refuses anything else.
class MaskedBox : public QLineEdit {
    Q_OBJECT
public:
    explicit MaskedBox(QWidget* parent = nullptr);

    static constexpr QChar kPrompt = u'_';

    const QString& Mask() const { return mask_; }
    // A new mask leaves every place unfilled. The empty mask makes the box a
    // plain text box that keeps the text the mask gave.
    void setMask(const QString& mask);

    // The text as the box shows it: the literals, and the prompt in each
    // unfilled place ("07:30", "07:3_", "__:__" for an unfilled "##:##").
    QString Text() const;
    // What fills the places alone, without literals and prompts ("0730",
    // "073", "" for an unfilled box).
    QString ClipText() const;
    // The original's Text assignment. Under a mask the text must be as long
    // as the mask, hold its literals where the mask has them and a digit or
    // the prompt in each place; any other text, the empty one included,
    // throws std::invalid_argument ("Invalid property value") and leaves the
    // box as it was. Without a mask any text is taken.
    void assignText(const QString& text);

private:
    bool fitsMask(const QString& text) const;

    QString mask_;
};

}  // namespace kit
