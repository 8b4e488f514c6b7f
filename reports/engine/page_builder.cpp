#include "reports/engine/report.h"
