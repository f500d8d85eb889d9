// Owns the allow-list of elements and namespaces.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentProfile.hpp"
#include "Support/GeneratedVocabulary.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

Outcome verdict(const std::string& xml) {
  return outcomeOf([&] { GeneratedDocumentProfile::check(OOXML::xml(ByteBuffer::copyOf(xml)).root()); });
}

const auto badElement =
    DocumentError::validationFailed("unexpected executable or unsupported document element");

TEST(GeneratedDocumentProfile, IsTheVocabularyAndNothingBesideIt) {
  const auto vocabulary = generatedVocabulary();
  EXPECT_EQ(vocabulary.size(), 214U);
  for (const std::string& name : vocabulary) {
    EXPECT_EQ(verdict("<" + name + "/>"), "") << name;
    for (const std::string& other : {name + "x", "x" + name, name.substr(0, name.size() - 1), "v:" + name}) {
      if (other.empty() || other.back() == ':' || vocabulary.contains(other)) continue;
      EXPECT_EQ(verdict("<t><" + other + "/></t>"), badElement) << other;
    }
  }
}

TEST(GeneratedDocumentProfile, ChecksElementThenPrefixesThenDefaultThenChildren) {
  for (const auto& [xml, expected] : cases<2>(R"(
      <w:p xmlns:w='wordprocessingml/2006/main' xmlns:r='officeDocument/2006/relationships' onload='x' r:id='y'/> =>
      <c xmlns='spreadsheetml/2006/main'/> =>
      <w:p xmlns='urn:x' xmlns:v='urn:x'><script/></w:p> => unexpected document namespace
      <w:p xmlns:w='officeDocument/2006/relationships'/> => unexpected document namespace
      <w:p xmlns:v='wordprocessingml/2006/main'/> => unexpected document namespace
      <w:p xmlns='urn:x'><script/></w:p> => unexpected default namespace
      <w:p xmlns='wordprocessingml/2006/main'/> => unexpected default namespace
      <w:p><w:r xmlns='urn:x'><w:t/></w:r><script/></w:p> => unexpected default namespace
      <w:script xmlns:v='urn:x' xmlns='urn:x'><script/></w:script> => unexpected executable or unsupported document element
      <w:p><w:r><script/></w:r><w:r xmlns='urn:x'/></w:p> => unexpected executable or unsupported document element)")) {
    std::string full = xml;
    for (const char* name : {"'officeDocument/", "'wordprocessingml/", "'spreadsheetml/"}) {
      if (xml.find(name) != std::string::npos)
        replaceAll(full, name, "'http://schemas.openxmlformats.org/" + std::string(name + 1));
    }
    EXPECT_EQ(verdict(full), expected.empty() ? "" : "validationFailed: " + expected) << xml;
  }
}

}  // namespace
}  // namespace zelvo
