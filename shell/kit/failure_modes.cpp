#include "shell/kit/failure_modes.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "shell/kit/message_box.h"
#include "shell/kit/output_file.h"
#include "store/data_error.h"
#include "store/workbook/workbook_error.h"

namespace kit {
namespace {

// Errors of the data layer carry the provider's number, the engine's own
// that of a failed command; an arithmetic overflow is the runtime's 6, a
// file that cannot be written its 75, the runtime's own errors their
// number, anything else the platform's "invalid procedure call".
QString errorNumber(const std::exception& error) {
    if (const auto* runTimeError = dynamic_cast<const RunTimeError*>(&error))
        return QString::number(runTimeError->number());
    if (dynamic_cast<const std::overflow_error*>(&error) != nullptr)
        return QStringLiteral("6");
    if (dynamic_cast<const FileAccessError*>(&error) != nullptr)
        return QStringLiteral("75");
    if (dynamic_cast<const jet::Error*>(&error) == nullptr)
        return QStringLiteral("5");
    const auto* dataError = dynamic_cast<const store::DataError*>(&error);
    const std::int32_t number =
        dataError != nullptr ? dataError->number() : store::DataError::kCommandFailed;
    return QStringLiteral("%1 (%2)").arg(number).arg(static_cast<std::uint32_t>(number), 8, 16,
                                                     QLatin1Char('0'));
}

// What the report says of the failure: a workbook that cannot be read is
// told in the office's words, with what to do about it; anything else in
// the words of the part that failed.
QString description(const std::exception& error) {
    const auto* workbookError = dynamic_cast<const workbook::WorkbookError*>(&error);
    if (workbookError == nullptr)
        return QString::fromUtf8(error.what());
    using Kind = workbook::WorkbookError::Kind;
    switch (workbookError->kind()) {
        case Kind::NotAWorkbook:
            return QStringLiteral("Seçilen dosya bir Excel çalışma kitabı değil.");
        case Kind::NewerFormat:
            return QStringLiteral(
                "Seçilen dosya yeni Excel biçiminde (.xlsx). Dosyayı Excel 97-2003 çalışma "
                "kitabı (.xls) olarak kaydedip yeniden deneyiniz.");
        case Kind::OlderFormat:
            return QStringLiteral(
                "Seçilen dosya Excel'in eski bir sürümüyle kaydedilmiş. Dosyayı Excel 97-2003 "
                "çalışma kitabı (.xls) olarak kaydedip yeniden deneyiniz.");
        case Kind::PasswordProtected:
            return QStringLiteral(
                "Çalışma kitabı parola ile korunuyor. Parolayı kaldırıp yeniden deneyiniz.");
        case Kind::Damaged:
            return QStringLiteral("Çalışma kitabı bozuk, okunamadı.");
        case Kind::TableNotFound:
            return QStringLiteral("Çalışma kitabında seçilen adla bir sayfa yok.");
    }
    return QString::fromUtf8(error.what());
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
    const QString text =
        QStringLiteral("Run-time error '%1':\n\n%2").arg(errorNumber(error), description(error));
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fputs("\n", stderr);
    if (!messageBoxesUnattended())
        MsgBox(text, 16);
    std::_Exit(1);
}

}  // namespace kit
