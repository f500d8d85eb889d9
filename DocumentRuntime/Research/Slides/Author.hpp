#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/Slides/Layout.hpp"
#include "DocumentRuntime/Research/Slides/Script.hpp"
#include "DocumentRuntime/Research/Slides/Sources.hpp"

namespace zelvo {

/// One slide part of a research deck, without the XML declaration: the cover, a slide of points, or a slide
/// with one chart, which has this title, and its insight. Every text is one run of one paragraph.
std::string researchSlide(const SlideLayout& layout, std::size_t number,
                          const std::vector<SlideSource>& sources, const std::string& chartTitle,
                          const SlideScript::Languages& languages);

}  // namespace zelvo
