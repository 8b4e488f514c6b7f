#include "reports/engine/report_runner.h"
