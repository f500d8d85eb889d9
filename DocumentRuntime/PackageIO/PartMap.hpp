#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

/// One file of a package.
struct Part {
  std::string name;  ///< as stored, letter case kept, UTF-8
  ByteBuffer bytes;

  friend bool operator==(const Part&, const Part&) = default;
};

/// The parts of a package, in ascending byte order of their names, which is the order of their scalars.
/// Move-only; owns the bytes.
class PartMap {
 public:
  /// Takes parts in any order. Names must be unique.
  explicit PartMap(std::vector<Part> parts = {});

  /// Adds a part, or replaces the one of that name.
  void set(std::string name, ByteBuffer bytes);

  /// The bytes of a part. Null if there is no such part. Valid until the map is changed.
  const ByteBuffer* find(std::string_view name) const;
  bool contains(std::string_view name) const { return find(name) != nullptr; }

  std::size_t size() const { return parts_.size(); }
  auto begin() const { return parts_.begin(); }
  auto end() const { return parts_.end(); }

  friend bool operator==(const PartMap&, const PartMap&) = default;

 private:
  std::vector<Part> parts_;
};

}  // namespace zelvo
