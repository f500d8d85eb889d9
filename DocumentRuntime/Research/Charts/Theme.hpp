#pragma once

#include <string>

namespace zelvo {

/// The theme part of research documents, without the XML declaration. Its first four accents are the colours
/// of a chart's series: they differ in hue and in lightness, so that they are told apart in greyscale and by
/// colour-blind readers.
std::string researchThemeXML();

}  // namespace zelvo
