#include "rosters/roster_backup.h"

#include <algorithm>
#include <string>
#include <vector>

#include <QRegularExpression>

#include "shell/clock.h"
#include "store/jet/backup.h"
#include "store/jet/error.h"

namespace rosters {
namespace {

namespace fs = std::filesystem;

bool isBackupName(const QString& name) {
    static const QRegularExpression pattern(QStringLiteral(R"(^kvl-yedek-\d{8}-\d{6}\.mdb$)"));
    return pattern.match(name).hasMatch();
}

// Deletes the oldest copies, by the moment in their names, beyond the new
// one and the four newest others. A copy that cannot be deleted is left: the
// new copy is written, and that is what counts.
void deleteOldBackups(const fs::path& folder, const fs::path& kept) {
    std::vector<fs::path> others;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const QString name = QString::fromStdString(entry->path().filename().string());
        if (isBackupName(name) && entry->path() != kept && entry->is_regular_file(error))
            others.push_back(entry->path());
    }
    std::sort(others.begin(), others.end(),
              [](const fs::path& a, const fs::path& b) { return a.filename() > b.filename(); });
    for (std::size_t index = kKeptBackups - 1; index < others.size(); ++index)
        fs::remove(others[index], error);
}

}  // namespace

QString backupName(const QDateTime& moment) {
    return QStringLiteral("kvl-yedek-") + moment.toString(QStringLiteral("yyyyMMdd-HHmmss")) +
           QStringLiteral(".mdb");
}

fs::path backUpSchoolFile(const jet::Database& school) {
    const fs::path folder = fs::absolute(fs::path(school.path())).parent_path();
    const QString name = backupName(shell::now());
    fs::path copy = folder / name.toStdString();
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(copy, ignored))) {
        throw BackupError(
            (QStringLiteral("Program klasöründe \"") + name +
             QStringLiteral("\" adında bir dosya ya da klasör zaten var; yedek onun üzerine "
                            "yazılmaz."))
                .toStdString());
    }
    try {
        jet::copyDatabase(school, copy.string());
    } catch (const jet::Error&) {
        throw BackupError(
            (QStringLiteral("\"") + name +
             QStringLiteral("\" dosyası program klasörüne yazılamadı. Diskte yer kalmamış, "
                            "klasöre yazma izni olmayabilir ya da veri tabanına başka bir "
                            "bilgisayardan uzun süredir yazılıyor olabilir."))
                .toStdString());
    }
    deleteOldBackups(folder, copy);
    return copy;
}

}  // namespace rosters
