// Zip files as APPNOTE 6.3 describes them, with the 64-bit records and without several disks.
#include "orvelbox/package/zip_directory.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "base/affix.h"

namespace orvelbox {
namespace {

constexpr std::string_view kEndBegins = "PK\5\6";
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kLongestComment = 0xffff;
constexpr std::size_t kEnd64Size = 56;
constexpr std::size_t kLocatorSize = 20;
constexpr std::size_t kEntrySize = 46;
constexpr std::size_t kHeaderSize = 30;
constexpr std::uint32_t kIn64Bits = 0xffffffff;
constexpr std::uint16_t k64BitField = 1;
constexpr std::uint16_t kSizesFollow = 8;  // flag: sizes and checksum stand behind the content
constexpr unsigned kMadeOnUnix = 3;

std::uint16_t U16(std::string_view bytes, std::size_t at) { return static_cast<std::uint16_t>(Number(bytes, at, 2)); }
std::uint32_t U32(std::string_view bytes, std::size_t at) { return static_cast<std::uint32_t>(Number(bytes, at, 4)); }

struct Directory {
  std::uint64_t begin;
  std::uint64_t size;
  std::uint64_t entries;
};

// Where the record at the file's end stands; a comment may follow it.
std::uint64_t FindEnd(ByteSource& file, std::uint64_t size) {
  const std::uint64_t length = std::min<std::uint64_t>(size, kEndSize + kLongestComment);
  const std::string_view tail = file.Read(size - length, static_cast<std::size_t>(length));
  for (std::size_t at = tail.rfind(kEndBegins); at != std::string_view::npos;
       at = at == 0 ? std::string_view::npos : tail.rfind(kEndBegins, at - 1)) {
    const std::size_t left = tail.size() - at;
    if (left >= kEndSize && U16(tail, at + 20) == left - kEndSize) return size - length + at;
  }
  throw ZipProblem("its end has no directory of entries");
}

Directory ReadEnd(ByteSource& file, std::uint64_t end) {
  const std::string_view record = file.Read(end, kEndSize);
  if (U16(record, 4) != 0 || U16(record, 6) != 0 || U16(record, 8) != U16(record, 10)) {
    throw ZipProblem("it is one of several parts");
  }
  return {U32(record, 16), U32(record, 12), U16(record, 10)};
}

// The 64-bit record, where one stands before the other.
std::optional<Directory> ReadEnd64(ByteSource& file, std::uint64_t end) {
  if (end < kLocatorSize) return std::nullopt;
  const std::string_view locator = file.Read(end - kLocatorSize, kLocatorSize);
  if (!HasPrefix(locator, "PK\6\7")) return std::nullopt;
  const std::string_view record = file.Read(Number(locator, 8, 8), kEnd64Size);
  if (!HasPrefix(record, "PK\6\6")) throw ZipProblem("its 64-bit end record is not where it should be");
  return Directory{Number(record, 48, 8), Number(record, 40, 8), Number(record, 32, 8)};
}

Directory FindDirectory(ByteSource& file, std::uint64_t size) {
  const std::uint64_t end = FindEnd(file, size);
  const std::optional<Directory> wide = ReadEnd64(file, end);
  const Directory directory = wide ? *wide : ReadEnd(file, end);
  if (directory.begin > end || directory.size > end - directory.begin) {
    throw ZipProblem("its directory of entries does not fit in");
  }
  return directory;
}

// Takes the numbers that did not fit from the extra field for them, in their order.
void Take64Bits(std::string_view extra, std::initializer_list<std::uint64_t*> numbers) {
  while (extra.size() >= 4) {
    const std::uint16_t id = U16(extra, 0);
    std::string_view field = extra.substr(4, U16(extra, 2));
    extra.remove_prefix(4 + field.size());
    if (id != k64BitField) continue;
    for (std::uint64_t* number : numbers) {
      if (*number != kIn64Bits) continue;
      if (field.size() < 8) throw ZipProblem("a 64-bit number is missing");
      *number = Number(field, 0, 8);
      field.remove_prefix(8);
    }
    return;
  }
}

// What stands in the 46 bytes `record` of an entry in the directory.
ZipEntry DescribeEntry(std::string_view record) {
  ZipEntry entry;
  entry.flags = U16(record, 8);
  entry.method = U16(record, 10);
  entry.checksum = U32(record, 16);
  entry.packed_size = U32(record, 20);
  entry.size = U32(record, 24);
  if (static_cast<unsigned char>(record[5]) == kMadeOnUnix) entry.mode = U16(record, 40);
  entry.header = U32(record, 42);
  return entry;
}

}  // namespace

void ReadZipDirectory(ByteSource& file, std::uint64_t size, const std::function<void(ZipEntry)>& take) {
  const Directory directory = FindDirectory(file, size);
  std::uint64_t at = directory.begin;
  const std::uint64_t end = directory.begin + directory.size;
  for (std::uint64_t i = 0; i < directory.entries; ++i) {
    if (end - at < kEntrySize) throw ZipProblem("its directory ends too early");
    const std::string_view record = file.Read(at, kEntrySize);
    if (!HasPrefix(record, "PK\1\2")) throw ZipProblem("its directory is damaged");
    ZipEntry entry = DescribeEntry(record);
    const std::size_t name = U16(record, 28);
    const std::size_t extra = U16(record, 30);
    const std::size_t whole = name + extra + U16(record, 32);
    at += kEntrySize;
    if (end - at < whole) throw ZipProblem("its directory ends too early");
    const std::string_view rest = file.Read(at, whole);
    entry.name = rest.substr(0, name);
    Take64Bits(rest.substr(name, extra), {&entry.size, &entry.packed_size, &entry.header});
    at += whole;
    take(std::move(entry));
  }
  if (at != end) throw ZipProblem("its directory holds more than its entries");
}

void FindContent(ByteSource& file, ZipEntry& entry) try {
  const std::string_view header = file.Read(entry.header, kHeaderSize);
  if (!HasPrefix(header, "PK\3\4")) throw ZipProblem("its header is not where it should be", entry.name);
  const auto contradict = [&](const char* what) {
    throw ZipProblem(std::string("its own header and the directory tell different ") + what, entry.name);
  };
  const std::uint16_t flags = U16(header, 6);
  if (((flags ^ entry.flags) & 0x2041U) != 0 || U16(header, 8) != entry.method) contradict("kinds of content");
  const std::uint32_t checksum = U32(header, 14);
  std::uint64_t packed_size = U32(header, 18);
  std::uint64_t size = U32(header, 22);
  const std::size_t name = U16(header, 26);
  const std::size_t extra = U16(header, 28);
  const std::string_view rest = file.Read(entry.header + kHeaderSize, name + extra);
  if (rest.substr(0, name) != entry.name) contradict("names");
  Take64Bits(rest.substr(name), {&size, &packed_size});
  // What is told behind the content may be missing here.
  const bool later = (flags & kSizesFollow) != 0;
  const auto agree = [&](std::uint64_t here, std::uint64_t there) { return here == there || (later && here == 0); };
  if (!agree(packed_size, entry.packed_size) || !agree(size, entry.size)) contradict("sizes");
  if (!agree(checksum, entry.checksum)) contradict("checksums");
  entry.content = entry.header + kHeaderSize + name + extra;
} catch (const BeyondBytes&) {
  throw ZipProblem("its own header is cut off", entry.name);
}

}  // namespace orvelbox
