// The rules for paths inside an archive.
#include "orvelbox/package/archive_paths.h"

#include <algorithm>

namespace orvelbox {
namespace {

constexpr std::size_t kLongestName = 255;

std::string ProblemOfName(std::string_view name) {
  if (name == "..") return "leads out of the package (\"..\"); pack it with plain paths";
  if (name.size() > kLongestName) return "holds a name of more than 255 bytes; choose a shorter one";
  return "";
}

}  // namespace

std::string ArchivePaths::Add(std::string_view written, bool directory, std::string& path) {
  path.clear();
  if (++told_ > limits_.entries) return OneTooMany();
  if (written.empty()) return "has no name; pack the archive anew";
  if (written.find('\0') != std::string_view::npos) return "holds a NUL in its path; pack the archive anew";
  if (written.front() == '/') return "has an absolute path; pack it with paths relative to the package";
  if (written.find('\\') != std::string_view::npos) return "holds \"\\\"; pack it with \"/\" between the names";
  if (written.size() > limits_.path_bytes) {
    return "has a path of more than " + std::to_string(limits_.path_bytes) + " bytes; choose shorter names";
  }
  bytes_ += written.size();
  if (bytes_ > limits_.all_path_bytes) {
    return "is one too many: the archive's paths have more than " + std::to_string(limits_.all_path_bytes) +
           " bytes in all; choose shorter names";
  }
  std::size_t depth = 0;
  while (!written.empty()) {
    const std::size_t end = std::min(written.find('/'), written.size());
    const std::string_view name = written.substr(0, end);
    written.remove_prefix(std::min(end + 1, written.size()));
    if (name.empty() || name == ".") continue;
    if (std::string problem = ProblemOfName(name); !problem.empty()) return problem;
    if (++depth > limits_.depth) {
      return "lies more than " + std::to_string(limits_.depth) + " directories deep; make the package flatter";
    }
    path.append(path.empty() ? "" : "/").append(name);
  }
  if (path.empty()) return directory ? "" : "has no name; pack the archive anew";
  return AddPlain(path, directory);
}

std::string ArchivePaths::AddPlain(const std::string& path, bool directory) {
  for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    const auto parent = directories_.emplace(path.substr(0, slash), true).first;
    if (!parent->second) return "lies in \"" + parent->first + "\", which is a file; pack the archive anew";
  }
  const auto [known, added] = directories_.emplace(path, directory);
  if (!added && !(directory && known->second)) return "is there twice; pack the archive anew";
  return directories_.size() > limits_.entries ? OneTooMany() : "";
}

std::string ArchivePaths::OneTooMany() const {
  return "is one too many: the archive holds more than " + std::to_string(limits_.entries) +
         " files and directories; make the package smaller";
}

}  // namespace orvelbox
