// Editing cache texts, compared with the simplest implementation on many random texts, roots and lists.
#include <algorithm>
#include <iterator>
#include <random>

#include "plugin/cache_files.h"
#include "tests/support/cache_edit.h"
#include "tests/support/plain_cache_edit.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

using support::CacheEdit;
using support::Erase;
using support::PlainEdit;
using support::PlainErase;

constexpr unsigned kSeed = 20240229;

// Random texts. The same seed gives the same texts on every machine.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}

  std::size_t Below(std::size_t count) { return engine_() % count; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  std::string Text(const std::string& alphabet, std::size_t longest) {
    std::string text;
    for (std::size_t left = Below(longest + 1); left > 0; --left) text += alphabet[Below(alphabet.size())];
    return text;
  }

  const std::string& OneOf(const Texts& texts) { return texts[Below(texts.size())]; }

 private:
  std::mt19937 engine_;
};

struct Case {
  std::string text;
  std::string root;
};

// Random characters from a small set, so that matches overlap often.
Case AnyCharacters(Random& random) {
  static const Texts alphabets = {"ab:[]/", "a:[]", "a:]", "ab:", ":[]", "a]:[/\n", {"a\0:]\xFF", 5}, "START[]END:/"};
  const std::string& alphabet = random.OneOf(alphabets);
  return {random.Text(alphabet, 24), random.Text(alphabet, 4)};
}

// The same, with the root inserted in some places.
Case AnyCharactersAroundTheRoot(Random& random) {
  Case made = AnyCharacters(random);
  for (std::size_t left = random.Below(6); left > 0; --left) {
    made.text.insert(random.Below(made.text.size() + 1), random.OneOf({"", ":", "]", "["}) + made.root);
  }
  return made;
}

// Roots that contain a separator, nested so that erasing one joins the halves of the next.
Case NestedRoots(Random& random) {
  const std::string front = random.Text("ab/[", 2) + random.OneOf({":", "]"});
  const std::string back = random.Text("ab:[]", 2);
  Case made{"", front + back};
  for (std::size_t left = random.Below(4) + 1; left > 0; --left) {
    made.text = front + made.text + random.OneOf({"", made.root}) + random.OneOf({"", ":", "x:", "["}) + back;
  }
  made.text = random.OneOf({"[START]", ":", "]"}) + made.text + random.OneOf({"", "[END]", ":a[END]"});
  return made;
}

const Texts kPlainRoots = {"/r", "/r2", "/r/s", "/apps/pkg", "/apps/pkg2", "/apps/pk", "/a"};
const Texts kPlainEnds = {"/shared/res/", "/shared/res/A.dll", "/shared/res/B.dll", "/x.dll", "", "/r/y.dll"};
const Texts kHostileRoots = {"/r:s",    "/r[s",  "/r]s", "/r]",   "[", "]",    ":",
                             "[START]", "[END]", "END]", "START", "",  "/r:/r"};
const Texts kHostileEnds = {"/x[END]", "/[START]x", "/a:b", "]/r", ":", "[", "::", "/x[1].dll", "/y]:", "\n"};

std::string Entry(Random& random, const Texts& roots, const Texts& ends) {
  return random.OneOf(roots) + random.OneOf(ends);
}

std::string Joined(const Texts& entries) {
  std::string joined;
  for (const std::string& entry : entries) joined += (&entry == &entries.front() ? "" : ":") + entry;
  return joined;
}

Texts PlainEntries(Random& random, std::size_t most) {
  Texts entries;
  for (std::size_t left = random.Below(most + 1); left > 0; --left) {
    entries.push_back(Entry(random, kPlainRoots, kPlainEnds));
  }
  return entries;
}

// Lists as the platform's component and this one write them.
Case OrdinaryList(Random& random) {
  const std::size_t most = random.OneIn(50) ? 300 : 8;
  const std::string first = random.OneIn(4) ? "[START]:" : "[START]";
  return {first + Joined(PlainEntries(random, most)) + "[END]", random.OneOf(kPlainRoots)};
}

// Lists with markers missing, doubled or inside of entries, and roots of all kinds.
Case HostileList(Random& random) {
  Texts entries = PlainEntries(random, 5);
  for (std::size_t left = random.Below(4); left > 0; --left) {
    entries.push_back(Entry(random, random.OneIn(2) ? kPlainRoots : kHostileRoots, kHostileEnds));
  }
  std::rotate(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(random.Below(entries.size() + 1)),
              entries.end());
  const std::string text = (random.OneIn(3) ? "" : "[START]") + Joined(entries) + (random.OneIn(3) ? "" : "[END]");
  return {text + random.OneOf({"", "", "\n", "[END]", ":"}),
          random.OneOf(random.OneIn(3) ? kPlainRoots : kHostileRoots)};
}

