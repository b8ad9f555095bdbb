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
  shape.sections_around = true;
  EXPECT_EQ(VersionOf(shape), "13.0.3.27908");
}

// Of the assemblies that AssemblyOf makes.
constexpr std::size_t kOptionalHeaderAt = 0x58;
constexpr std::size_t kMetadataAt = 0x248;
constexpr std::size_t kTablesAt = kMetadataAt + 64;

// What is read when the bytes at `at` are others.
std::string VersionWith(const std::string& bytes, std::size_t at, bool pe32_plus = false) {
  AssemblyShape shape;
  shape.pe32_plus = pe32_plus;
  std::string file = AssemblyOf(kVersion, shape);
  const auto version = VersionIn(file.replace(at, bytes.size(), bytes));
  return version ? ToString(*version) : "none";
}

TEST(AssemblyVersion, every_header_must_be_that_of_an_assembly) {
  EXPECT_EQ(VersionWith("MX", 0), "none");
  EXPECT_EQ(VersionWith("PX", 0x40), "none");
  EXPECT_EQ(VersionWith("\x0c\x01", kOptionalHeaderAt), "none");
  EXPECT_EQ(VersionWith("\x0c\x02", kOptionalHeaderAt, true), "none");
  EXPECT_EQ(VersionWith("\x0f", kOptionalHeaderAt + 92), "13.0.3.27908") << "number of directories";
  EXPECT_EQ(VersionWith("\x0e", kOptionalHeaderAt + 92), "none");
  EXPECT_EQ(VersionWith("\x0f", kOptionalHeaderAt + 108, true), "13.0.3.27908");
  EXPECT_EQ(VersionWith("\x0e", kOptionalHeaderAt + 108, true), "none");
  EXPECT_EQ(VersionWith(std::string(4, '\0'), kOptionalHeaderAt + 96 + 14 * 8), "none") << "a native file";
  EXPECT_EQ(VersionWith("BSJX", kMetadataAt), "none");
  EXPECT_EQ(VersionWith("#-", kTablesAt - 4), "13.0.3.27908") << "uncompressed";
  EXPECT_EQ(VersionWith("#x", kTablesAt - 4), "none");
  EXPECT_EQ(VersionWith(std::string(4, '\0'), kTablesAt + 28), "none") << "a module without the row";
}

struct Shape {
  const char* name;
  AssemblyShape shape;
};

class ShapeOfAssembly : public testing::TestWithParam<Shape> {};

TEST_P(ShapeOfAssembly, does_not_hide_the_version) { EXPECT_EQ(VersionOf(GetParam().shape), "13.0.3.27908"); }

// The widths are those of ECMA-335, partition II, 22 and 24.2.6; names of streams have 31 characters at the most
// (24.2.2).
INSTANTIATE_TEST_SUITE_P(
    tables, ShapeOfAssembly,
    testing::Values(
        Shape{"wide_strings", {0x01, {{0x00, 1, 12}, {0x01, 3, 10}}}},
        Shape{"wide_guids", {0x02, {{0x00, 1, 16}, {0x01, 3, 6}}}},
        Shape{"wide_blobs", {0x04, {{0x00, 1, 10}, {0x04, 5, 8}, {0x11, 2, 4}}}},
        Shape{"extra_data", {0x40, {{0x00, 1, 10}}}}, Shape{"the_last_table", {0, {{0x00, 1, 10}, {0x3f, 1, 1}}}},
        Shape{"a_stream_with_the_longest_name", {0, {{0x00, 1, 10}}, false, "#" + std::string(30, 'x')}},
        Shape{"every_table",
              {0, {{0x00, 1, 10}, {0x01, 1, 6}, {0x02, 1, 14}, {0x03, 1, 2}, {0x04, 1, 6}, {0x05, 1, 2}, {0x06, 1, 14},
                   {0x07, 1, 2},  {0x08, 1, 6}, {0x09, 1, 4},  {0x0a, 1, 6}, {0x0b, 1, 6}, {0x0c, 1, 6}, {0x0d, 1, 4},
                   {0x0e, 1, 6},  {0x0f, 1, 8}, {0x10, 1, 6},  {0x11, 1, 2}, {0x12, 1, 4}, {0x13, 1, 2}, {0x14, 1, 6},
                   {0x15, 1, 4},  {0x16, 1, 2}, {0x17, 1, 6},  {0x18, 1, 6}, {0x19, 1, 6}, {0x1a, 1, 2}, {0x1b, 1, 2},
                   {0x1c, 1, 8},  {0x1d, 1, 6}, {0x1e, 1, 8},  {0x1f, 1, 4}}}}),
    [](const auto& parameters) { return parameters.param.name; });

