// Archive, gate, XML and sheets of a workbook. Every input is inspected or refused, and an archive that was
// read round-trips through writing and reading.

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/MutatesPackages.hpp"
#include "fuzz/Require.hpp"

using zelvo::BoundedZIP::read;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zelvo::ByteView bytes{data, size};
  try {
    {
      const zelvo::PartMap parts = read(bytes);
      if (parts.size() > 0) ZELVO_REQUIRE(read(zelvo::BoundedZIP::write(parts).view()) == parts);
    }
    const auto limit = zelvo::fuzzing::documentMemory(bytes);
    const zelvo::WorkbookReader reader(zelvo::ByteBuffer::copyOf(bytes), "book.xlsx");
    ZELVO_REQUIRE(reader.inspection().sheets.size() == reader.sheets().size());
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(!error.detail().empty());
  }
  return 0;
}
