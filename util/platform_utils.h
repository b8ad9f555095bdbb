#include "morvath/platform_utils.h"
