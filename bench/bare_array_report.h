#pragma once

/// Takes all values of the extended report from the collection's stores and makes them ready: codes as texts, names as
/// text.
void ReadyArrayReport();

/// Writes the extended report's bytes from the ready values, with one call of the runtime library a line.
void PrintBareArrayReport();
