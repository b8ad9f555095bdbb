// What the structure-aware mutators have in common. A mutator is linked into a fuzzer, never into its tests.
#ifndef FUZZ_MUTATION_H_
#define FUZZ_MUTATION_H_

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>

// libFuzzer's own mutation of plain bytes. Returns the new size.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

namespace fuzz {

// Choices that depend on the seed only.
class Chance {
 public:
  explicit Chance(unsigned int seed) : engine_(seed) { engine_.discard(1); }

  std::size_t Below(std::size_t count) { return engine_() / 16 % count; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }
  template <typename Choices>
  auto Of(const Choices& choices) {
    return choices[Below(std::size(choices))];
  }

 private:
  std::minstd_rand engine_;
};

// The text after a mutation of its bytes, at most `longest` long.
inline std::string MutatedBytes(std::string text, std::size_t longest) {
  const std::size_t size = text.size() < longest ? text.size() : longest;
  text.resize(longest);
  text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, longest));
  return text;
}

}  // namespace fuzz

#endif
