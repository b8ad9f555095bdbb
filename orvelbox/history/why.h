// What the plug-in did to the DLLs of an installed package, and why: put together from what it left, information files
// and the log, and told as the command `why` does. Only reads.
#ifndef ORVEL_ORVELBOX_HISTORY_WHY_H_
#define ORVEL_ORVELBOX_HISTORY_WHY_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orvelbox/check/result.h"
#include "orvelbox/desk/output.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// A DLL that was taken for a duplicate. Paths are those of the device.
struct Removal {
  std::string dll;
  std::string origin;             // the copy that decided
  std::string time;               // of the last report in the log; empty when the log has none
  bool removed = false;           // otherwise it was reported only,
  bool stays = false;             // because the copy that decided lies in the read-write area, or for what nobody tells
  bool information_file = false;  // "…_deleted" lies beside its place
  bool origin_there = false;      // the copy that decided is still on the device
};

// The copy that decided, by the text of the information file whose path without "_deleted" is `dll`. Nothing when the
// text is no such information.
std::optional<std::string> OriginIn(std::string_view text, const std::string& dll);

// What `why` was asked about.
struct WhyQuestion {
  host::Package package;
  std::string path;  // on the device: only this file, or what is below it; empty: the whole package
};

// Reads PATH|PKG: a package id, or a path of the device or of the desk in or beside which a DLL was. Throws
// host::DeviceError when it concerns no installed package.
WhyQuestion ReadQuestion(const host::Device& device, const host::PackageStore& store, const std::string& text);

// All that is known of what is asked for.
struct Removals {
  std::vector<Removal> all;       // ordered by path
  std::uint64_t unread_from = 0;  // the line of the log from which on it is not known; 0: there is none
};

// Throws host::DeviceError when the log cannot be read.
Removals RemovalsFor(const host::Device& device, const WhyQuestion& question);

// The answer in words. `today` is what a check of the installed package says now.
Lines DescribeWhy(const WhyQuestion& question, const Removals& removals, const CheckedPackage& today);
// The answer as one JSON object.
std::string WhyJson(const WhyQuestion& question, const Removals& removals, const CheckedPackage& today);

}  // namespace orvelbox

#endif
