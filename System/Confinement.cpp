#include "System/Confinement.hpp"

namespace zelvo {

void warmUpUnwinder() {
  struct FirstThrow {};
  try {
    throw FirstThrow();
  } catch (const FirstThrow&) {
    return;
  }
}

}  // namespace zelvo
