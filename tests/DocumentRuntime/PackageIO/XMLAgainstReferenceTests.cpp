#include <string>

#include <gtest/gtest.h>

#include "Support/PackageBuilder.hpp"
#include "Support/ReferenceXML.hpp"

namespace zelvo::testing {
namespace {

const std::string everything =
    "<?xml version='1.0'?><!-- c --><a:b c='&#65;&lt;\t\r\n' "
    "a:d=\"e'f\">g<h/>&amp;i\r\nj<![CDATA[<&]]]]><![CDATA[>]]>"
    "<?k l?><m xmlns='u' xmlns:a='v'>n</m >\xC3\xA9&#x1F600;</a:b>\n";

TEST(XMLAgainstReference, AgreesOnTheBuildersParts) {
  for (const TextPart& part : workbookPackage(richWorkbook()).parts) {
    EXPECT_EQ(disagreement(part.text), std::nullopt) << part.name;
  }
}

TEST(XMLAgainstReference, AgreesOnEveryOneByteChange) {
  for (std::size_t at = 0; at < everything.size(); ++at) {
    for (const char byte : std::string("<>&;'\"/=:!?-]x1 \n\x01\x7F")) {
      std::string changed = everything;
      changed[at] = byte;
      ASSERT_EQ(disagreement(changed), std::nullopt) << changed;
      changed = everything;
      changed.insert(at, 1, byte);
      ASSERT_EQ(disagreement(changed), std::nullopt) << changed;
    }
    ASSERT_EQ(disagreement(everything.substr(0, at)), std::nullopt) << at;
    ASSERT_EQ(disagreement(std::string(everything).erase(at, 1)), std::nullopt) << at;
  }
}

}  // namespace
}  // namespace zelvo::testing
