#pragma once

#include <QString>

namespace kit {

// The database password of the school's file, a constant of the program.
inline constexpr const char* kDatabasePassword = "HtRvZpQsD2019";

// The connection string of the school's file for a data source: the file
// name alone for data controls and baglantiac (the working folder), the
// program's folder and the name for connections that code opens itself.
QString connectionString(const QString& dataSource);

// "kvl.mdb" with no path: every data control of the program uses it.
QString relativeConnectionString();

// A tool that runs the windows' data controls on a file of any name and
// place (print-report) names it here; an empty text goes back to "kvl.mdb".
void setRelativeDataSourceForTools(const QString& path);

// The program's folder joined with "kvl.mdb" or "KVL.mdb", as each caller
// spells it; the two name one file.
QString absoluteConnectionString(const QString& fileName);

}  // namespace kit
