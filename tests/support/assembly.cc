// Writes the headers and tables of an assembly.
#include "tests/support/assembly.h"

#include <algorithm>

namespace support {
namespace {

constexpr std::uint32_t kSectionAddress = 0x2000;
constexpr std::uint32_t kSectionPlace = 0x200;
constexpr std::uint32_t kCliHeaderSize = 72;
constexpr unsigned kAssemblyTable = 0x20;
constexpr unsigned kExtraData = 0x40;

void Put(std::string& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xffU);
}

std::string TableStream(const std::array<std::uint16_t, 4>& version, const AssemblyShape& shape) {
  std::uint64_t valid = std::uint64_t{1} << kAssemblyTable;
  for (const MetadataTable& table : shape.tables) valid |= std::uint64_t{1} << table.number;
  std::string stream(4, '\0');
  Put(stream, 2, 2);
  Put(stream, shape.heap_sizes, 1);
  Put(stream, 1, 1);
  Put(stream, valid, 8);
  Put(stream, 0, 8);
  const auto behind = std::find_if(shape.tables.begin(), shape.tables.end(),
                                   [](const MetadataTable& table) { return table.number > kAssemblyTable; });
  const auto put_counts = [&stream](auto begin, auto end) {
    for (; begin != end; ++begin) Put(stream, begin->rows, 4);
  };
  put_counts(shape.tables.begin(), behind);
  Put(stream, 1, 4);
  put_counts(behind, shape.tables.end());
  if ((shape.heap_sizes & kExtraData) != 0) Put(stream, 0, 4);
  for (auto table = shape.tables.begin(); table != behind; ++table) {
    stream.append(std::size_t{table->rows} * table->row_width, '\0');
  }
  Put(stream, 0x8004, 4);  // the hash algorithm
  for (const std::uint16_t number : version) Put(stream, number, 2);
  return stream.append(16, '\0');
}

void PutSection(std::string& file, std::uint64_t address, std::uint64_t size) {
  file.append(".text\0\0\0", 8);
  Put(file, size, 4);
  Put(file, address, 4);
  Put(file, size, 4);
  Put(file, kSectionPlace, 4);
  file.append(16, '\0');
}

// With zeros at its end, up to a multiple of four.
std::string StreamName(std::string name) {
  name.resize((name.size() + 4) / 4 * 4, '\0');
  return name;
}

std::string Metadata(const std::string& table_stream, const std::string& other_stream) {
  std::string metadata = "BSJB";
  Put(metadata, 0x10001, 4);
  Put(metadata, 0, 4);
  Put(metadata, 12, 4);
  metadata.append("v4.0.30319\0\0", 12);
  Put(metadata, 0, 2);
  Put(metadata, 2, 2);  // streams
  Put(metadata, 0, 4);
  Put(metadata, 0, 4);
  metadata += StreamName(other_stream);
  Put(metadata, metadata.size() + 12, 4);
  Put(metadata, table_stream.size(), 4);
  metadata += StreamName("#~");
  return metadata + table_stream;
}

std::string OptionalHeader(bool pe32_plus) {
  std::string header;
  Put(header, pe32_plus ? 0x20b : 0x10b, 2);
  header.resize(pe32_plus ? 108 : 92, '\0');
  Put(header, 16, 4);
  for (int directory = 0; directory < 16; ++directory) {
    Put(header, directory == 14 ? kSectionAddress : 0, 4);
    Put(header, directory == 14 ? kCliHeaderSize : 0, 4);
  }
  return header;
}

}  // namespace

std::string AssemblyOf(const std::array<std::uint16_t, 4>& version, const AssemblyShape& shape) {
  const std::string metadata = Metadata(TableStream(version, shape), shape.other_stream);
  std::string section;
  Put(section, kCliHeaderSize, 4);
  Put(section, 0x50002, 4);
  Put(section, kSectionAddress + kCliHeaderSize, 4);
  Put(section, metadata.size(), 4);
  section.resize(kCliHeaderSize, '\0');
  section += metadata;

  std::string file = "MZ";
  file.resize(0x3c, '\0');
  Put(file, 0x40, 4);
  file.append("PE\0\0", 4);
  Put(file, 0x14c, 2);
  Put(file, shape.sections_around ? 3 : 1, 2);
  file.append(12, '\0');
  const std::string optional = OptionalHeader(shape.pe32_plus);
  Put(file, optional.size(), 2);
  Put(file, 0x2102, 2);
  file += optional;
  if (shape.sections_around) {
    PutSection(file, kSectionAddress - 16, 16);
    PutSection(file, kSectionAddress * 1000, 16);
  }
  PutSection(file, kSectionAddress, section.size());
  file.resize(kSectionPlace, '\0');
  return file + section;
}

}  // namespace support
