#pragma once

#include <optional>
#include <stop_token>
#include <string_view>

#include "DocumentRuntime/PackageIO/KeptTrees.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/PartMap.hpp"

namespace zelvo {

/// A package that has passed the gate, with all XML parts within the profile. Owns its parts.
class GeneratedPackage {
 public:
  /// Throws what the gate throws, then what the profile throws, and `Cancelled`.
  GeneratedPackage(ByteView bytes, OOXML::PackageAllowance allowance, const std::stop_token& stop);

  const PartMap& parts() const { return parts_; }
  bool contains(std::string_view name) const { return parts_.contains(name); }

  /// A parsed part, which must exist. Owns the tree if it had to be parsed again. Valid while the package
  /// lives.
  class ParsedPart {
   public:
    XMLNode root() const { return *root_; }

   private:
    friend class GeneratedPackage;
    std::optional<XMLTree> fallback_;
    std::optional<XMLNode> root_;
  };
  ParsedPart parsed(std::string_view name) const;

 private:
  PartMap parts_;
  OOXML::KeptTrees trees_;
};

}  // namespace zelvo
