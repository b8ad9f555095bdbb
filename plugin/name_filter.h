// A quick answer to "is this name catalogued?" that is right whenever it is no.
#ifndef PLUGIN_NAME_FILTER_H_
#define PLUGIN_NAME_FILTER_H_

#include <bitset>
#include <functional>
#include <string_view>

// Knows names by one bit of their hash: never wrong about a name that was added, wrong about one in thirty others when
// it holds two thousand. Eight KiB, however many names it holds.
class NameFilter {
 public:
  void Add(std::string_view name) { bits_.set(Bit(name)); }
  // False: `name` was not added. True: ask elsewhere.
  bool MayHold(std::string_view name) const { return bits_.test(Bit(name)); }

 private:
  static constexpr std::size_t kBits = 65536;
  static std::size_t Bit(std::string_view name) { return std::hash<std::string_view>()(name) % kBits; }

  std::bitset<kBits> bits_;
};

#endif
