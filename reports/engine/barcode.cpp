#include "reports/engine/barcode.h"
