#include "DocumentRuntime/Authoring/ContentTypes.hpp"

#include <string>

#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/PackageIO/XMLText.hpp"

namespace zelvo {

ByteBuffer DocumentAuthor::contentTypes(const std::vector<ContentTypeOverride>& overrides,
                                        bool embeddedWorkbook) {
  std::string xml =
      R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
      R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
      R"(<Default Extension="xml" ContentType="application/xml"/>)";
  if (embeddedWorkbook) {
    xml += R"(<Default Extension="xlsx" )"
           R"(ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"/>)";
  }
  for (const auto& [partName, contentType] : overrides) {
    OOXML::append(xml, R"(<Override PartName="/)", partName, R"(" ContentType=")", contentType, R"("/>)");
  }
  xml += "</Types>";
  return OOXML::data(xml);
}

}  // namespace zelvo
