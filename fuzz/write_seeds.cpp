// write_seeds TARGET FOLDER: writes the inputs that a fuzz target starts from, made by the builders of the
// tests.

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/PackageBuilder.hpp"

namespace {

using zelvo::testing::PackageBuilder;

class Seeds {
 public:
  explicit Seeds(std::string folder) : folder_(std::move(folder)) {}

  void add(std::string_view bytes) {
    std::ofstream file(folder_ + "/seed-" + std::to_string(count_++), std::ios::binary);
    file << bytes;
  }
  void add(const PackageBuilder& package) {
    add(package.bytes().text());
    add(package.archive().bytes());
  }

  int count() const { return count_; }

 private:
  std::string folder_;
  int count_ = 0;
};

void addWorkbooks(Seeds& seeds) {
  seeds.add(zelvo::testing::workbookPackage(zelvo::testing::richWorkbook()));
  seeds.add(zelvo::testing::workbookPackage(zelvo::testing::plainWorkbook(
      "<row r='1'><c r='A1' t='str'><v>a</v></c></row><row r='2'><c r='A2'><v>1</v></c></row>")));
  seeds.add(zelvo::testing::minimalPackage());
}

void addXML(Seeds& seeds) {
  for (const auto& part : zelvo::testing::workbookPackage(zelvo::testing::richWorkbook()).parts)
    seeds.add(part.text);
  seeds.add("<a b='&#65;&lt;'>x<![CDATA[<&]]><!-- c --><?p i?><c:d xmlns:c='u'/>\r\n</a>");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: write_seeds TARGET FOLDER\n", stderr);
    return 2;
  }
  const std::string_view target = argv[1];
  Seeds seeds(argv[2]);
  if (target == "fuzz_package" || target == "fuzz_extract") addWorkbooks(seeds);
  if (target == "fuzz_xml") addXML(seeds);
  return seeds.count() > 0 ? 0 : 1;
}
