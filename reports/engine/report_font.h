#pragma once

#include <QFont>

#include "reports/engine/report_definition.h"

namespace engine {

// The report font, Tahoma, found by name; the first call registers the
// font files the system's setup installs when the font database lacks them.
// A barcode's text is set in Arial, or the closest the system has.
QFont reportFont(const TextStyle& style);
QFont barcodeFont();

}  // namespace engine
