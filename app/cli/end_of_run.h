#pragma once

namespace korvex {

/// Frees what the run has left of the inventory's buffers and the driver version; each is none afterwards. The channel
/// stays: the system takes it back.
void FreeRunBuffers();

} // namespace korvex
