#pragma once

// Where the contract tests run, and what they need of it. The only place of these tests that knows which system it is
// on.

namespace contract {

/// Whether the program runs under Wine, whose known deviations the tables mark.
bool RunsUnderWine();

} // namespace contract
