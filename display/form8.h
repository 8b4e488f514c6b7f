#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/common_dialog.h"
#include "shell/kit/label.h"
#include "shell/kit/multi_line_text_box.h"
#include "shell/kit/web_browser.h"

namespace display {

// The running text page ("Kayan Yazı"): the office types a line of text and
// picks its size and three colours; Kaydet fills the page template with
// them, writes it as kay.html in the program's folder for the display that
// shows it, and previews the file in wb. Each opening starts from the
// defaults; nothing is read back from the last page. The window has no
// error handling: a failure ends the program.
class Form8 : public QWidget {
    Q_OBJECT
public:
    Form8();

    QLabel* Label1;
    QLineEdit* Text1;  // the running text
    QLabel* Label3;
    kit::ComboBox* Combo1;  // the font size, "1" to "10" or anything typed
    // The colours as RRGGBB, each with its swatch, which opens the colour
    // dialog when clicked.
    QLabel* Label2;
    QLineEdit* Text2;  // the page's background
    kit::Label* Label5;
    QLabel* Label4;
    QLineEdit* Text4;  // the text's colour
    kit::Label* Label6;
    QLabel* Label8;
    QLineEdit* Text5;  // the background behind the text
    kit::Label* Label7;
    QPushButton* Command1;
    kit::CommonDialog* cd;
    kit::WebBrowser* wb;  // the preview, blank until the first save
    // Hidden: the page template, never changed, and the page being filled.
    kit::MultiLineTextBox* Text3;
    kit::MultiLineTextBox* Text9;

    void Form_Load();
    void Command1_Click();
    void Label5_Click();
    void Label6_Click();
    void Label7_Click();

private:
    void placeControls();
    void connectHandlers();
    void chooseColour(kit::Label* swatch, QLineEdit* colourBox);
};

}  // namespace display
