#pragma once

#include <vector>

#include <QPrinter>
#include <QString>

#include "reports/engine/display_list.h"

namespace engine {

// Writes the pages into a PDF file, each page in its own size. The file
// appears whole or not at all: it is written beside its place and moved in
// at the end. Returns an empty text, or a Turkish message saying what could
// not be written.
QString savePdf(const std::vector<Page>& pages, const QString& path, const QString& title);

// Prints the pages on a printer set up by the system's print dialog, the
// pages in the printer's page range. Returns an empty text or a Turkish
// message.
QString printPages(const std::vector<Page>& pages, QPrinter& printer);

}  // namespace engine
