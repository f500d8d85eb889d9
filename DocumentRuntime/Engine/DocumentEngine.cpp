#include "DocumentRuntime/Engine/DocumentEngine.hpp"

#include <utility>

#include "DocumentRuntime/Workbook/WorkbookReader.hpp"

namespace zelvo {

WorkbookInspection DocumentEngine::inspectXLSX(ByteBuffer data, std::string_view sourceName,
                                               const std::stop_token& stop) {
  return WorkbookReader(std::move(data), sourceName, stop).inspection();
}

}  // namespace zelvo
