// Listings, and the walk's look at them.
#include "orvelbox/check/listing.h"

#include <dirent.h>

#include "base/affix.h"

namespace orvelbox {

bool LooksLikeDll(std::string_view path) {
  constexpr std::string_view kSuffix = ".dll";
  return path.size() >= kSuffix.size() && EqualsIgnoringCase(path.substr(path.size() - kSuffix.size()), kSuffix);
}

std::vector<Listing::Entry>& Listing::In(std::string_view directory) {
  const auto [place, added] = directories_.try_emplace(std::string(directory));
  std::vector<Entry>& entries = place->second;
  if (added && !directory.empty()) Put(directory, DT_DIR);
  return entries;
}

void Listing::Put(std::string_view path, unsigned char type) {
  const std::size_t slash = path.rfind('/');
  const std::string_view directory = slash == std::string_view::npos ? "" : path.substr(0, slash);
  In(directory).push_back({std::string(path.substr(slash + 1)), type});
}

void Listing::Add(std::string_view path, unsigned char type) {
  if (type == DT_DIR) {
    In(path);
  } else if (LooksLikeDll(path)) {
    Put(path, type);
    ++dlls_;
  }
}

void Listing::AddLinked(const std::string& path, Listing there) { linked_.emplace(path, std::move(there)); }

const std::vector<Listing::Entry>* Listing::Find(std::string_view directory) const {
  for (const auto& [path, there] : linked_) {
    if (directory == path) return there.Find("");
    if (HasPrefix(directory, path + "/")) return there.Find(directory.substr(path.size() + 1));
  }
  const auto found = directories_.find(std::string(directory));
  return found == directories_.end() ? nullptr : &found->second;
}

void Listing::ForEachDll(const std::function<void(const std::string& path, unsigned char type)>& visit) const {
  for (const auto& [directory, entries] : directories_) {
    for (const Entry& entry : entries) {
      if (entry.type == DT_DIR) continue;
      visit(directory.empty() ? entry.name : directory + "/" + entry.name, entry.type);
    }
  }
}

const std::vector<Listing::Entry>* PlacedListing::Find(std::string_view path) const {
  path.remove_prefix(root_.size());
  while (!path.empty() && path.front() == '/') path.remove_prefix(1);
  while (!path.empty() && path.back() == '/') path.remove_suffix(1);
  return listing_.Find(path);
}

bool PlacedListing::Directory::Next(ListedEntry& entry) {
  if (entries_ == nullptr || next_ == entries_->size()) return false;
  const Listing::Entry& listed = (*entries_)[next_++];
  entry = {listed.name, listed.type, true};
  return true;
}

Walk WalkOver(const Listing& listing, const std::string& root) {
  return [placed = PlacedListing(listing, root)](const std::string& path, FileVisitor visit, unsigned int depth) {
    WalkListed(placed, path, std::move(visit), depth);
  };
}

}  // namespace orvelbox
