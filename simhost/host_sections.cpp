#include "simhost/host_sections.h"

namespace simhost {

std::span<const HostSection> HostSections() {
  // The version class follows from the DSMs unless it is described.
  static constexpr HostSection kSections[] = {
      {"dsms", &BuildDrivers},
      {"interfaceVersion", &BuildInterfaceVersion},
      {"mpio", &BuildFramework},
  };
  return kSections;
}

} // namespace simhost
