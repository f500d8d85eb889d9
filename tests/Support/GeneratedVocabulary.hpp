#pragma once

#include <set>
#include <string>

#include "Support/Cases.hpp"

namespace zelvo::testing {

/// The qualified names of all elements that generated documents may hold, written down a second time, so that
/// what a document was accepted with can be checked without the profile that accepted it.
inline std::set<std::string> generatedVocabulary() {
  constexpr std::pair<const char*, const char*> groups[] = {
      {"", R"(Default Override Relationship Relationships Types c is row sheet sheetData sheets t v
          workbook worksheet)"},
      {"a:", R"(accent1 accent2 accent3 accent4 accent5 accent6 avLst bgFillStyleLst bodyPr buChar buClr
          buFont buNone buSzPct chExt chOff clrScheme cs dk1 dk2 ea effectLst effectStyle effectStyleLst
          endParaRPr ext fillStyleLst fmtScheme folHlink fontScheme graphic graphicData gridCol hlink
          latin ln lnSpc lnStyleLst lstStyle lt1 lt2 majorFont masterClrMapping minorFont noAutofit
          noFill off p pPr prstDash prstGeom r rPr schemeClr solidFill spcAft spcPct spcPts srgbClr t tbl
          tblGrid tblPr tc tcPr theme themeElements tr txBody xfrm)"},
      {"c:", R"(auto autoTitleDeleted autoUpdate axId axPos barChart barDir cat catAx chart chartSpace
          crossAx crossBetween crosses date1904 delete dispBlanksAs externalData f formatCode gapWidth
          grouping idx lang layout lblAlgn lblOffset legend legendPos lineChart majorGridlines max min
          numCache numFmt numRef order orientation overlay plotArea plotVisOnly pt ptCount rich scaling
          ser showDLblsOverMax spPr strCache strRef tickLblPos title tx v val valAx varyColors)"},
      {"p:", R"(bg bgPr bodyStyle cNvGraphicFramePr cNvGrpSpPr cNvPr cNvSpPr cSld clrMap clrMapOvr
          graphicFrame grpSpPr notesSz nvGraphicFramePr nvGrpSpPr nvPr nvSpPr otherStyle presentation sld
          sldId sldIdLst sldLayout sldLayoutId sldLayoutIdLst sldMaster sldMasterId sldMasterIdLst sldSz
          sp spPr spTree titleStyle txBody txStyles xfrm)"},
      {"w:", R"(b body bottom cantSplit color document gridCol insideH insideV left p pPr pgMar pgSz r
          rPr right sectPr shd spacing sz t tbl tblBorders tblCellMar tblGrid tblHeader tblLayout tblPr
          tblW tc tcPr tcW top tr trPr)"},
  };
  std::set<std::string> vocabulary;
  for (const auto& [prefix, names] : groups) {
    for (const std::string& name : words(names))
      vocabulary.insert(prefix + name);
  }
  return vocabulary;
}

}  // namespace zelvo::testing
