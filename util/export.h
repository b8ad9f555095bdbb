#include "morvath/export.h"
