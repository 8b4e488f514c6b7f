#include "reports/engine/page_painter.h"