// The width of a row of each table while all its indexes are narrow.
constexpr std::uint32_t kNarrowRows[] = {10, 6, 14, 2, 6, 2, 14, 2, 6, 4, 6, 6, 6, 4, 6, 8,
                                         6,  2, 4,  2, 6, 4, 2,  6, 6, 6, 2, 2, 8, 6, 8, 4};

// A column that is as wide as the row counts of the tables that it refers to need.
struct IndexColumn {
  unsigned table;
  unsigned tag_bits;
  std::vector<unsigned> refers_to;

  std::uint32_t Limit() const { return 0x10000U >> tag_bits; }
};

const std::vector<IndexColumn>& Indexes() {
  static const std::vector<IndexColumn> all = {
      {0x01, 2, {0x00, 0x1a, 0x23, 0x01}},
      {0x02, 2, {0x02, 0x01, 0x1b}},
      {0x02, 0, {0x04}},
      {0x02, 0, {0x06}},
      {0x03, 0, {0x04}},
      {0x05, 0, {0x06}},
      {0x06, 0, {0x08}},
      {0x07, 0, {0x08}},
      {0x09, 0, {0x02}},
      {0x09, 2, {0x02, 0x01, 0x1b}},
      {0x0a, 3, {0x02, 0x01, 0x1a, 0x06, 0x1b}},
      {0x0b, 2, {0x04, 0x08, 0x17}},
      {0x0c, 5, {0x06, 0x04, 0x01, 0x02, 0x08, 0x09, 0x0a, 0x00, 0x0e, 0x17, 0x14,
                 0x11, 0x1a, 0x1b, 0x23, 0x26, 0x27, 0x28, 0x2a, 0x2c, 0x2b}},
      {0x0c, 3, {0x06, 0x0a}},
      {0x0d, 1, {0x04, 0x08}},
      {0x0e, 2, {0x02, 0x06}},
      {0x0f, 0, {0x02}},
      {0x10, 0, {0x04}},
      {0x12, 0, {0x02}},
      {0x12, 0, {0x14}},
      {0x13, 0, {0x14}},
      {0x14, 2, {0x02, 0x01, 0x1b}},
      {0x15, 0, {0x02}},
      {0x15, 0, {0x17}},
      {0x16, 0, {0x17}},
      {0x18, 0, {0x06}},
      {0x18, 1, {0x14, 0x17}},
      {0x19, 0, {0x02}},
      {0x19, 1, {0x06, 0x0a}},
      {0x19, 1, {0x06, 0x0a}},
      {0x1c, 1, {0x04, 0x06}},
      {0x1c, 0, {0x1a}},
      {0x1d, 0, {0x04}}};
  return all;
}

// With `rows` of the table `referred` and a few of `table`.
AssemblyShape ShapeWith(unsigned table, unsigned referred, std::uint32_t rows) {
  std::map<unsigned, std::uint32_t> counts = {{table, 3}};
  counts[referred] = rows;
  AssemblyShape shape{0, {}};
  for (const auto& [number, count] : counts) {
    std::uint32_t width = number < std::size(kNarrowRows) ? kNarrowRows[number] : 0;
    for (const IndexColumn& index : Indexes()) {
      const auto& others = index.refers_to;
      const bool refers = std::find(others.begin(), others.end(), referred) != others.end();
      if (index.table == number && refers && rows >= index.Limit()) width += 2;
    }
    shape.tables.push_back({number, count, width});
  }
  return shape;
}

TEST(AssemblyVersion, an_index_is_wide_where_one_of_its_tables_has_more_rows_than_fit) {
  for (const IndexColumn& index : Indexes()) {
    for (const unsigned referred : index.refers_to) {
      for (const std::uint32_t rows : {index.Limit() - 1, index.Limit()}) {
        EXPECT_EQ(VersionOf(ShapeWith(index.table, referred, rows)), "13.0.3.27908")
            << "table " << index.table << ", " << rows << " rows of table " << referred;
      }
    }
  }
}

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
