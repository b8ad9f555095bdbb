#include "morvath/destination_paths.h"
