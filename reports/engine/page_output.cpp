#include "reports/engine/page_output.h"
