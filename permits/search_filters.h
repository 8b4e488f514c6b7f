#pragma once

#include <functional>

#include <QString>

#include "shell/kit/data_control.h"

namespace permits {

// The search boxes of the main window, each setting the filter of its list
// on its own; a new filter replaces the old one whole. The two lists (the
// roster and the permits) search alike, through these.

// " SINIF = '" + the class; "Tümü" (or "TÜMÜ") clears the filter and
// reloads.
void classSearch(kit::DataControl& list, const QString& item);

// " <column> like '" + the trimmed text + "%'": a prefix. An empty box
// reloads the list instead. No error handling: an apostrophe breaks the
// filter, and the failure goes on to the caller.
void prefixSearch(kit::DataControl& list, const QString& column, const QString& typed,
                  const std::function<void()>& reload);

// " Numara like " + the text as typed, without quotes; an empty box reloads.
void numberSearch(kit::DataControl& list, const QString& typed,
                  const std::function<void()>& reload);

// "TCKimlikno=" + the number the text begins with, written plainly; an
// empty box clears the filter and reloads.
void identitySearch(kit::DataControl& list, const QString& typed);

}  // namespace permits
