#include "simhost/host.h"

namespace simhost {

std::span<const HostSection> HostSections() {
  return {};
}

} // namespace simhost
