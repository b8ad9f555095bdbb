// Changes archives as lists of entries, written as a consistent zip file; half of them are then damaged in one place.
// Every fourth time, and where the bytes are no archive, libFuzzer changes the bytes instead.
#include <sys/stat.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/mutation.h"
#include "tests/support/zip.h"

namespace {

using fuzz::Chance;
using support::ZipEntry;

constexpr std::size_t kMostEntries = 12;
constexpr std::size_t kLongestContent = 8192;

const std::string kNames[] = {"a", "b.dll", "A", "bin", "lib", ".", "..", "", "\\", "orvel-manifest.xml", "\xff"};
constexpr std::uint16_t kModes[] = {
    0, S_IFREG | 0644, S_IFREG | 07777, S_IFDIR | 0755, S_IFLNK | 0777, S_IFIFO | 0600, 0755};
constexpr std::uint16_t kFlags[] = {0, 1, 8, 0x40, 0x800, 0x2000};

std::string Part(const std::string& bytes, std::size_t at, std::size_t size) {
  return at < bytes.size() ? bytes.substr(at, size) : "";
}

std::size_t NumberAt(const std::string& bytes, std::size_t at, std::size_t size) {
  const std::string part = Part(bytes, at, size);
  std::size_t number = 0;
  for (std::size_t i = 0; i < part.size(); ++i) number |= std::size_t{static_cast<unsigned char>(part[i])} << (8 * i);
  return number;
}

// As far as it can be unpacked.
std::string Inflated(std::string packed) {
  std::string content(kLongestContent, '\0');
  z_stream stream{};
  stream.next_in = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<Bytef*>(content.data());
  stream.avail_out = static_cast<uInt>(content.size());
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return "";
  inflate(&stream, Z_FINISH);
  content.resize(stream.total_out);
  inflateEnd(&stream);
  return content;
}

ZipEntry EntryAt(const std::string& bytes, std::size_t at) {
  constexpr std::size_t kIn64Bits = 0xffffffff;
  const std::size_t name_size = NumberAt(bytes, at + 28, 2);
  ZipEntry entry;
  entry.path = Part(bytes, at + 46, name_size);
  entry.mode = static_cast<std::uint16_t>(NumberAt(bytes, at + 40, 2));
  entry.flags = static_cast<std::uint16_t>(NumberAt(bytes, at + 8, 2));
  entry.deflated = NumberAt(bytes, at + 10, 2) == 8;
  std::size_t size = NumberAt(bytes, at + 20, 4);
  std::size_t header = NumberAt(bytes, at + 42, 4);
  entry.wide = header == kIn64Bits;
  if (entry.wide) {
    size = NumberAt(bytes, at + 46 + name_size + 12, 4);
    header = NumberAt(bytes, at + 46 + name_size + 20, 4);
  }
  const std::size_t content = header + 30 + NumberAt(bytes, header + 26, 2) + NumberAt(bytes, header + 28, 2);
  entry.content = Part(bytes, content, std::min(size, kLongestContent));
  if (entry.deflated) entry.content = Inflated(entry.content);
  return entry;
}

std::vector<ZipEntry> EntriesOf(const std::string& bytes) {
  std::vector<ZipEntry> entries;
  const std::size_t first = bytes.find("PK\x01\x02");
  for (std::size_t at = first; Part(bytes, at, 4) == "PK\x01\x02" && entries.size() < kMostEntries;) {
    entries.push_back(EntryAt(bytes, at));
    at += 46 + NumberAt(bytes, at + 28, 2) + NumberAt(bytes, at + 30, 2) + NumberAt(bytes, at + 32, 2);
  }
  return entries;
}

std::string PathOf(Chance& chance) {
  std::string path = chance.Of(kNames);
  while (chance.OneIn(2)) path += "/" + chance.Of(kNames);
  return path;
}

std::string ContentOf(std::string content, Chance& chance) {
  switch (chance.Below(4)) {
    case 0:
      return std::string(chance.Below(64) * chance.Below(128), 'z');
    case 1:
      return content + content.substr(0, kLongestContent / 4);
    case 2:
      return "";
    default:
      return fuzz::MutatedBytes(content, std::min(content.size(), kLongestContent) + 16);
  }
}

void ChangeEntry(ZipEntry& entry, Chance& chance) {
  switch (chance.Below(8)) {
    case 0:
      entry.path = PathOf(chance);
      break;
    case 1:
      entry.path = fuzz::MutatedBytes(entry.path, entry.path.size() + 8);
      break;
    case 2:
      entry.content = ContentOf(entry.content, chance);
      break;
    case 3:
      entry.mode = chance.Of(kModes);
      break;
    case 4:
      entry.flags = chance.Of(kFlags);
      break;
    case 5:
      entry.wide = !entry.wide;
      break;
    case 6:
      entry.crc_fault = chance.OneIn(4) ? 1 : 0;
      break;
    default:
      entry.deflated = !entry.deflated;
      break;
  }
}

void ChangeList(std::vector<ZipEntry>& entries, Chance& chance) {
  const std::size_t chosen = chance.Below(entries.size());
  ZipEntry entry = entries[chosen];
  switch (chance.Below(6)) {
    case 0:
      if (entries.size() > 1) entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(chosen));
      break;
    case 1:
      if (!chance.OneIn(4)) entry.path = PathOf(chance);
      entries.push_back(std::move(entry));
      break;
    case 2:
      std::swap(entries[chosen], entries[chance.Below(entries.size())]);
      break;
    default:
      ChangeEntry(entries[chosen], chance);
      break;
  }
}

