#include "reports/engine/viewer.h"
