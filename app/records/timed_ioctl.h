#pragma once

#include <cstdint>

namespace korvex {

/// Sends one request while a watcher tells on standard output that it takes long and gives up after a fixed time. 0
/// done in time, 3 done but late, 4 failed after the watcher gave up, -1 failed.
int utilTimedIoctl(std::uint32_t requestCode, void* argument);

} // namespace korvex
