// Reading versions from assemblies; other files have none.
#include "orvelbox/assembly/version.h"

#include "tests/orvelbox/frame.h"
#include "tests/support/assembly.h"

namespace orvelbox {
namespace {

using support::AssemblyOf;
using support::AssemblyShape;

constexpr AssemblyVersion kVersion = {13, 0, 3, 27908};

// Bytes in memory, not owned.
class MemoryBytes : public ByteSource {
 public:
  explicit MemoryBytes(std::string_view bytes) : bytes_(bytes) {}
  std::string_view Read(std::uint64_t at, std::size_t length) override {
    if (at > bytes_.size() || length > bytes_.size() - at) throw BeyondBytes();
    return bytes_.substr(static_cast<std::size_t>(at), length);
  }

 private:
  std::string_view bytes_;
};

std::optional<AssemblyVersion> VersionIn(const std::string& file) {
  MemoryBytes bytes(file);
  return ReadAssemblyVersion(bytes, file.size());
}

std::string VersionOf(const AssemblyShape& shape) {
  const auto version = VersionIn(AssemblyOf(kVersion, shape));
  return version ? ToString(*version) : "none";
}

TEST(AssemblyVersion, is_read_from_either_kind_of_file) {
  AssemblyShape shape;
  EXPECT_EQ(VersionOf(shape), "13.0.3.27908");
  shape.pe32_plus = true;
  EXPECT_EQ(VersionOf(shape), "13.0.3.27908");
}

struct Shape {
  const char* name;
  AssemblyShape shape;
};

class ShapeOfAssembly : public testing::TestWithParam<Shape> {};

TEST_P(ShapeOfAssembly, does_not_hide_the_version) { EXPECT_EQ(VersionOf(GetParam().shape), "13.0.3.27908"); }

// The widths are those of ECMA-335, partition II, 22 and 24.2.6.
INSTANTIATE_TEST_SUITE_P(
    tables, ShapeOfAssembly,
    testing::Values(Shape{"wide_strings", {0x01, {{0x00, 1, 12}, {0x01, 3, 10}}}},
                    Shape{"wide_guids", {0x02, {{0x00, 1, 16}, {0x01, 3, 6}}}},
                    Shape{"wide_blobs", {0x04, {{0x00, 1, 10}, {0x04, 5, 8}, {0x11, 2, 4}}}},
                    Shape{"many_fields", {0, {{0x00, 1, 10}, {0x02, 2, 16}, {0x04, 0x10000, 6}}}},
                    Shape{"fields_that_just_fit", {0, {{0x00, 1, 10}, {0x02, 2, 14}, {0x04, 0xffff, 6}}}},
                    Shape{"many_references", {0, {{0x01, 0x4000, 8}, {0x02, 2, 16}}}},
                    Shape{"references_that_just_fit", {0, {{0x01, 0x3fff, 6}, {0x02, 2, 14}}}},
                    Shape{"many_attributed_members", {0, {{0x06, 0x800, 14}, {0x0a, 1, 6}, {0x0c, 7, 8}}}},
                    Shape{"every_table",
                          {0, {{0x00, 1, 10}, {0x01, 1, 6}, {0x02, 1, 14}, {0x03, 1, 2}, {0x04, 1, 6}, {0x05, 1, 2},
                               {0x06, 1, 14}, {0x07, 1, 2}, {0x08, 1, 6},  {0x09, 1, 4}, {0x0a, 1, 6}, {0x0b, 1, 6},
                               {0x0c, 1, 6},  {0x0d, 1, 4}, {0x0e, 1, 6},  {0x0f, 1, 8}, {0x10, 1, 6}, {0x11, 1, 2},
                               {0x12, 1, 4},  {0x13, 1, 2}, {0x14, 1, 6},  {0x15, 1, 4}, {0x16, 1, 2}, {0x17, 1, 6},
                               {0x18, 1, 6},  {0x19, 1, 6}, {0x1a, 1, 2},  {0x1b, 1, 2}, {0x1c, 1, 8}, {0x1d, 1, 6},
                               {0x1e, 1, 8},  {0x1f, 1, 4}}}}),
    [](const auto& parameters) { return parameters.param.name; });

TEST(AssemblyVersion, other_files_have_none) {
  for (const std::string& text : {std::string(), std::string("x"), std::string("MZ"), std::string(1000, 'M')}) {
    EXPECT_FALSE(VersionIn(text)) << text.size();
  }
}

TEST(AssemblyVersion, a_cut_off_assembly_has_none) {
  const std::string whole = AssemblyOf(kVersion);
  const std::size_t behind_the_version = whole.size() - 16;
  for (std::size_t length = 0; length < behind_the_version; ++length) {
    EXPECT_FALSE(VersionIn(whole.substr(0, length))) << length;
  }
}

// For any value of any byte, nothing beyond the file is read.
TEST(AssemblyVersion, a_damaged_assembly_does_no_harm) {
  const std::string whole = AssemblyOf(kVersion, {0x07, {{0x00, 1, 18}, {0x01, 2, 10}}});
  int found = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char value : {'\0', '\x7f', '\xff'}) {
      std::string damaged = whole;
      damaged[at] = value;
      found += VersionIn(damaged) ? 1 : 0;
    }
  }
  EXPECT_GT(found, 0) << "of the damages that matter to nobody";
}

TEST(AssemblyVersion, versions_compare_number_by_number) {
  EXPECT_LT((AssemblyVersion{1, 9, 0, 0}), (AssemblyVersion{1, 10, 0, 0}));
  EXPECT_LT((AssemblyVersion{1, 9, 9, 9}), (AssemblyVersion{2, 0, 0, 0}));
}

TEST(AssemblyVersion, is_told_number_by_number) { EXPECT_EQ(ToString(kVersion), "13.0.3.27908"); }

}  // namespace
}  // namespace orvelbox
