#pragma once

#include <stdexcept>

#include <QString>
#include <QVariant>
#include <QWebEngineView>

namespace kit {

// A script run in a page failed: no page was there to run it, the script
// threw, or the page did not answer in time. The message says which.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The original's WebBrowser control on the Chromium engine. A page's object
// model is reached by running scripts in it; evaluate() waits for the
// script's answer so that a window can read the page as the original's
// late-bound calls did, one step after another.
class WebBrowser : public QWebEngineView {
    Q_OBJECT
public:
    explicit WebBrowser(QWidget* parent = nullptr);

    // Silent: the page's script errors are not reported anywhere.
    void setSilent(bool silent);
    bool silent() const;

    // Loads the address; the load goes on while the program does.
    void Navigate(const QString& address);

    // Busy: a load has started and not yet finished.
    bool Busy() const;

    // Runs the script as the body of a function in the page shown and gives
    // back what it returns (text, numbers, booleans, lists and objects of
    // them; undefined and null give an invalid QVariant). The event loop
    // turns while the page works. Throws ScriptError when the script throws,
    // when there is no page to run it in, or when no answer came within the
    // time-out, so that a page stuck in a loop of its own never hangs the
    // program.
    QVariant evaluate(const QString& functionBody, int timeoutMs = 10000);

private:
    bool busy_ = false;
};

// The original's Wait: lets the event loop run twice, then again and again
// while the browser is busy. It has no time limit, as the original has none.
void Wait(const WebBrowser& browser);

}  // namespace kit
