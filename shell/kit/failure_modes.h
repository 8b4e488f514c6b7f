#pragma once

#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

#include <QObject>
#include <QString>

namespace kit {

// A failure of the runtime itself, with its number: 53 "File not found"
// when a program to start is missing.
class RunTimeError : public std::runtime_error {
public:
    RunTimeError(int number, const std::string& description)
        : std::runtime_error(description), number_(number) {}
    int number() const { return number_; }

private:
    int number_;
};

// The four ways a handler of the program meets a failure. Every handler
// runs through one of them, so no exception crosses Qt's event loop.

// Bare: the failure goes to the run-time error report and the process ends.
void bare(const std::function<void()>& handler);

// Skip: one statement of a handler whose failures are passed over; the
// handler writes each statement as a step of its own.
void skip(const std::function<void()>& statement);

// Silent exit: the handler ends at its first failure, keeping what it did.
void silentExit(const std::function<void()>& handler);

// Fixed message: a failure shows the one message of the handler's error
// target, with the style's icon and buttons, and ends the handler.
void fixedMessage(const std::function<void()>& handler, const QString& message, int style);

// Connects a control's event to a handler as the platform's event loop
// calls it: a failure that leaves the handler goes to the run-time error
// report. A handler with its own error handling catches inside.
template <class Sender, class Signal, class Handler>
void on(Sender* sender, Signal signal, QObject* context, Handler handler) {
    QObject::connect(sender, signal, context, [handler] { bare(handler); });
}

// The platform's report of an unhandled run-time error: the generic words
// and the error's description in a box titled "Sofravan", then the end of
// the process with exit code 1. The text also goes to standard error.
[[noreturn]] void runTimeErrorReport(const std::exception& error);

}  // namespace kit
