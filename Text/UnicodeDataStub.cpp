// An empty archive that replaces the Unicode library's data, which is 30 MiB and would be linked into every
// executable. Text uses only data that is compiled into the library's code: normalization, case mapping, and
// the properties that are not about emoji or Indic syllables. Other functions of the library find no data.

#include <cstddef>
#include <cstdint>

#include <unicode/udata.h>
#include <unicode/utypes.h>

namespace {

struct EmptyArchive {
  std::uint16_t headerSize;
  std::uint8_t magic[2];
  UDataInfo info;
  std::uint32_t entryCount;
};

}  // namespace

// The macro has the library's version in it, so that a library of another version than the headers does not
// link. The symbol is weak, because a test or an application may link the real data as well, and hidden,
// because a shared library of the same version has data of its own.
extern "C" __attribute__((weak, visibility("hidden"), aligned(16)))
const EmptyArchive U_ICUDATA_ENTRY_POINT = {offsetof(EmptyArchive, entryCount),
                                            {0xDA, 0x27},
                                            {sizeof(UDataInfo),
                                             0,
                                             U_IS_BIG_ENDIAN,
                                             U_CHARSET_FAMILY,
                                             U_SIZEOF_UCHAR,
                                             0,
                                             {'T', 'o', 'C', 'P'},
                                             {1},
                                             {}},
                                            0};
