// The command `check`: many packages judged on all cores, and what was found told as asked for.
#ifndef ORVEL_ORVELBOX_CHECK_CHECK_H_
#define ORVEL_ORVELBOX_CHECK_CHECK_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvelbox {

struct CheckOptions {
  enum class Format { kTable, kJson, kSarif };

  std::vector<std::string> packages;    // directories and archives
  std::string platform;                 // a directory or a list file; empty: the device
  std::vector<std::string> coba;        // further CoBA packages
  std::vector<std::string> privileges;  // URIs, beside those of the manifests
  Format format = Format::kTable;
  unsigned jobs = 0;   // processes at a time; 0: one per core
  bool quiet = false;  // no progress bar
};

// The URI of a privilege, which may be given by its short name ("platform", "appdebugging"). Throws
// std::invalid_argument, with a line for people, when it is neither.
std::string PrivilegeUri(const std::string& text);

// Checks the packages. `device` is the device's directory; not looked at when options.platform is set. Returns the exit
// status: 0 no duplicates, 1 duplicates, 2 a package or what to check against could not be read. Changes nothing.
int Check(const CheckOptions& options, const std::filesystem::path& device);

}  // namespace orvelbox

#endif
