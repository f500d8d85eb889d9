#include "DocumentRuntime/Validation/GeneratedPackage.hpp"

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentProfile.hpp"

namespace zelvo {

GeneratedPackage::GeneratedPackage(ByteView bytes, OOXML::PackageAllowance allowance,
                                   const std::stop_token& stop) {
  // An error of the gate has priority over one of the profile, whichever part it is in.
  std::optional<DocumentError> outsideProfile;
  parts_ = OOXML::package(
      bytes, allowance,
      [&](std::string_view name, XMLTree& tree) {
        // Generated documents have lower-case extensions: other names are refused later, as unexpected parts.
        const bool isProfiled = name.ends_with(".xml") || name.ends_with(".rels");
        if (outsideProfile || !isProfiled) return;
        try {
          GeneratedDocumentProfile::check(tree.root());
        } catch (const DocumentError& error) {
          outsideProfile = error;
        }
        trees_.keep(name, tree);
      },
      stop);
  if (outsideProfile) throw DocumentError(*outsideProfile);
}

GeneratedPackage::ParsedPart GeneratedPackage::parsed(std::string_view name) const {
  ParsedPart part;
  part.root_ = trees_.root(name, *parts_.find(name), part.fallback_);
  return part;
}

}  // namespace zelvo
