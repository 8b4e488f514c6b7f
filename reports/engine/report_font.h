#pragma once

#include <QFont>

#include "reports/engine/report_definition.h"

namespace engine {

// The report font, Tahoma, found by name; the first call registers the
// font files the system's setup installs when the font database lacks them.
// A barcode's text is set in Arial, or the closest the system has.
QFont reportFont(const TextStyle& style);
QFont barcodeFont();

// The report font's line as Windows sets Tahoma, in ems: the ascent above
// the baseline and the whole height. Lines are stacked by these, whatever
// file gives the glyphs; the free Tahoma the system installs has a lower
// ascent, which would put the dots of İ, Ö and Ü above a box's top.
inline constexpr double kReportFontAscentEm = 2049.0 / 2048;
inline constexpr double kReportFontHeightEm = (2049.0 + 423.0) / 2048;

}  // namespace engine
