// The records of a zip file, written by hand; the compressing is zlib's.
#include "tests/support/zip.h"

#include <sys/stat.h>
#include <zlib.h>

#include <stdexcept>

namespace support {
namespace {

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kMadeOnUnix = 0x031e;
constexpr std::uint16_t kVersionNeeded = 20;
constexpr std::uint16_t kDate = 0x21;  // the first day that zip knows

// One entry as it stands in the file.
struct Record {
  ZipEntry entry;
  std::uint16_t method = kStored;
  std::uint32_t crc = 0;
  std::uint32_t size = 0;  // unpacked
};

void Put(std::string& bytes, std::uint32_t value, int count) {
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xffU);
}

std::uint16_t ModeOf(const ZipEntry& entry) {
  if (entry.mode != 0) return entry.mode;
  return entry.path.empty() || entry.path.back() != '/' ? S_IFREG | 0644 : S_IFDIR | 0755;
}

std::uint32_t ChecksumOf(const std::string& text) {
  return static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())));
}

// What the local header and the directory say alike.
std::string CommonFields(const Record& record) {
  std::string fields;
  Put(fields, kVersionNeeded, 2);
  Put(fields, record.entry.flags, 2);
  Put(fields, record.method, 2);
  Put(fields, kDate << 16U, 4);
  Put(fields, record.crc, 4);
  Put(fields, static_cast<std::uint32_t>(record.entry.content.size()), 4);
  Put(fields, record.size, 4);
  Put(fields, static_cast<std::uint32_t>(record.entry.path.size()), 2);
  Put(fields, 0, 2);  // no extra fields
  return fields;
}

std::string DirectoryEntry(const Record& record, std::size_t offset) {
  std::string bytes = "PK\x01\x02";
  Put(bytes, kMadeOnUnix, 2);
  bytes += CommonFields(record);
  Put(bytes, 0, 2);  // no comment
  Put(bytes, 0, 2);  // first disk
  Put(bytes, 0, 2);  // binary
  Put(bytes, static_cast<std::uint32_t>(ModeOf(record.entry)) << 16U, 4);
  Put(bytes, static_cast<std::uint32_t>(offset), 4);
  return bytes + record.entry.path;
}

std::string FileOf(const std::vector<Record>& records) {
  std::string bytes;
  std::string directory;
  for (const Record& record : records) {
    directory += DirectoryEntry(record, bytes.size());
    bytes += "PK\x03\x04" + CommonFields(record) + record.entry.path + record.entry.content;
  }
  const auto offset = static_cast<std::uint32_t>(bytes.size());
  const auto count = static_cast<std::uint32_t>(records.size());
  bytes += directory + "PK\x05\x06";
  Put(bytes, 0, 4);  // one disk
  Put(bytes, count, 2);
  Put(bytes, count, 2);
  Put(bytes, static_cast<std::uint32_t>(directory.size()), 4);
  Put(bytes, offset, 4);
  Put(bytes, 0, 2);  // no comment
  return bytes;
}

// zlib's own head has two bytes and its tail four; what lies between them is what a zip file holds.
std::string Deflated(const std::string& text) {
  uLongf size = compressBound(static_cast<uLong>(text.size()));
  std::string packed(size, '\0');
  const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
  if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, bytes, static_cast<uLong>(text.size()), 9) != Z_OK) {
    throw std::runtime_error("cannot compress");
  }
  return packed.substr(2, size - 6);
}

}  // namespace

std::string ZipOf(const std::vector<ZipEntry>& entries) {
  std::vector<Record> records;
  for (const ZipEntry& entry : entries) {
    const auto size = static_cast<std::uint32_t>(entry.content.size());
    records.push_back({entry, kStored, ChecksumOf(entry.content) + entry.crc_fault, size});
  }
  return FileOf(records);
}

std::string ZipOfZeros(const std::string& path, std::size_t size) {
  const std::string zeros(size, '\0');
  ZipEntry entry;
  entry.path = path;
  entry.content = Deflated(zeros);
  return FileOf({{entry, kDeflated, ChecksumOf(zeros), static_cast<std::uint32_t>(size)}});
}

}  // namespace support
