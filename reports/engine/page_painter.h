#pragma once

#include <QPainter>

#include "reports/engine/display_list.h"

namespace engine {

// Paints a page on any painter with its top-left corner at the painter's
// origin, at the given device pixels per twip. The viewer, the PDF writer
// and the printer all paint through it, so what is seen is what prints.
void paintPage(const Page& page, QPainter& painter, double pixelsPerTwip);

}  // namespace engine
