#pragma once

namespace korvex {

/// Carries out -o with gOptionArgument: shows the DSM's options, or sends what the argument asks for and tells the
/// DSM's verdict on each. 1, 0 when nothing could be sent, -1 when the request failed.
int ProcessFeatureOptions();

} // namespace korvex
