// Owns nested texts, which count once for every level. The fuzz regressions bound the memory of their
// comparison.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Validation/DocumentEdits.hpp"

namespace zelvo {
namespace {

using namespace testing;

TEST(NestedText, IsComparedWithTheExpectedTable) {
  for (const auto& [xml, title] : cases<2>(R"(
      >a<w:t>b</w:t>c< => acbb ; >a<w:t/><w:t>b<w:t>c</w:t></w:t>< => abcbcc ; >a< => a)")) {
    EditedDocument word = wordDocument();
    edit(word.package, "word/document.xml", ">Column 1<", xml);
    for (const std::string more : {"", "x"}) {
      word.table->columns[0] = title + more;
      EXPECT_EQ(outcomeOf([&] { word.validate(); }),
                more.empty() ? "" : "validationFailed: table cells differ from frozen source values")
          << xml;
    }
  }
}

TEST(NestedText, IsComparedInRepeatedHeaders) {
  const auto outcome = [](const std::string& a, const std::string& b) {
    EditedDocument edited = deck();
    edited.table.reset();
    edit(edited.package, "ppt/slides/slide1.xml", ">Column 1<", a);
    edit(edited.package, "ppt/slides/slide2.xml", ">Column 1<", b);
    return outcomeOf([&] { edited.validate(); });
  };
  for (const auto& [a, b, isSame] : cases<3>(R"(
      >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxx< | yes ; >x<a:t>x<a:t>x</a:t></a:t>< | >xxxxxxx< | no
      >ab<a:t>ac</a:t>< | >ab<a:t>ab</a:t>< | no ; >a<a:t>b</a:t></a:t><a:t>c< | >a<a:t>b</a:t></a:t><a:t>d< | no)")) {
    const Outcome expected = isSame == "yes" ? "" : "validationFailed: repeated table header";
    EXPECT_EQ(outcome(a, b), expected) << a << ' ' << b;
    EXPECT_EQ(outcome(b, a), expected) << b << ' ' << a;
  }
}

}  // namespace
}  // namespace zelvo
