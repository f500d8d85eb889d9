#pragma once

#include "DocumentRuntime/Cleaning/ElementReader.hpp"
#include "DocumentRuntime/Cleaning/PartWriter.hpp"
#include "DocumentRuntime/Cleaning/PlainFormats.hpp"

namespace zelvo::Cleaning {

/// Writes the styles part: the number formats in use, every cell style at its place with the id of its format
/// alone, and one font, two fills, a border and a cell style format, without which programs repair the file.
/// With `plainFormats`, formats that the strict reader cannot show are replaced.
///
/// Throws `DocumentError` invalidArchive "number format N in the styles" where one in use has no code or two,
/// resourceLimit where its code is too long, and what `eachChild` throws.
void writeStyles(XMLNode root, Findings& findings, PartWriter& writer, bool plainFormats,
                 PlainFormats& replaced);

}  // namespace zelvo::Cleaning
