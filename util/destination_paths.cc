// Destination path managers.
#include "morvath/destination_paths.h"

// All of these are defined here and not in the header, so that the library exports them and the vtables.
AotPathManager::AotPathManager() = default;
AotPathManager::~AotPathManager() = default;

AppApiPath::AppApiPath() = default;
AppApiPath::~AppApiPath() = default;
std::string AppApiPath::GetDestinationPath() { return "/shared/lib"; }

CoBAComponentPath::CoBAComponentPath() = default;
CoBAComponentPath::~CoBAComponentPath() = default;
std::string CoBAComponentPath::GetDestinationPath() { return "/shared/res"; }

DpcPath::DpcPath() = default;
DpcPath::~DpcPath() = default;
std::string DpcPath::GetDestinationPath() { return "/shared/res/d.pc"; }

std::string AotDestinationPathGetter(AotPathManager* manager) { return manager->GetDestinationPath(); }
