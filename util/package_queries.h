#include "morvath/package_queries.h"
