#pragma once

#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Records/CleaningReport.hpp"

namespace zelvo::Cleaning {

/// What a part that is left out held, told by its content type, else by its name; both in lower case.
CleaningKind kindOfPart(std::string_view name, std::string_view contentType);

struct DroppedElement {
  enum class Counts : std::uint8_t {
    element,
    children,        ///< each child is one of the kind, not the element
    withChildren,    ///< the element, if it has children
    withAttributes,  ///< the element, if it has attributes
  };

  CleaningKind kind;
  Counts counts;
};

/// What an element that is left out of a worksheet or of the workbook part stands for. Null for what says
/// only how a workbook looks on a screen or on paper, or leads to a part that is reported itself.
const DroppedElement* droppedElement(std::string_view localName);

}  // namespace zelvo::Cleaning
