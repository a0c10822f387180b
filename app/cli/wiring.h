#pragma once

namespace korvex {

/// Hands the lower rooms the functions of the higher ones that they call; once per process is enough.
void ConnectRooms();

} // namespace korvex
