// The widths of the metadata tables' rows, which depend on how many rows the tables have.
#include "orvelbox/assembly/metadata_tables.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace orvelbox {
namespace {

// The stream's head: two reserved or version fields, the heaps' sizes, which tables there are, which are sorted.
constexpr std::uint64_t kHeapSizesAt = 6;
constexpr std::uint64_t kValidAt = 8;
constexpr std::uint64_t kRowCountsAt = 24;
constexpr std::uint8_t kWideStrings = 0x01;
constexpr std::uint8_t kWideGuids = 0x02;
constexpr std::uint8_t kWideBlobs = 0x04;
constexpr std::uint8_t kExtraData = 0x40;

// Indexes into one of several tables, the lowest bits saying which.
enum Coded : unsigned {
  kTypeDefOrRef,
  kHasConstant,
  kHasCustomAttribute,
  kHasFieldMarshal,
  kHasDeclSecurity,
  kMemberRefParent,
  kHasSemantics,
  kMethodDefOrRef,
  kMemberForwarded,
  kCustomAttributeType,
  kResolutionScope
};

struct CodedIndex {
  unsigned tag_bits;
  std::vector<unsigned> tables;
};

const CodedIndex& CodedIndexOf(unsigned coded) {
  static const std::vector<CodedIndex> all = {
      {2, {0x02, 0x01, 0x1b}},
      {2, {0x04, 0x08, 0x17}},
      {5, {0x06, 0x04, 0x01, 0x02, 0x08, 0x09, 0x0a, 0x00, 0x0e, 0x17, 0x14,
           0x11, 0x1a, 0x1b, 0x20, 0x23, 0x26, 0x27, 0x28, 0x2a, 0x2c, 0x2b}},
      {1, {0x04, 0x08}},
      {2, {0x02, 0x06, 0x20}},
      {3, {0x02, 0x01, 0x1a, 0x06, 0x1b}},
      {1, {0x14, 0x17}},
      {1, {0x06, 0x0a}},
      {1, {0x04, 0x06}},
      {3, {0x06, 0x0a}},
      {2, {0x00, 0x1a, 0x23, 0x01}},
  };
  return all[coded];
}

// A column: '2' and '4' are numbers of as many bytes, 'S', 'G' and 'B' indexes into the heaps of strings, GUIDs and
// blobs, 'T' an index into table `which`, 'C' the coded index `which`.
struct Column {
  char kind;
  unsigned which = 0;
};

// The columns of the tables that stand before the Assembly table, by number.
const std::vector<Column>& ColumnsOf(unsigned table) {
  static const std::vector<std::vector<Column>> all = {
      {{'2'}, {'S'}, {'G'}, {'G'}, {'G'}},                                    // 00 Module
      {{'C', kResolutionScope}, {'S'}, {'S'}},                                // 01 TypeRef
      {{'4'}, {'S'}, {'S'}, {'C', kTypeDefOrRef}, {'T', 0x04}, {'T', 0x06}},  // 02 TypeDef
      {{'T', 0x04}},                                                          // 03 FieldPtr
      {{'2'}, {'S'}, {'B'}},                                                  // 04 Field
      {{'T', 0x06}},                                                          // 05 MethodPtr
      {{'4'}, {'2'}, {'2'}, {'S'}, {'B'}, {'T', 0x08}},                       // 06 MethodDef
      {{'T', 0x08}},                                                          // 07 ParamPtr
      {{'2'}, {'2'}, {'S'}},                                                  // 08 Param
      {{'T', 0x02}, {'C', kTypeDefOrRef}},                                    // 09 InterfaceImpl
      {{'C', kMemberRefParent}, {'S'}, {'B'}},                                // 0a MemberRef
      {{'2'}, {'C', kHasConstant}, {'B'}},                                    // 0b Constant
      {{'C', kHasCustomAttribute}, {'C', kCustomAttributeType}, {'B'}},       // 0c CustomAttribute
      {{'C', kHasFieldMarshal}, {'B'}},                                       // 0d FieldMarshal
      {{'2'}, {'C', kHasDeclSecurity}, {'B'}},                                // 0e DeclSecurity
      {{'2'}, {'4'}, {'T', 0x02}},                                            // 0f ClassLayout
      {{'4'}, {'T', 0x04}},                                                   // 10 FieldLayout
      {{'B'}},                                                                // 11 StandAloneSig
      {{'T', 0x02}, {'T', 0x14}},                                             // 12 EventMap
      {{'T', 0x14}},                                                          // 13 EventPtr
      {{'2'}, {'S'}, {'C', kTypeDefOrRef}},                                   // 14 Event
      {{'T', 0x02}, {'T', 0x17}},                                             // 15 PropertyMap
      {{'T', 0x17}},                                                          // 16 PropertyPtr
      {{'2'}, {'S'}, {'B'}},                                                  // 17 Property
      {{'2'}, {'T', 0x06}, {'C', kHasSemantics}},                             // 18 MethodSemantics
      {{'T', 0x02}, {'C', kMethodDefOrRef}, {'C', kMethodDefOrRef}},          // 19 MethodImpl
      {{'S'}},                                                                // 1a ModuleRef
      {{'B'}},                                                                // 1b TypeSpec
      {{'2'}, {'C', kMemberForwarded}, {'S'}, {'T', 0x1a}},                   // 1c ImplMap
      {{'4'}, {'T', 0x04}},                                                   // 1d FieldRVA
      {{'4'}, {'4'}},                                                         // 1e EncLog
      {{'4'}},                                                                // 1f EncMap
  };
  return all[table];
}

}  // namespace

MetadataTables::MetadataTables(ByteView stream) : stream_(stream), heap_sizes_(stream.U8(kHeapSizesAt)) {
  const std::uint64_t valid = stream.U64(kValidAt);
  tables_begin_ = kRowCountsAt;
  for (unsigned table = 0; table < rows_.size(); ++table) {
    if ((valid >> table & 1U) == 0) continue;
    rows_[table] = stream.U32(tables_begin_);
    tables_begin_ += 4;
  }
  if ((heap_sizes_ & kExtraData) != 0) tables_begin_ += 4;
}

std::uint64_t MetadataTables::ColumnWidth(char kind, unsigned which) const {
  switch (kind) {
    case 'S':
      return (heap_sizes_ & kWideStrings) != 0 ? 4 : 2;
    case 'G':
      return (heap_sizes_ & kWideGuids) != 0 ? 4 : 2;
    case 'B':
      return (heap_sizes_ & kWideBlobs) != 0 ? 4 : 2;
    case 'T':
      return rows_[which] < 0x10000 ? 2 : 4;
    case 'C': {
      const CodedIndex& index = CodedIndexOf(which);
      const std::uint32_t limit = 0x10000U >> index.tag_bits;
      const bool narrow =
          std::all_of(index.tables.begin(), index.tables.end(), [&](unsigned table) { return rows_[table] < limit; });
      return narrow ? 2 : 4;
    }
    default:
      return static_cast<std::uint64_t>(kind - '0');
  }
}

std::uint64_t MetadataTables::RowWidth(unsigned table) const {
  std::uint64_t width = 0;
  for (const Column& column : ColumnsOf(table)) width += ColumnWidth(column.kind, column.which);
  return width;
}

ByteView MetadataTables::AssemblyRows() const {
  std::uint64_t at = tables_begin_;
  for (unsigned table = 0; table < kAssemblyTable; ++table) at += rows_[table] * RowWidth(table);
  return stream_.From(at);
}

}  // namespace orvelbox
