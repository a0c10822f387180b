#include "simhost/host_sections.h"

namespace simhost {

std::span<const HostSection> HostSections() {
  // The version class follows from the DSMs and the framework's drives from the disks unless they are described.
  static constexpr HostSection kSections[] = {
      {"dsms", &BuildDrivers},      {"interfaceVersion", &BuildInterfaceVersion},
      {"disks", &BuildDisks},       {"mpio", &BuildFramework},
      {"registry", &BuildRegistry},
  };
  return kSections;
}

} // namespace simhost
