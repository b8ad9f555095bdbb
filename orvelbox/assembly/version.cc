// The way from a file's first bytes to the row of the Assembly table.
#include "orvelbox/assembly/version.h"

#include "orvelbox/assembly/metadata_tables.h"
#include "orvelbox/desk/bytes.h"

namespace orvelbox {
namespace {

// The PE file: a DOS header that says where the PE header stands, behind it the COFF and the optional header, then the
// section headers. All places are offsets from the beginning of the header in question.
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
// In a row of the Assembly table, behind the hash algorithm.
constexpr std::uint64_t kVersionNumbersAt = 4;

// What lies at the address `address` of the loaded image, up to the end of its section in the file.
ByteView AtAddress(const ByteView& file, const ByteView& pe, std::uint32_t address) {
  const std::uint64_t sections = kOptionalHeaderAt + pe.U16(kOptionalHeaderSizeAt);
  for (std::uint64_t i = 0; i < pe.U16(kSectionCountAt); ++i) {
    const ByteView section = pe.Part(sections + i * kSectionHeaderSize, kSectionHeaderSize);
    const std::uint32_t begin = section.U32(12);
    const std::uint32_t size = section.U32(16);
    if (address < begin || address - begin >= size) continue;
    return file.Part(section.U32(20), size).From(address - begin);
  }
  throw BeyondBytes();
}

// The metadata root; nothing for a file that is no managed PE file.
std::optional<ByteView> FindMetadata(const ByteView& file) {
  if (!file.BeginsWith("MZ")) return std::nullopt;
  const ByteView pe = file.From(file.U32(kPeHeaderPlaceAt));
  if (!pe.BeginsWith(std::string_view("PE\0\0", 4))) return std::nullopt;
  const ByteView optional = pe.From(kOptionalHeaderAt);
  const std::uint16_t magic = optional.U16(0);
  if (magic != kPe32 && magic != kPe32Plus) return std::nullopt;
  const std::uint64_t directories = magic == kPe32 ? kDirectoriesAt : kDirectoriesOfPe32PlusAt;
  if (optional.U32(directories - 4) <= kCliDirectory) return std::nullopt;
  const std::uint32_t cli = optional.U32(directories + kCliDirectory * 8);
  if (cli == 0) return std::nullopt;
  const ByteView header = AtAddress(file, pe, cli);
  return AtAddress(file, pe, header.U32(kMetadataPlaceAt)).Part(0, header.U32(kMetadataSizeAt));
}

constexpr std::uint64_t RoundedUp(std::uint64_t length) { return (length + 3) / 4 * 4; }

// The stream of tables, compressed or not; nothing when there is none.
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

std::optional<AssemblyVersion> FindVersion(const ByteView& file) {
  const std::optional<ByteView> metadata = FindMetadata(file);
  if (!metadata) return std::nullopt;
  const std::optional<ByteView> stream = FindTableStream(*metadata);
  if (!stream) return std::nullopt;
  const MetadataTables tables(*stream);
  if (tables.Rows(kAssemblyTable) == 0) return std::nullopt;  // a module of an assembly
  const ByteView row = tables.AssemblyRows();
  AssemblyVersion version{};
  for (std::size_t i = 0; i < version.size(); ++i) version[i] = row.U16(kVersionNumbersAt + 2 * i);
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
