#pragma once

#include "DocumentRuntime/Cleaning/ElementReader.hpp"
#include "DocumentRuntime/Cleaning/PartWriter.hpp"
#include "DocumentRuntime/Cleaning/PlainFormats.hpp"

namespace zelvo::Cleaning {

/// Writes the styles part: the number formats in use, every cell style with its index and format id only, and
/// one font, two fills, one border and one cell style format: office programs repair a file without these.
/// With `plainFormats`, formats that the strict reader cannot show are replaced.
///
/// Throws `DocumentError` invalidArchive "number format N in the styles" if a format in use has no code or
/// two codes, resourceLimit if its code is too long, and what `eachChild` throws.
void writeStyles(XMLNode root, Findings& findings, PartWriter& writer, bool plainFormats,
                 PlainFormats& replaced);

}  // namespace zelvo::Cleaning
