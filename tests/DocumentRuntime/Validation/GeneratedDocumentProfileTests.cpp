#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentProfile.hpp"
#include "Support/GeneratedVocabulary.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::outcomeOf;

testing::Outcome verdict(const std::string& xml) {
  return outcomeOf([&] { GeneratedDocumentProfile::check(OOXML::xml(bytesOf(xml)).root()); });
}

const auto element = DocumentError::validationFailed("unexpected executable or unsupported document element");

TEST(GeneratedDocumentProfile, IsTheVocabularyAndNothingBesideIt) {
  const auto vocabulary = testing::generatedVocabulary();
  EXPECT_EQ(vocabulary.size(), 214U);
  for (const std::string& name : vocabulary) {
    EXPECT_EQ(verdict("<" + name + "/>"), "") << name;
    for (const std::string& other : {name + "x", "x" + name, name.substr(0, name.size() - 1), "v:" + name}) {
      if (other.empty() || other.back() == ':' || vocabulary.contains(other)) continue;
      EXPECT_EQ(verdict("<t><" + other + "/></t>"), element) << other;
    }
  }
}

TEST(GeneratedDocumentProfile, ChecksElementThenPrefixesThenDefaultThenChildren) {
  const auto namespaces = [](std::string xml) {
    for (const auto& [mark, name] : testing::cases<2>("RELS => officeDocument/2006/relationships\n"
                                                      "WORD => wordprocessingml/2006/main\n"
                                                      "SHEET => spreadsheetml/2006/main")) {
      if (xml.find(mark) != std::string::npos)
        testing::replaceAll(xml, mark, "http://schemas.openxmlformats.org/" + name);
    }
    return xml;
  };
  for (const auto& [xml, expected] : testing::cases<2>(R"(
      <w:p xmlns:w='WORD' xmlns:r='RELS' onload='x' r:id='y'/> => ; <c xmlns='SHEET'/> =>
      <w:p xmlns='urn:x' xmlns:v='urn:x'><script/></w:p> => validationFailed: unexpected document namespace
      <w:p xmlns:w='RELS'/> => validationFailed: unexpected document namespace
      <w:p xmlns:w='WORD/'/> => validationFailed: unexpected document namespace
      <w:p xmlns:v='WORD'/> => validationFailed: unexpected document namespace
      <w:p xmlns='urn:x'><script/></w:p> => validationFailed: unexpected default namespace
      <w:p xmlns='WORD'/> => validationFailed: unexpected default namespace
      <c xmlns=''/> => validationFailed: unexpected default namespace
      <w:p><w:r xmlns='urn:x'><w:t/></w:r><script/></w:p> => validationFailed: unexpected default namespace)"))
    EXPECT_EQ(verdict(namespaces(xml)), expected) << xml;
  for (const char* xml : {"<w:script xmlns:v='urn:x' xmlns='urn:x'><script/></w:script>",
                          "<w:p><w:r><script/></w:r><w:r xmlns='urn:x'/></w:p>"})
    EXPECT_EQ(verdict(xml), element) << xml;
}

TEST(GeneratedDocumentProfile, HoldsForEveryPartOfADocument) {
  // The gate speaks first, of any part; then the profile, of the first part in the order of names.
  const auto good = testing::chartDeck();
  std::size_t checked = 0;
  for (const auto& part : good.package.parts) {
    if (part.name.ends_with(".xlsx")) continue;
    auto spoiled = good;
    std::string& text = spoiled.part(part.name);
    text = testing::replaced(text, "?><", "?><Types><") + "<script/></Types>";
    const auto expected =
        part.name.ends_with(".rels") ? DocumentError::invalidArchive("relationships root") : element;
    EXPECT_EQ(outcomeOf([&] { spoiled.validate(); }), expected) << part.name;
    ++checked;
  }
  EXPECT_EQ(checked, 17U);
}

TEST(GeneratedDocumentProfile, SpeaksAfterTheGate) {
  auto edited = testing::wordDocument();
  edited.part("[Content_Types].xml") = "<script/>";
  EXPECT_EQ(outcomeOf([&] { edited.validate(); }), element);
  edited.part("word/document.xml") = "<w:document>";
  EXPECT_EQ(outcomeOf([&] { edited.validate(); }), "invalidArchive: malformed XML");
}

}  // namespace
}  // namespace zelvo
