// Writes the records of a zip file; zlib compresses the contents.
#include "tests/support/zip.h"

#include <sys/stat.h>
#include <zlib.h>

#include <stdexcept>
#include <utility>

namespace support {
namespace {

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kMadeOnUnix = 0x031e;
constexpr std::uint16_t kVersionNeeded = 20;
constexpr std::uint32_t kIn64Bits = 0xffffffff;
constexpr std::uint32_t kDate = 0x21;  // the first valid date of the format

// One entry of the file.
struct Record {
  ZipEntry entry;
  std::uint16_t method = kStored;
  std::uint32_t crc = 0;
  std::uint32_t size = 0;  // unpacked
};

void Put(std::string& bytes, std::uint64_t value, int count) {
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

// The extra field with the 64-bit numbers.
std::string WideNumbers(const Record& record, const std::vector<std::uint64_t>& numbers) {
  std::string field;
  if (!record.entry.wide) return field;
  Put(field, 1, 2);
  Put(field, numbers.size() * 8, 2);
  for (const std::uint64_t number : numbers) Put(field, number, 8);
  return field;
}

// The fields that the local header and the directory have in common.
std::string CommonFields(const Record& record, const std::string& extra) {
  std::string fields;
  Put(fields, kVersionNeeded, 2);
  Put(fields, record.entry.flags, 2);
  Put(fields, record.method, 2);
  Put(fields, kDate << 16U, 4);
  Put(fields, record.crc, 4);
  Put(fields, record.entry.wide ? kIn64Bits : record.entry.content.size(), 4);
  Put(fields, record.entry.wide ? kIn64Bits : record.size, 4);
  Put(fields, record.entry.path.size(), 2);
  Put(fields, extra.size(), 2);
  return fields;
}

std::string DirectoryEntry(const Record& record, std::size_t offset) {
  const std::string extra = WideNumbers(record, {record.size, record.entry.content.size(), offset});
  std::string bytes = "PK\x01\x02";
  Put(bytes, kMadeOnUnix, 2);
  bytes += CommonFields(record, extra);
  Put(bytes, 0, 2);  // no comment
  Put(bytes, 0, 2);  // first disk
  Put(bytes, 0, 2);  // binary
  Put(bytes, static_cast<std::uint32_t>(ModeOf(record.entry)) << 16U, 4);
  Put(bytes, record.entry.wide ? kIn64Bits : offset, 4);
  return bytes + record.entry.path + extra;
}

// The 64-bit end record of the directory, and its locator.
std::string WideEnd(std::size_t count, std::size_t size, std::size_t offset) {
  std::string bytes = "PK\x06\x06";
  Put(bytes, 44, 8);  // size of the rest
  Put(bytes, kMadeOnUnix, 2);
  Put(bytes, kVersionNeeded, 2);
  Put(bytes, 0, 8);  // one disk
  for (const std::size_t number : {count, count, size, offset}) Put(bytes, number, 8);
  bytes += "PK\x06\x07";
  Put(bytes, 0, 4);  // first disk
  Put(bytes, offset + size, 8);
  Put(bytes, 1, 4);  // of one
  return bytes;
}

std::string FileOf(const std::vector<Record>& records) {
  std::string bytes;
  std::string directory;
  bool wide = false;
  for (const Record& record : records) {
    const std::string extra = WideNumbers(record, {record.size, record.entry.content.size()});
    directory += DirectoryEntry(record, bytes.size());
    bytes += "PK\x03\x04" + CommonFields(record, extra) + record.entry.path + extra + record.entry.content;
    wide = wide || record.entry.wide;
  }
  const std::size_t offset = bytes.size();
  bytes += directory;
  if (wide) bytes += WideEnd(records.size(), directory.size(), offset);
  bytes += "PK\x05\x06";
  Put(bytes, 0, 4);  // one disk
  Put(bytes, wide ? kIn64Bits : records.size(), 2);
  Put(bytes, wide ? kIn64Bits : records.size(), 2);
  Put(bytes, wide ? kIn64Bits : directory.size(), 4);
  Put(bytes, wide ? kIn64Bits : offset, 4);
  Put(bytes, 0, 2);  // no comment
  return bytes;
}

// Cuts off zlib's header of two bytes and trailer of four, which a zip file does not have.
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
    Record record{entry, entry.deflated ? kDeflated : kStored, ChecksumOf(entry.content) + entry.crc_fault, size};
    if (entry.deflated) record.entry.content = Deflated(entry.content);
    records.push_back(std::move(record));
  }
  return FileOf(records);
}

std::string ZipOfZeros(const std::string& path, std::size_t size) {
  ZipEntry entry;
  entry.path = path;
  entry.content.assign(size, '\0');
  entry.deflated = true;
  return ZipOf({entry});
}

}  // namespace support
