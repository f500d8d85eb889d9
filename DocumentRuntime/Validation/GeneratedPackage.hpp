#pragma once

#include <optional>
#include <stop_token>
#include <string_view>

#include "DocumentRuntime/PackageIO/KeptTrees.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/PackageIO/PartMap.hpp"

namespace zelvo {

/// A package that has passed the gate and whose every XML part keeps to the profile. Owns its parts.
class GeneratedPackage {
 public:
  /// Throws what the gate throws, then what the profile throws, and `Cancelled`.
  GeneratedPackage(ByteView bytes, OOXML::PackageAllowance allowance, const std::stop_token& stop);

  const PartMap& parts() const { return parts_; }
  bool contains(std::string_view name) const { return parts_.contains(name); }

  /// A parsed part, which must be there. Owns the tree where it had to be parsed again; valid while the
  /// package lives.
  class ParsedPart {
   public:
    XMLNode root() const { return *root_; }

   private:
    friend class GeneratedPackage;
    std::optional<XMLTree> again_;
    std::optional<XMLNode> root_;
  };
  ParsedPart parsed(std::string_view name) const;

 private:
  PartMap parts_;
  OOXML::KeptTrees trees_;
};

}  // namespace zelvo
