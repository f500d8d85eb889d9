#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"

/// A second reading of documents, by another XML parser and by nothing of validation's code.
namespace zelvo::fuzzing {

/// The rows of all tables of a part, of each cell what stands in its text elements, in document order.
std::vector<std::vector<std::string>> cellTexts(std::string_view xml);

/// The slide parts of a presentation, in the order of the show.
std::vector<std::string> slideParts(const PartMap& parts);

/// The qualified names of all elements of a part.
std::vector<std::string> elementNames(std::string_view xml);

}  // namespace zelvo::fuzzing
