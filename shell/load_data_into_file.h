#pragma once

#include <QString>

namespace shell {

// Writes the sample menu workbook carried inside the program to the path,
// unless a file is already there: an existing file is never overwritten.
// The resource number is the original's 101 and plays no part in the
// lookup.
void LoadDataIntoFile(int resourceNumber, const QString& path);

}  // namespace shell
