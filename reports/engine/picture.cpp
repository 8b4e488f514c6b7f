#include "reports/engine/picture.h"