Case AnyCase(Random& random) {
  using Maker = Case (*)(Random&);
  static constexpr Maker kMakers[] = {AnyCharacters, AnyCharactersAroundTheRoot, NestedRoots, OrdinaryList,
                                      HostileList};
  return kMakers[random.Below(std::size(kMakers))](random);
}

std::string Shown(const Texts& texts) { return testing::PrintToString(texts); }

// The kinds of random cases that occurred, to detect a missing kind.
struct Tally {
  int untouched = 0;
  int endless = 0;
  int erased_once = 0;
  int erased_often = 0;
  int went_back = 0;

  void Count(const PlainEdit& plain) {
    endless += plain.endless ? 1 : 0;
    untouched += plain.erased.empty() && !plain.endless ? 1 : 0;
    erased_once += plain.erased.size() == 1 ? 1 : 0;
    erased_often += plain.erased.size() > 1 ? 1 : 0;
    went_back += plain.went_back ? 1 : 0;
  }
};

TEST(CacheTextProperty, erasing_gives_what_the_plain_search_from_the_front_gives) {
  constexpr int kCases = 100000;
  constexpr int kAtLeast = kCases / 200;
  Random random(kSeed);
  Tally tally;
  for (int i = 0; i < kCases && !HasFailure(); ++i) {
    const Case made = AnyCase(random);
    const PlainEdit plain = PlainErase(made.text, made.root);
    const CacheEdit edit = Erase(made.text, made.root);
    if (edit.text == plain.text && edit.erased == plain.erased) {
      tally.Count(plain);
      continue;
    }
    ADD_FAILURE() << "seed " << kSeed << ", case " << i << ": text " << testing::PrintToString(made.text) << ", root "
                  << testing::PrintToString(made.root) << "\nleft " << testing::PrintToString(edit.text) << ", erased "
                  << Shown(edit.erased) << "\ninstead of " << testing::PrintToString(plain.text) << ", erased "
                  << Shown(plain.erased);
  }
  for (const int count : {tally.untouched, tally.endless, tally.erased_once, tally.erased_often, tally.went_back}) {
    EXPECT_GE(count, kAtLeast);
  }
}

TEST(CacheTextProperty, a_file_is_edited_and_logged_like_its_text) {
  Random random(kSeed + 2);
  const TempDir directory;
  const std::string file = directory / "TPA.txt";
  for (int i = 0; i < 200 && !HasFailure(); ++i) {
    Case made = AnyCase(random);
    std::replace(made.text.begin(), made.text.end(), '\0', 'x');  // a log line would end at a NUL
    WriteFile(file, made.text);
    const PlainEdit plain = PlainErase(made.text, made.root);
    const Platform& platform = doubles::Reset();
    std::string text = "as it was";
    const std::string which = "seed " + std::to_string(kSeed + 2) + ", case " + std::to_string(i) + ": " +
                              testing::PrintToString(made.text) + " without " + testing::PrintToString(made.root);
    EXPECT_EQ(!plain.erased.empty(), readCacheAndRemovePkg(file, made.root, text)) << which;
    EXPECT_EQ(plain.text, text) << which;
    EXPECT_TRUE(Holds(platform, CacheRead(file, plain.erased, plain.text))) << which;
    EXPECT_EQ(made.text, ReadFile(file)) << which;
  }
}

TEST(CacheTextProperty, adding_puts_one_copy_at_the_end_and_erasing_takes_it_away_again) {
  Random random(kSeed + 3);
  for (int i = 0; i < 4000 && !HasFailure(); ++i) {
    const Case made = OrdinaryList(random);
    Texts entries;
    do {
      entries.push_back(made.root + random.OneOf(kPlainEnds));
    } while (!random.OneIn(3));
    SCOPED_TRACE("seed " + std::to_string(kSeed + 3) + ", case " + std::to_string(i) + ": " + made.text + " with " +
                 Joined(entries));
    const std::string without = Erase(made.text, made.root).text;
    const std::string added = AppendEntries(without, Joined(entries));
    EXPECT_EQ(support::PlainAppend(PlainErase(made.text, made.root).text, Joined(entries)), added);
    EXPECT_EQ(without, Erase(added, made.root).text);
  }
}

}  // namespace
}  // namespace unit
