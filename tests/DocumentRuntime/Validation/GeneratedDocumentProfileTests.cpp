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

using testing::errorOf;

std::optional<DocumentError> verdict(const std::string& xml) {
  return errorOf([&] { GeneratedDocumentProfile::check(OOXML::xml(bytesOf(xml)).root()); });
}

const auto element = DocumentError::validationFailed("unexpected executable or unsupported document element");
const auto prefixed = DocumentError::validationFailed("unexpected document namespace");
const auto unprefixed = DocumentError::validationFailed("unexpected default namespace");

TEST(GeneratedDocumentProfile, IsTheVocabularyAndNothingBesideIt) {
  const auto vocabulary = testing::generatedVocabulary();
  EXPECT_EQ(vocabulary.size(), 214U);
  for (const std::string& name : vocabulary) {
    EXPECT_FALSE(verdict("<" + name + "/>")) << name;
    for (const std::string& other : {name + "x", "x" + name, name.substr(0, name.size() - 1), "v:" + name}) {
      if (other.empty() || other.back() == ':' || vocabulary.contains(other)) continue;
      EXPECT_EQ(verdict("<t><" + other + "/></t>"), element) << other;
    }
  }
}

TEST(GeneratedDocumentProfile, ChecksElementThenPrefixesThenDefaultThenChildren) {
  const std::string relationships = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  const std::string word = "http://schemas.openxmlformats.org/wordprocessingml/2006/main";
  const std::string sheet = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
  const struct {
    std::string xml;
    std::optional<DocumentError> expected;
  } rows[] = {
      {"<w:p xmlns:w='" + word + "' xmlns:r='" + relationships + "' onload='x' r:id='y'/>", {}},
      {"<c xmlns='" + sheet + "'/>", {}},
      {"<w:script xmlns:v='urn:x' xmlns='urn:x'><script/></w:script>", element},
      {"<w:p xmlns='urn:x' xmlns:v='urn:x'><script/></w:p>", prefixed},
      {"<w:p xmlns:w='" + relationships + "'/>", prefixed},
      {"<w:p xmlns:w='" + word + "/'/>", prefixed},
      {"<w:p xmlns:v='" + word + "'/>", prefixed},
      {"<w:p xmlns='urn:x'><script/></w:p>", unprefixed},
      {"<w:p xmlns='" + word + "'/>", unprefixed},
      {"<c xmlns=''/>", unprefixed},
      {"<w:p><w:r xmlns='urn:x'><w:t/></w:r><script/></w:p>", unprefixed},
      {"<w:p><w:r><script/></w:r><w:r xmlns='urn:x'/></w:p>", element},
  };
  for (const auto& row : rows)
    EXPECT_EQ(verdict(row.xml), row.expected) << row.xml;
}

TEST(GeneratedDocumentProfile, HoldsForEveryPartOfADocument) {
  // The gate speaks first, of any part; then the profile, of the first part in the order of names.
  const auto good = testing::chartDeck();
  std::size_t checked = 0;
  for (const auto& part : good.package.parts) {
    if (part.name.ends_with(".xlsx")) continue;
    auto spoiled = good;
    std::string& text = spoiled.part(part.name);
    testing::replace(text, "?><", "?><Types><");
    text += "<script/></Types>";
    const auto error = errorOf([&] { spoiled.validate(); });
    const bool isRelationships = part.name.ends_with(".rels");
    EXPECT_EQ(error, isRelationships ? DocumentError::invalidArchive("relationships root") : element)
        << part.name;
    ++checked;
  }
  EXPECT_EQ(checked, 17U);
}

TEST(GeneratedDocumentProfile, SpeaksAfterTheGate) {
  auto edited = testing::wordDocument();
  edited.part("[Content_Types].xml") = "<script/>";
  EXPECT_EQ(errorOf([&] { edited.validate(); }), element);
  edited.part("word/document.xml") = "<w:document>";
  EXPECT_EQ(errorOf([&] { edited.validate(); }), DocumentError::invalidArchive("malformed XML"));
}

}  // namespace
}  // namespace zelvo
