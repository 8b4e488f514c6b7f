#pragma once

#include <QPointer>

namespace shell {

// Each window of the program has one default instance, made when it is
// first referred to and reused after. A window that is unloaded (closed,
// and so deleted) is made anew at its next use, with its controls as
// designed.
template <class Window>
QPointer<Window>& defaultInstanceSlot() {
    static QPointer<Window> window;
    return window;
}

template <class Window>
Window& instance() {
    QPointer<Window>& window = defaultInstanceSlot<Window>();
    if (!window)
        window = new Window;
    return *window;
}

template <class Window>
bool isLoaded() {
    return !defaultInstanceSlot<Window>().isNull();
}

// The original's Show: loads the window when it is not, and brings it up
// without waiting for it.
template <class Window>
void showWindow() {
    Window& window = instance<Window>();
    window.show();
    window.raise();
    window.activateWindow();
}

// The original's Unload: the window goes down and its instance with it.
// The object itself goes when the event loop next runs, since the call may
// come from inside one of its own handlers (the splash's timer).
template <class Window>
void unload() {
    QPointer<Window>& window = defaultInstanceSlot<Window>();
    if (window) {
        window->hide();
        window->deleteLater();
        window = nullptr;
    }
}

}  // namespace shell
