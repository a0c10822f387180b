#pragma once

#include "platform/types.h"

#include <cstdint>

// Printing to the console. Standard output leaves in large writes and is flushed before every write to standard error,
// so that both streams in one file read in the order of events. errno is left as it was.

namespace korvex {

/// Streams of PrintToStream.
inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardError = 2;

/// Formatted text to standard output.
void Print(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Formatted text to standard error, after what standard output still held.
void PrintError(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Formatted text to kStandardOutput or kStandardError.
void PrintToStream(int stream, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Gives standard output its large buffer; called once, before anything is printed.
void SetUpConsole();

/// Lets out what standard output holds: before a wait, a prompt and at the end.
void FlushConsole();

} // namespace korvex
