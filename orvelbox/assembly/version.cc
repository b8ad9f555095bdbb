// Parses an assembly from the file's first bytes to the row of the Assembly table.
#include "orvelbox/assembly/version.h"

#include <algorithm>

#include "orvelbox/desk/bytes.h"

using namespace std::string_view_literals;  // texts with zero bytes

namespace orvelbox {
namespace {

// The PE file: a DOS header with the offset of the PE header, the COFF header, the optional header, the section
// headers. All offsets are relative to the start of their header.
constexpr std::uint64_t kPeHeaderPlaceAt = 0x3c;
constexpr std::uint64_t kCoffHeaderAt = 4;
constexpr std::uint64_t kSectionCountAt = kCoffHeaderAt + 2;
constexpr std::uint64_t kOptionalHeaderSizeAt = kCoffHeaderAt + 16;
constexpr std::uint64_t kOptionalHeaderAt = kCoffHeaderAt + 20;
constexpr std::uint16_t kPe32 = 0x10b;
constexpr std::uint16_t kPe32Plus = 0x20b;
constexpr std::uint64_t kDirectoriesAt = 96;
constexpr std::uint64_t kDirectoriesOfPe32PlusAt = 112;
constexpr std::uint64_t kCliDirectory = 14;
constexpr std::uint64_t kSectionHeaderSize = 40;
// In the CLI header.
constexpr std::uint64_t kMetadataPlaceAt = 8;
constexpr std::uint64_t kMetadataSizeAt = 12;
// In the metadata root.
constexpr std::string_view kMetadataSignature = "BSJB";
constexpr std::uint64_t kVersionLengthAt = 12;
constexpr std::uint64_t kVersionAt = 16;
constexpr std::uint64_t kLongestStreamName = 32;
// In a row of the Assembly table, after the hash algorithm.
constexpr std::uint64_t kVersionNumbersAt = 4;

// The bytes at the address `address` of the loaded image, to the end of its section in the file.
ByteView AtAddress(const ByteView& file, const ByteView& pe, std::uint32_t address) {
  const std::uint64_t sections = kOptionalHeaderAt + pe.U16(kOptionalHeaderSizeAt);
  const std::uint16_t count = pe.U16(kSectionCountAt);
  for (std::uint64_t i = 0; i < count; ++i) {
    const ByteView section = pe.Part(sections + i * kSectionHeaderSize, kSectionHeaderSize);
    const std::uint32_t begin = section.U32(12);
    const std::uint32_t size = section.U32(16);
    if (address < begin || address - begin >= size) continue;
    return file.Part(section.U32(20), size).From(address - begin);
  }
  throw BeyondBytes();
}

// The metadata root; nothing when the file is no managed PE file.
std::optional<ByteView> FindMetadata(const ByteView& file) {
  if (!file.BeginsWith("MZ")) return std::nullopt;
  const ByteView pe = file.From(file.U32(kPeHeaderPlaceAt));
  if (!pe.BeginsWith("PE\0\0"sv)) return std::nullopt;
  const ByteView optional = pe.From(kOptionalHeaderAt);
  const std::uint16_t magic = optional.U16(0);
  if (magic != kPe32 && magic != kPe32Plus) return std::nullopt;
  const std::uint64_t directories = magic == kPe32 ? kDirectoriesAt : kDirectoriesOfPe32PlusAt;
  if (optional.U32(directories - 4) <= kCliDirectory) return std::nullopt;
  // Of a native file it is zero, an address that no section has.
  const ByteView header = AtAddress(file, pe, optional.U32(directories + kCliDirectory * 8));
  return AtAddress(file, pe, header.U32(kMetadataPlaceAt)).Part(0, header.U32(kMetadataSizeAt));
}

constexpr std::uint64_t RoundedUp(std::uint64_t length) { return (length + 3) / 4 * 4; }

// The stream of tables, compressed or uncompressed; nothing when there is none.
std::optional<ByteView> FindTableStream(const ByteView& metadata) {
  if (!metadata.BeginsWith(kMetadataSignature)) return std::nullopt;
  const std::uint64_t flags = kVersionAt + RoundedUp(metadata.U32(kVersionLengthAt));
  std::uint64_t header = flags + 4;
  for (unsigned left = metadata.U16(flags + 2); left > 0; --left) {
    const std::string name = metadata.From(header + 8).Text(kLongestStreamName);
    if (name == "#~" || name == "#-") return metadata.Part(metadata.U32(header), metadata.U32(header + 4));
    header += 8 + RoundedUp(name.size() + 1);
  }
  return std::nullopt;
}

// The stream of tables ("#~"). Its header has the widths of the heap indexes, which tables exist, and how many rows
// each has.
constexpr std::uint64_t kHeapSizesAt = 6;
constexpr std::uint64_t kPresentAt = 8;
constexpr std::uint64_t kRowCountsAt = 24;
constexpr std::uint8_t kExtraData = 0x40;
constexpr unsigned kAssemblyTable = 0x20;

using RowCounts = std::array<std::uint32_t, 64>;  // by table number

// A column of a table: a number, an index into a heap, or an index into one of several tables, selected by its lowest
// bits.
struct Column {
  std::uint64_t bytes = 0;       // size of a number
  std::uint8_t wide_heap = 0;    // for an index into a heap: the flag that says that it is wide
  std::string_view tables = {};  // the numbers of the tables that an index refers to
  unsigned tag_bits = 0;
};
constexpr Column kTwo{2};
constexpr Column kFour{4};
constexpr Column kString{0, 0x01};
constexpr Column kGuid{0, 0x02};
constexpr Column kBlob{0, 0x04};
constexpr Column Index(std::string_view tables, unsigned tag_bits = 0) { return {0, 0, tables, tag_bits}; }
constexpr Column kTypeDefOrRef = Index("\x02\x01\x1b", 2);
constexpr Column kHasConstant = Index("\x04\x08\x17", 2);
constexpr Column kHasCustomAttribute =
    Index("\x06\x04\x01\x02\x08\x09\x0a\x00\x0e\x17\x14\x11\x1a\x1b\x20\x23\x26\x27\x28\x2a\x2c\x2b"sv, 5);
constexpr Column kHasFieldMarshal = Index("\x04\x08", 1);
constexpr Column kHasDeclSecurity = Index("\x02\x06\x20", 2);
constexpr Column kMemberRefParent = Index("\x02\x01\x1a\x06\x1b", 3);
constexpr Column kHasSemantics = Index("\x14\x17", 1);
constexpr Column kMethodDefOrRef = Index("\x06\x0a", 1);
constexpr Column kMemberForwarded = Index("\x04\x06", 1);
constexpr Column kCustomAttributeType = Index("\x06\x0a", 3);
constexpr Column kResolutionScope = Index("\x00\x1a\x23\x01"sv, 2);

// The columns of the tables before the Assembly table, by table number.
constexpr Column kTables[kAssemblyTable][6] = {
    {kTwo, kString, kGuid, kGuid, kGuid},                                    // 00 Module
    {kResolutionScope, kString, kString},                                    // 01 TypeRef
    {kFour, kString, kString, kTypeDefOrRef, Index("\x04"), Index("\x06")},  // 02 TypeDef
    {Index("\x04")},                                                         // 03 FieldPtr
    {kTwo, kString, kBlob},                                                  // 04 Field
    {Index("\x06")},                                                         // 05 MethodPtr
    {kFour, kTwo, kTwo, kString, kBlob, Index("\x08")},                      // 06 MethodDef
    {Index("\x08")},                                                         // 07 ParamPtr
    {kTwo, kTwo, kString},                                                   // 08 Param
    {Index("\x02"), kTypeDefOrRef},                                          // 09 InterfaceImpl
    {kMemberRefParent, kString, kBlob},                                      // 0a MemberRef
    {kTwo, kHasConstant, kBlob},                                             // 0b Constant
    {kHasCustomAttribute, kCustomAttributeType, kBlob},                      // 0c CustomAttribute
    {kHasFieldMarshal, kBlob},                                               // 0d FieldMarshal
    {kTwo, kHasDeclSecurity, kBlob},                                         // 0e DeclSecurity
    {kTwo, kFour, Index("\x02")},                                            // 0f ClassLayout
    {kFour, Index("\x04")},                                                  // 10 FieldLayout
    {kBlob},                                                                 // 11 StandAloneSig
    {Index("\x02"), Index("\x14")},                                          // 12 EventMap
    {Index("\x14")},                                                         // 13 EventPtr
    {kTwo, kString, kTypeDefOrRef},                                          // 14 Event
    {Index("\x02"), Index("\x17")},                                          // 15 PropertyMap
    {Index("\x17")},                                                         // 16 PropertyPtr
    {kTwo, kString, kBlob},                                                  // 17 Property
    {kTwo, Index("\x06"), kHasSemantics},                                    // 18 MethodSemantics
    {Index("\x02"), kMethodDefOrRef, kMethodDefOrRef},                       // 19 MethodImpl
    {kString},                                                               // 1a ModuleRef
    {kBlob},                                                                 // 1b TypeSpec
    {kTwo, kMemberForwarded, kString, Index("\x1a")},                        // 1c ImplMap
    {kFour, Index("\x04")},                                                  // 1d FieldRVA
    {kFour, kFour},                                                          // 1e EncLog
    {kFour},                                                                 // 1f EncMap
};

std::uint64_t WidthOf(const Column& column, std::uint8_t heap_sizes, const RowCounts& rows) {
  if (column.wide_heap != 0) return (heap_sizes & column.wide_heap) != 0 ? 4 : 2;
  if (column.tables.empty()) return column.bytes;
  const bool narrow = std::all_of(column.tables.begin(), column.tables.end(), [&](char table) {
    return rows.at(static_cast<unsigned char>(table)) < 0x10000U >> column.tag_bits;
  });
  return narrow ? 2 : 4;
}

// The first row of the Assembly table and everything after it; nothing for a module, which has no such row.
std::optional<ByteView> FindAssemblyRow(const ByteView& stream) {
  const std::uint8_t heap_sizes = stream.U8(kHeapSizesAt);
  const std::uint64_t present = stream.U64(kPresentAt);
  RowCounts rows{};
  std::uint64_t at = kRowCountsAt;
  for (unsigned table = 0; table < rows.size(); ++table) {
    if ((present >> table & 1U) == 0) continue;
    rows[table] = stream.U32(at);
    at += 4;
  }
  if (rows[kAssemblyTable] == 0) return std::nullopt;
  if ((heap_sizes & kExtraData) != 0) at += 4;
  for (unsigned table = 0; table < kAssemblyTable; ++table) {
    for (const Column& column : kTables[table]) at += rows[table] * WidthOf(column, heap_sizes, rows);
  }
  return stream.From(at);
}

std::optional<AssemblyVersion> FindVersion(const ByteView& file) {
  const std::optional<ByteView> metadata = FindMetadata(file);
  if (!metadata) return std::nullopt;
  const std::optional<ByteView> stream = FindTableStream(*metadata);
  if (!stream) return std::nullopt;
  const std::optional<ByteView> row = FindAssemblyRow(*stream);
  if (!row) return std::nullopt;
  AssemblyVersion version{};
  for (std::size_t i = 0; i < version.size(); ++i) version[i] = row->U16(kVersionNumbersAt + 2 * i);
  return version;
}

}  // namespace

std::optional<AssemblyVersion> ReadAssemblyVersion(ByteSource& file, std::uint64_t size) {
  try {
    return FindVersion(ByteView(file, size));
  } catch (const BeyondBytes&) {
    return std::nullopt;
  }
}

std::string ToString(const AssemblyVersion& version) {
  std::string text;
  for (const std::uint16_t number : version) text += (text.empty() ? "" : ".") + std::to_string(number);
  return text;
}

}  // namespace orvelbox
