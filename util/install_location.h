#include "morvath/install_location.h"
