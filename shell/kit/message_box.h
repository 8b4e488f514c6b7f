#pragma once

#include <QString>

namespace kit {

// The original's MsgBox. The style adds the platform's numbers: buttons 0
// OK, 4 Yes and No; icons 16 critical, 32 question, 48 exclamation, 64
// information. Without a title the box shows the program's, "Sofravan".
// Returns the button pressed: 1 OK, 6 Yes, 7 No.
inline constexpr int vbOK = 1;
inline constexpr int vbYes = 6;
inline constexpr int vbNo = 7;
inline constexpr int vbExclamation = 48;

int MsgBox(const QString& prompt, int style = 0, const QString& title = QStringLiteral("Sofravan"));

// A run that nobody watches (a tool, not a window): every box is written to
// standard error in its own words and answered with its default button.
void setMessageBoxesUnattended(bool unattended);
bool messageBoxesUnattended();

}  // namespace kit
