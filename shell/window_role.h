#pragma once

#include <QAccessible>
#include <QWidget>

namespace shell {

// The role that assistive technology announces for a window of our own
// that is a plain widget, which Qt gives the role of a filler: the splash
// as a window, the login as a dialog. Set before the window is first
// queried, in its constructor.
void setAccessibleRole(QWidget* window, QAccessible::Role role);

}  // namespace shell
