#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

#include "reports/engine/report.h"
#include "shell/kit/combo_box.h"

namespace reports::testing {

// A table's rows as mdbtools exports them, quotes taken off: what the
// reports print is counted against somebody else's reader.
using Rows = std::vector<QStringList>;
Rows exported(const std::filesystem::path& database, const char* table);

// The same with one record a line however many lines a memo holds, dates
// day first; nothing when the file has no such table.
std::optional<Rows> exportedMemos(const std::filesystem::path& database, const char* table);

// What a person reads on the report's pages once it has run out: the pages
// written as `name`.pdf in the folder and read back with pdftotext -layout.
QString printedText(engine::Report* report, const std::filesystem::path& folder,
                    const char* name = "report");

// Picks an entry of a combo's list as a user does: the list dropped down, a
// click on the entry.
void pick(kit::ComboBox* combo, const QString& entry);

}  // namespace reports::testing
