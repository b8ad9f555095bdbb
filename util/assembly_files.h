#include "morvath/assembly_files.h"
