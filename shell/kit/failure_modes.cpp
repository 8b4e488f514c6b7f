#include "shell/kit/failure_modes.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "shell/kit/message_box.h"
#include "store/data_error.h"

namespace kit {
namespace {

// Errors of the data layer carry the provider's number, the engine's own
// that of a failed command; an arithmetic overflow is the runtime's 6,
// anything else the platform's "invalid procedure call".
QString errorNumber(const std::exception& error) {
    if (dynamic_cast<const std::overflow_error*>(&error) != nullptr)
        return QStringLiteral("6");
    if (dynamic_cast<const jet::Error*>(&error) == nullptr)
        return QStringLiteral("5");
    const auto* dataError = dynamic_cast<const store::DataError*>(&error);
    const std::int32_t number =
        dataError != nullptr ? dataError->number() : store::DataError::kCommandFailed;
    return QStringLiteral("%1 (%2)").arg(number).arg(static_cast<std::uint32_t>(number), 8, 16,
                                                     QLatin1Char('0'));
}

}  // namespace

void bare(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const std::exception& error) {
        runTimeErrorReport(error);
    }
}

void skip(const std::function<void()>& statement) {
    try {
        statement();
    } catch (const std::exception&) {
        // Passed over: the handler's next statement runs.
    }
}

void silentExit(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const std::exception&) {
        // The handler ends here, with what it did so far.
    }
}

void fixedMessage(const std::function<void()>& handler, const QString& message, int style) {
    try {
        handler();
    } catch (const std::exception&) {
        MsgBox(message, style);
    }
}

void runTimeErrorReport(const std::exception& error) {
    const QString text = QStringLiteral("Run-time error '%1':\n\n%2")
                             .arg(errorNumber(error), QString::fromUtf8(error.what()));
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fputs("\n", stderr);
    if (!messageBoxesUnattended())
        MsgBox(text, 16);
    std::_Exit(1);
}

}  // namespace kit
