#pragma once

#include "platform/handles.h"
#include "platform/types.h"

// Threads. Their waits are the machine's (Sleep).

#ifndef _WIN32
using LPVOID = void*;
using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID argument);

/// Starts a thread that runs `start(argument)`; `security` is none, `stackSize` and `flags` are 0, `threadId` may be
/// none. None with the last error when it cannot be started. Close the handle with CloseHandle, the thread goes on.
HANDLE CreateThread(void* security, std::size_t stackSize, LPTHREAD_START_ROUTINE start, LPVOID argument, DWORD flags,
                    DWORD* threadId);
#endif
