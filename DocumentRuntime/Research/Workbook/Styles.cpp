#include "DocumentRuntime/Research/Workbook/Styles.hpp"

#include <string_view>

#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"
#include "DocumentRuntime/PackageIO/XMLText.hpp"

namespace zelvo {
namespace {

constexpr std::string_view dateNumberFormat =
    R"(<numFmts count="1"><numFmt numFmtId="164" formatCode="yyyy-mm-dd"/></numFmts>)";
constexpr std::string_view fontsFillsAndBorders =
    R"(<fonts count="2"><font><sz val="11"/><name val="Aptos"/></font>)"
    R"(<font><b/><sz val="11"/><color rgb="FFFFFFFF"/><name val="Aptos"/></font></fonts>)"
    R"(<fills count="3"><fill><patternFill patternType="none"/></fill>)"
    R"(<fill><patternFill patternType="gray125"/></fill>)"
    R"(<fill><patternFill patternType="solid"><fgColor rgb="FF334E68"/><bgColor indexed="64"/></patternFill></fill></fills>)"
    R"(<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)";
constexpr std::string_view textHeadingAndNumber =
    R"(<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0" applyAlignment="1">)"
    R"(<alignment vertical="top" wrapText="1"/></xf>)"
    R"(<xf numFmtId="0" fontId="1" fillId="2" borderId="0" xfId="0" applyFont="1" applyFill="1" applyAlignment="1">)"
    R"(<alignment vertical="center" wrapText="1"/></xf>)"
    R"(<xf numFmtId="4" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1" applyAlignment="1">)"
    R"(<alignment vertical="top"/></xf>)";
constexpr std::string_view date =
    R"(<xf numFmtId="164" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1" applyAlignment="1">)"
    R"(<alignment vertical="top"/></xf>)";
constexpr std::string_view namedStyles =
    R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles></styleSheet>)";

}  // namespace

std::string researchStylesXML(bool withDates) {
  const std::string_view none;
  std::string xml;
  OOXML::append(xml, R"(<styleSheet xmlns=")", DocumentAuthor::spreadsheetNamespace, R"(">)",
                withDates ? dateNumberFormat : none, fontsFillsAndBorders, R"(<cellXfs count=")",
                withDates ? 4 : 3, R"(">)", textHeadingAndNumber, withDates ? date : none, "</cellXfs>",
                namedStyles);
  return xml;
}

}  // namespace zelvo
