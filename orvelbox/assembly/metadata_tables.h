// The table stream ("#~") of CLI metadata: where the rows of a table stand. Their meaning is left to the reader.
#ifndef ORVEL_ORVELBOX_ASSEMBLY_METADATA_TABLES_H_
#define ORVEL_ORVELBOX_ASSEMBLY_METADATA_TABLES_H_

#include <array>
#include <cstdint>

#include "orvelbox/desk/bytes.h"

namespace orvelbox {

// The number of the table that describes the assembly itself.
inline constexpr unsigned kAssemblyTable = 0x20;

// The head of the stream: which tables there are, how many rows each has, and how wide the indexes are.
class MetadataTables {
 public:
  // Throws BeyondBytes.
  explicit MetadataTables(ByteView stream);

  // The number of rows of the table; 0 when there is none.
  std::uint32_t Rows(unsigned table) const { return rows_[table]; }
  // The bytes of the Assembly table's first row and all that follow. Throws BeyondBytes.
  ByteView AssemblyRows() const;

 private:
  std::uint64_t ColumnWidth(char kind, unsigned which) const;
  std::uint64_t RowWidth(unsigned table) const;

  ByteView stream_;
  std::uint8_t heap_sizes_;
  std::array<std::uint32_t, 64> rows_{};
  std::uint64_t tables_begin_ = 0;
};

}  // namespace orvelbox

#endif
