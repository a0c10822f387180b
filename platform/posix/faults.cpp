#include "platform/posix/faults.h"

#include "platform/posix/errno_guard.h"
#include "platform/posix/machine.h"
#include "platform/posix/machine_access.h"

#include <string>

namespace platform {

namespace {

void AppendUtf8(std::string& text, std::uint32_t character) {
  const auto tail = [character](unsigned shift) { return static_cast<char>(0x80U | ((character >> shift) & 0x3FU)); };
  if (character < 0x80U) {
    text += static_cast<char>(character);
  } else if (character < 0x800U) {
    text += static_cast<char>(0xC0U | (character >> 6U));
    text += tail(0);
  } else if (character < 0x10000U) {
    text += static_cast<char>(0xE0U | (character >> 12U));
    text += tail(6);
    text += tail(0);
  } else {
    text += static_cast<char>(0xF0U | (character >> 18U));
    text += tail(12);
    text += tail(6);
    text += tail(0);
  }
}

/// UTF-16 units as UTF-8; a lone surrogate becomes the replacement character.
std::string Utf8Of(const wchar_t* units) {
  std::string text;
  for (std::size_t at = 0; units[at] != L'\0'; ++at) {
    std::uint32_t unit = static_cast<std::uint32_t>(units[at]) & 0xFFFFU;
    const std::uint32_t next = static_cast<std::uint32_t>(units[at + 1]) & 0xFFFFU;
    if ((unit & 0xFC00U) == 0xD800U && (next & 0xFC00U) == 0xDC00U) {
      unit = 0x10000U + ((unit & 0x3FFU) << 10U) + (next & 0x3FFU);
      ++at;
    } else if ((unit & 0xF800U) == 0xD800U) {
      unit = 0xFFFDU;
    }
    AppendUtf8(text, unit);
  }
  return text;
}

} // namespace

std::optional<std::uint32_t> FaultOf(std::string_view operation, std::string_view target) noexcept {
  const ErrnoGuard guard;
  Machine* machine = MachineWithFaults();
  if (machine == nullptr) {
    return std::nullopt;
  }
  const MachineCode asking;
  return machine->TakeFault(operation, target);
}

TransferFault TransferFaultOf(std::string_view operation, std::string_view target) noexcept {
  const ErrnoGuard guard;
  Machine* machine = MachineWithFaults();
  if (machine == nullptr) {
    return {};
  }
  const MachineCode asking;
  return machine->TakeTransferFault(operation, target);
}

std::optional<std::uint32_t> FaultOf(std::string_view operation, const wchar_t* target) noexcept {
  const ErrnoGuard guard;
  if (MachineWithFaults() == nullptr) {
    return std::nullopt;
  }
  return FaultOf(operation, target == nullptr ? std::string() : Utf8Of(target));
}

} // namespace platform
