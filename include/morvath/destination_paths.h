// Where the output of ahead-of-time compilation goes inside a package. The launcher's tools decide which class applies
// to a package.
#ifndef MORVATH_DESTINATION_PATHS_H_
#define MORVATH_DESTINATION_PATHS_H_

#include <string>

#include "morvath/export.h"

// One kind of package content.
class ORVEL_EXPORT AotPathManager {
 public:
  AotPathManager();
  virtual ~AotPathManager();
  // The output directory relative to the package root, with a leading "/" and without a trailing one.
  virtual std::string GetDestinationPath() = 0;
};

// Application API assemblies.
class ORVEL_EXPORT AppApiPath : public AotPathManager {
 public:
  AppApiPath();
  ~AppApiPath() override;
  std::string GetDestinationPath() override;
};

// CoBA component assemblies.
class ORVEL_EXPORT CoBAComponentPath : public AotPathManager {
 public:
  CoBAComponentPath();
  ~CoBAComponentPath() override;
  std::string GetDestinationPath() override;
};

// DPC assemblies.
class ORVEL_EXPORT DpcPath : public AotPathManager {
 public:
  DpcPath();
  ~DpcPath() override;
  std::string GetDestinationPath() override;
};

// Returns manager->GetDestinationPath(). `manager` must not be null.
ORVEL_EXPORT std::string AotDestinationPathGetter(AotPathManager* manager);

#endif
