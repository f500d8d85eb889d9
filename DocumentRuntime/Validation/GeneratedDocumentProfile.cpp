#include "DocumentRuntime/Validation/GeneratedDocumentProfile.hpp"

#include <algorithm>
#include <array>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

/// Qualified names, sorted.
constexpr std::array<std::string_view, 214> allowedElements = {
    "Default",
    "Override",
    "Relationship",
    "Relationships",
    "Types",
    "a:accent1",
    "a:accent2",
    "a:accent3",
    "a:accent4",
    "a:accent5",
    "a:accent6",
    "a:avLst",
    "a:bgFillStyleLst",
    "a:bodyPr",
    "a:buChar",
    "a:buClr",
    "a:buFont",
    "a:buNone",
    "a:buSzPct",
    "a:chExt",
    "a:chOff",
    "a:clrScheme",
    "a:cs",
    "a:dk1",
    "a:dk2",
    "a:ea",
    "a:effectLst",
    "a:effectStyle",
    "a:effectStyleLst",
    "a:endParaRPr",
    "a:ext",
    "a:fillStyleLst",
    "a:fmtScheme",
    "a:folHlink",
    "a:fontScheme",
    "a:graphic",
    "a:graphicData",
    "a:gridCol",
    "a:hlink",
    "a:latin",
    "a:ln",
    "a:lnSpc",
    "a:lnStyleLst",
    "a:lstStyle",
    "a:lt1",
    "a:lt2",
    "a:majorFont",
    "a:masterClrMapping",
    "a:minorFont",
    "a:noAutofit",
    "a:noFill",
    "a:off",
    "a:p",
    "a:pPr",
    "a:prstDash",
    "a:prstGeom",
    "a:r",
    "a:rPr",
    "a:schemeClr",
    "a:solidFill",
    "a:spcAft",
    "a:spcPct",
    "a:spcPts",
    "a:srgbClr",
    "a:t",
    "a:tbl",
    "a:tblGrid",
    "a:tblPr",
    "a:tc",
    "a:tcPr",
    "a:theme",
    "a:themeElements",
    "a:tr",
    "a:txBody",
    "a:xfrm",
    "c",
    "c:auto",
    "c:autoTitleDeleted",
    "c:autoUpdate",
    "c:axId",
    "c:axPos",
    "c:barChart",
    "c:barDir",
    "c:cat",
    "c:catAx",
    "c:chart",
    "c:chartSpace",
    "c:crossAx",
    "c:crossBetween",
    "c:crosses",
    "c:date1904",
    "c:delete",
    "c:dispBlanksAs",
    "c:externalData",
    "c:f",
    "c:formatCode",
    "c:gapWidth",
    "c:grouping",
    "c:idx",
    "c:lang",
    "c:layout",
    "c:lblAlgn",
    "c:lblOffset",
    "c:legend",
    "c:legendPos",
    "c:lineChart",
    "c:majorGridlines",
    "c:max",
    "c:min",
    "c:numCache",
    "c:numFmt",
    "c:numRef",
    "c:order",
    "c:orientation",
    "c:overlay",
    "c:plotArea",
    "c:plotVisOnly",
    "c:pt",
    "c:ptCount",
    "c:rich",
    "c:scaling",
    "c:ser",
    "c:showDLblsOverMax",
    "c:spPr",
    "c:strCache",
    "c:strRef",
    "c:tickLblPos",
    "c:title",
    "c:tx",
    "c:v",
    "c:val",
    "c:valAx",
    "c:varyColors",
    "is",
    "p:bg",
    "p:bgPr",
    "p:bodyStyle",
    "p:cNvGraphicFramePr",
    "p:cNvGrpSpPr",
    "p:cNvPr",
    "p:cNvSpPr",
    "p:cSld",
    "p:clrMap",
    "p:clrMapOvr",
    "p:graphicFrame",
    "p:grpSpPr",
    "p:notesSz",
    "p:nvGraphicFramePr",
    "p:nvGrpSpPr",
    "p:nvPr",
    "p:nvSpPr",
    "p:otherStyle",
    "p:presentation",
    "p:sld",
    "p:sldId",
    "p:sldIdLst",
    "p:sldLayout",
    "p:sldLayoutId",
    "p:sldLayoutIdLst",
    "p:sldMaster",
    "p:sldMasterId",
    "p:sldMasterIdLst",
    "p:sldSz",
    "p:sp",
    "p:spPr",
    "p:spTree",
    "p:titleStyle",
    "p:txBody",
    "p:txStyles",
    "p:xfrm",
    "row",
    "sheet",
    "sheetData",
    "sheets",
    "t",
    "v",
    "w:b",
    "w:body",
    "w:bottom",
    "w:cantSplit",
    "w:color",
    "w:document",
    "w:gridCol",
    "w:insideH",
    "w:insideV",
    "w:left",
    "w:p",
    "w:pPr",
    "w:pgMar",
    "w:pgSz",
    "w:r",
    "w:rPr",
    "w:right",
    "w:sectPr",
    "w:shd",
    "w:spacing",
    "w:sz",
    "w:t",
    "w:tbl",
    "w:tblBorders",
    "w:tblCellMar",
    "w:tblGrid",
    "w:tblHeader",
    "w:tblLayout",
    "w:tblPr",
    "w:tblW",
    "w:tc",
    "w:tcPr",
    "w:tcW",
    "w:top",
    "w:tr",
    "w:trPr",
    "workbook",
    "worksheet",
};
static_assert(std::ranges::is_sorted(allowedElements));