// Another number in one field of one record.
void DamageField(std::string& bytes, Chance& chance) {
  std::vector<std::size_t> records;
  for (std::size_t at = bytes.find("PK"); at != std::string::npos; at = bytes.find("PK", at + 2)) records.push_back(at);
  const std::size_t at = chance.Of(records) + 2 * chance.Below(30);
  const std::size_t size = std::array<std::size_t, 4>{1, 2, 4, 8}.at(chance.Below(4));
  const std::size_t old = NumberAt(bytes, at, size);
  const std::size_t numbers[] = {0,       1,       8,       0xffff,       0xffffffff,    ~std::size_t{0},
                                 old + 1, old - 1, old * 2, bytes.size(), records.back()};
  const std::size_t number = chance.Of(numbers);
  for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i) bytes[at + i] = static_cast<char>(number >> (8 * i));
}

void Damage(std::string& bytes, Chance& chance) {
  switch (chance.Below(8)) {
    case 0:
      bytes.resize(chance.Below(bytes.size()));
      break;
    case 1:
      bytes.insert(0, chance.Below(40), 'x');
      break;
    case 2: {  // a comment, whose length stands in the last two bytes
      const std::size_t length = chance.Below(40);
      bytes[bytes.size() - 2] = static_cast<char>(length);
      bytes.append(length, chance.OneIn(4) ? 'P' : 'c');
      break;
    }
    case 3:
      bytes.erase(chance.Below(bytes.size()), 1 + chance.Below(4));
      break;
    default:
      DamageField(bytes, chance);
      break;
  }
}

// Empty when the bytes are no archive.
std::string Changed(const std::string& bytes, Chance& chance) {
  std::vector<ZipEntry> entries = EntriesOf(bytes);
  if (entries.empty()) return "";
  for (std::size_t left = 1 + chance.Below(3); left > 0; --left) ChangeList(entries, chance);
  std::string archive = support::ZipOf(entries);
  if (chance.OneIn(2)) Damage(archive, chance);
  return archive;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
  Chance chance(seed);
  if (!chance.OneIn(4)) {
    const std::string archive = Changed({data, data + size}, chance);
    if (!archive.empty() && archive.size() <= max_size) {
      std::copy(archive.begin(), archive.end(), data);
      return archive.size();
    }
  }
  return LLVMFuzzerMutate(data, size, max_size);
}
