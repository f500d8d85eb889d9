#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"

/// An independent reader of documents: uses another XML parser, and none of the validation's code.
namespace zelvo::fuzzing {

/// The rows of all tables of a part; each cell is the content of its text elements, in document order.
std::vector<std::vector<std::string>> cellTexts(std::string_view xml);

/// The slide parts of a presentation, in slide order.
std::vector<std::string> slideParts(const PartMap& parts);

/// The qualified names of all elements of a part.
std::vector<std::string> elementNames(std::string_view xml);

}  // namespace zelvo::fuzzing
