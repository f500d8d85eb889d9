#include "DocumentRuntime/PackageIO/PartMap.hpp"

#include <algorithm>
#include <utility>

namespace zelvo {
namespace {

// Strings compare `char` as unsigned, so `<` is byte order.
bool nameIsBefore(const Part& part, std::string_view name) {
  return part.name < name;
}

}  // namespace

PartMap::PartMap(std::vector<Part> parts) : parts_(std::move(parts)) {
  std::sort(parts_.begin(), parts_.end(), [](const Part& a, const Part& b) { return a.name < b.name; });
}

void PartMap::set(std::string name, ByteBuffer bytes) {
  const auto place = std::lower_bound(parts_.begin(), parts_.end(), name, nameIsBefore);
  if (place != parts_.end() && place->name == name) {
    place->bytes = std::move(bytes);
  } else {
    parts_.insert(place, Part{std::move(name), std::move(bytes)});
  }
}

const ByteBuffer* PartMap::find(std::string_view name) const {
  const auto place = std::lower_bound(parts_.begin(), parts_.end(), name, nameIsBefore);
  return place != parts_.end() && place->name == name ? &place->bytes : nullptr;
}

}  // namespace zelvo
