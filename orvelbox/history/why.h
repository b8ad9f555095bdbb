// The command `why`: what happened to the DLLs of an installed package, and why.
#ifndef ORVEL_ORVELBOX_HISTORY_WHY_H_
#define ORVEL_ORVELBOX_HISTORY_WHY_H_

#include <string>
#include <vector>

#include "orvelbox/check/result.h"
#include "orvelbox/desk/lines.h"
#include "orvelbox/history/removals.h"

namespace orvelbox {

// What `why` was asked about.
struct WhyQuestion {
  host::Package package;
  std::string path;  // on the device: only this file, or what is below it; empty: the whole package
};

// Reads PATH|PKG: a package id, or a path of the device or of the desk in or beside which a DLL was. Throws
// host::DeviceError when it concerns no installed package.
WhyQuestion ReadQuestion(const host::Device& device, const host::PackageStore& store, const std::string& text);

// Those of `removals` that are asked for.
std::vector<Removal> AskedFor(const WhyQuestion& question, std::vector<Removal> removals);

// The answer in words. `today` is what a check of the installed package says now.
Lines DescribeWhy(const WhyQuestion& question, const std::vector<Removal>& removals, const CheckedPackage& today);
// The answer as one JSON object.
std::string WhyJson(const WhyQuestion& question, const std::vector<Removal>& removals, const CheckedPackage& today);

}  // namespace orvelbox

#endif
