#include "tests/contract/support/system_under_test.h"

#ifdef _WIN32
#include <windows.h>

bool contract::RunsUnderWine() {
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
}
#else
#include "tests/contract/support/test_machine.h"

bool contract::RunsUnderWine() {
  return false;
}

std::unique_ptr<platform::Machine> platform::MakeMachine() {
  return contract::MakeTestMachine();
}
#endif
