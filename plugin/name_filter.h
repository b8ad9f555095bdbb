// A Bloom filter: a quick answer to "is this name catalogued?". The answer "no" is always right.
#ifndef PLUGIN_NAME_FILTER_H_
#define PLUGIN_NAME_FILTER_H_

#include <bitset>
#include <cstdint>
#include <cstring>
#include <string_view>

// Stores two bits of each name's hash. Finds every name that was added; with 2,000 names added, it also reports about
// one in 300 other names. Uses eight KiB, however many names it holds.
class NameFilter {
 public:
  void Add(std::string_view name) {
    const std::uint64_t hash = Hash(name);
    bits_.set(hash >> 48).set(hash >> 32 & 0xffff);
  }
  // False: `name` was not added. True: it may have been.
  bool MayHold(std::string_view name) const {
    const std::uint64_t hash = Hash(name);
    return bits_.test(hash >> 48) && bits_.test(hash >> 32 & 0xffff);
  }

 private:
  // Takes eight bytes at a time, which is less work than std::hash for names. The upper half of the result is well
  // mixed.
  static std::uint64_t Hash(std::string_view name) {
    std::uint64_t hash = name.size();
    const auto mix = [&hash](std::uint64_t part) { hash = ((hash << 32 | hash >> 32) ^ part) * 0x9e3779b97f4a7c15; };
    for (std::uint64_t part = 0; name.size() >= sizeof part; name.remove_prefix(sizeof part)) {
      std::memcpy(&part, name.data(), sizeof part);
      mix(part);
    }
    for (const char c : name) mix(static_cast<unsigned char>(c));
    return hash;
  }

  std::bitset<65536> bits_;
};

#endif
