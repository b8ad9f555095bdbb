#include "morvath/metadata_utils.h"
