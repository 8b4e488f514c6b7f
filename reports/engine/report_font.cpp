#include "reports/engine/report_font.h"
