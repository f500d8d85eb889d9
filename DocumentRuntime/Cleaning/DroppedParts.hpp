#pragma once

#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Records/CleaningReport.hpp"

namespace zelvo::Cleaning {

/// The kind of a dropped part: by its content type, or else by its name. Both must be in lower case.
CleaningKind kindOfPart(std::string_view name, std::string_view contentType);

struct DroppedElement {
  enum class Counts : std::uint8_t {
    element,
    children,        ///< each child counts, the element does not
    withChildren,    ///< the element, if it has children
    withAttributes,  ///< the element, if it has attributes
  };

  CleaningKind kind;
  Counts counts;
};

/// The kind of a dropped element of a worksheet or of the workbook part. Null for an element that is not
/// reported: it only sets the appearance, or refers to a part that is reported itself.
const DroppedElement* droppedElement(std::string_view localName);

}  // namespace zelvo::Cleaning
