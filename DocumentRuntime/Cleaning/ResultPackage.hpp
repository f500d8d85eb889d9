#pragma once

#include <cstddef>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cleaning/PartWriter.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"

namespace zelvo::Cleaning {

/// The parts of the cleaned workbook, each deflated when it is added, and its packaging.
class ResultPackage {
 public:
  /// Adds a part below "xl/". Throws `DocumentError` resourceLimit with `place` if a limit of the strict
  /// reader on a whole archive is exceeded.
  void add(std::string name, std::string_view type, std::string_view xml, std::string_view place);

  /// Adds content types and relationships, and returns the archive.
  ByteBuffer finish(PartWriter& writer, const std::stop_token& stop);

  /// The name of a sheet's part, relative to "xl/".
  static std::string worksheetPart(std::size_t number) {
    return "worksheets/sheet" + std::to_string(number) + ".xml";
  }
  /// Adds a relationship of the workbook part.
  void relate(std::string identifier, std::string_view type, std::string target) {
    relationships_.push_back({std::move(identifier), type, std::move(target)});
  }

 private:
  struct Override {
    std::string name;
    std::string_view type;
  };
  struct Relationship {
    std::string identifier;
    std::string_view type;
    std::string target;
  };

  void pack(std::string name, std::string_view xml, std::string_view place);
  static std::string_view writeRelationships(PartWriter& writer, const std::vector<Relationship>& list);

  std::vector<BoundedZIP::PackedPart> parts_;
  std::vector<Override> overrides_;
  std::vector<Relationship> relationships_;
  std::size_t expandedBytes_ = 0;
  std::size_t packedBytes_ = 0;
};

}  // namespace zelvo::Cleaning