struct Namespace {
  std::string_view declaration;  ///< the attribute
  std::string_view uri;
};
constexpr std::array<Namespace, 5> namespaces = {{
    {"xmlns:w", "http://schemas.openxmlformats.org/wordprocessingml/2006/main"},
    {"xmlns:a", "http://schemas.openxmlformats.org/drawingml/2006/main"},
    {"xmlns:p", "http://schemas.openxmlformats.org/presentationml/2006/main"},
    {"xmlns:c", "http://schemas.openxmlformats.org/drawingml/2006/chart"},
    {"xmlns:r", "http://schemas.openxmlformats.org/officeDocument/2006/relationships"},
}};

constexpr std::array<std::string_view, 3> defaultNamespaces = {
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main",
    "http://schemas.openxmlformats.org/package/2006/relationships",
    "http://schemas.openxmlformats.org/package/2006/content-types",
};

bool isAllowedDeclaration(std::string_view declaration, std::string_view uri) {
  return std::ranges::any_of(namespaces, [&](const Namespace& known) {
    return known.declaration == declaration && known.uri == uri;
  });
}

void checkNamespaces(XMLNode element) {
  for (std::size_t i = 0; i < element.attributeCount(); ++i) {
    const std::string_view name = element.attributeName(i);
    if (name.starts_with("xmlns:") && !isAllowedDeclaration(name, element.attributeValue(i))) {
      throw DocumentError::validationFailed("unexpected document namespace");
    }
  }
  const auto defaultNamespace = element.attribute("xmlns");
  if (defaultNamespace &&
      std::ranges::find(defaultNamespaces, *defaultNamespace) == defaultNamespaces.end()) {
    throw DocumentError::validationFailed("unexpected default namespace");
  }
}

/// Checks one tree. Each name is looked up once, for any number of elements.
class ElementCheck {
 public:
  // Recursion is bounded by the depth that the XML reader allows.
  void check(XMLNode element) {
    checkName(element);
    checkNamespaces(element);
    for (const XMLNode child : element.children())
      check(child);
  }

 private:
  void checkName(XMLNode element) {
    const std::size_t name = element.nameIndex();
    if (name >= isAllowed_.size()) isAllowed_.resize(name + 1);
    if (isAllowed_[name]) return;
    if (!std::ranges::binary_search(allowedElements, element.qualifiedName())) {
      throw DocumentError::validationFailed("unexpected executable or unsupported document element");
    }
    isAllowed_[name] = true;
  }

  std::vector<bool> isAllowed_;  ///< by the index of the name
};

}  // namespace

void GeneratedDocumentProfile::check(XMLNode root) {
  ElementCheck().check(root);
}

}  // namespace zelvo
