#include "app/cli/end_of_run.h"

#include "app/channel/channel.h"
#include "app/inventory/gen2_stores.h"
#include "app/inventory/limits.h"
#include "app/inventory/path_information.h"
#include "platform/allocation.h"

#include <utility>

namespace korvex {

namespace {

template <class T>
void Free(T*& buffer) {
  platform::FreeStore(std::exchange(buffer, nullptr));
}

} // namespace

void FreeRunBuffers() {
  Free(gInterfaceTypes);
  Free(gTpgInfoBuffer);
  Free(gCntrlSlNumber);
  Free(gMpgInfoBuffer);
  Free(gDevInfoBuffer);
  Free(gLunWWN);
  Free(gModuleName);
  Free(gModuleWWN);
  Free(gPathInformation);
  Free(gDsmVersion);
  Free(gLunPathId);
  Free(gCntrlPathId);
  Free(gLunPathDevInfo);
}

} // namespace korvex
