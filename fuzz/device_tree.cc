// Uses plain system calls: most of an execution's time would go into the standard library's.
#include "fuzz/device_tree.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "base/affix.h"
#include "fuzz/input.h"

namespace fuzz {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kChanges = IN_ATTRIB | IN_CREATE | IN_DELETE | IN_MODIFY | IN_MOVE;

ModelFile LinkAt(int directory, const char* name) {
  std::array<char, 4096> target;
  const ssize_t length = readlinkat(directory, name, target.data(), target.size());
  return {true, {target.data(), static_cast<std::size_t>(length < 0 ? 0 : length)}};
}

ModelFile FileAt(int directory, const char* name) {
  const UniqueFd file(openat(directory, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  std::string content;
  std::array<char, 4096> piece;
  for (ssize_t count = 0; (count = read(file.get(), piece.data(), piece.size())) > 0;) {
    content.append(piece.data(), static_cast<std::size_t>(count));
  }
  return {false, std::move(content)};
}

}  // namespace

DeviceTree::DeviceTree(const std::vector<std::string>& areas, const std::vector<std::string>& directories)
    : changes_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  for (const std::string& directory : directories) fs::create_directories(directory);
  for (const std::string& area : areas) {
    Open(area);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(area)) {
      if (entry.is_directory() && !entry.is_symlink()) Open(entry.path());
    }
  }
  Clear();
}

void DeviceTree::Open(const std::string& path) {
  const int watch = inotify_add_watch(changes_.get(), path.c_str(), kChanges);
  Directory directory{path + "/", std::unique_ptr<DIR, Close>(opendir(path.c_str())), 0, false};
  Require(watch >= 0 && directory.listing != nullptr, "the device's directories can be watched");
  directory.inside = Read(directory);
  Require(directories_.emplace(watch, std::move(directory)).second, "a directory is opened once");
}

void DeviceTree::Put(const std::string& path, const ModelFile& file) const {
  Remove(path);
  if (file.link) {
    Require(symlink(file.content.c_str(), path.c_str()) == 0, "a link can be made");
    return;
  }
  const UniqueFd made(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  const auto size = static_cast<ssize_t>(file.content.size());
  Require(write(made.get(), file.content.data(), file.content.size()) == size, "a file can be made");
}

void DeviceTree::Remove(const std::string& path) const { unlink(path.c_str()); }

void DeviceTree::Clear() {
  for (const auto& [path, file] : Files()) Remove(path);
  Require(Files().empty(), "the device can be emptied");
}

const std::map<std::string, ModelFile>& DeviceTree::Files() {
  NoteChanges();
  for (auto& [watch, directory] : directories_) {
    if (!directory.changed) continue;
    Forget(directory);
    Require(Read(directory) == directory.inside, "no directory comes or goes");
    directory.changed = false;
  }
  return files_;
}

void DeviceTree::NoteChanges() {
  std::array<char, 16384> events;
  for (ssize_t size = 0; (size = read(changes_.get(), events.data(), events.size())) > 0;) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
      inotify_event event{};
      std::memcpy(&event, events.data() + at, sizeof event);
      at += sizeof event + event.len;
      const auto directory = directories_.find(event.wd);
      Require(directory != directories_.end(), "changes are told of directories that are watched");
      directory->second.changed = true;
    }
  }
}

void DeviceTree::Forget(const Directory& directory) {
  for (auto at = files_.lower_bound(directory.path); at != files_.end() && HasPrefix(at->first, directory.path);) {
    at = at->first.find('/', directory.path.size()) == std::string::npos ? files_.erase(at) : std::next(at);
  }
}

// Takes note of the files and links; returns how many directories there are.
int DeviceTree::Read(const Directory& directory) {
  int inside = 0;
  rewinddir(directory.listing.get());
  while (const dirent* entry = readdir(directory.listing.get())) {
    const char* const name = entry->d_name;
    if (std::string_view(name) == "." || std::string_view(name) == "..") continue;
    if (entry->d_type == DT_DIR) {
      ++inside;
    } else {
      const auto read = entry->d_type == DT_LNK ? LinkAt : FileAt;
      files_.emplace(directory.path + name, read(dirfd(directory.listing.get()), name));
    }
  }
  return inside;
}

}  // namespace fuzz
