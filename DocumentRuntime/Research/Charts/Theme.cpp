#include "DocumentRuntime/Research/Charts/Theme.hpp"

#include "DocumentRuntime/Authoring/PresentationFrame.hpp"

namespace zelvo {

std::string researchThemeXML() {
  return DocumentAuthor::themeXML({.dark = {"202124", "0A2F63"},
                                   .light = {"FFFFFF", "F2F4F7"},
                                   .accents = {"0A2F63", "C4A13E", "23868B", "90373E", "5B6770", "D9DEE4"}});
}

}  // namespace zelvo
