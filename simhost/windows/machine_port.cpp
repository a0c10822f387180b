#include "platform/posix/machine.h"

// What the simulated host asks of the platform that it is the machine of. On Windows the platform is the operating
// system itself: it asks no machine for faults and keeps no accounts of its objects.

namespace platform {

MachineCode::MachineCode() noexcept = default;
MachineCode::~MachineCode() = default;

LiveObjects CountLiveObjects() {
  return {};
}

void VisitLiveStores(void (* /*visit*/)(const char* storeName, std::uint64_t count, void* context), void* /*context*/) {
}

} // namespace platform
