#include "wmi/orb_wmi_common.h"

#include "wmi/category_trace.h"
#include "wmi/cim_types.h"

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kCommon};

} // namespace

wmiReturn OrbWmiCommon::Initialize() {
  WmiLayerTrace::Instance().Enable();
  const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  if (result != S_OK) {
    kTrace.Error("WMIRequestFailed(CoInitialize).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiCommon::InitializeSecurity() {
  const HRESULT result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT,
                                              RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
  if (result != S_OK && result != RPC_E_TOO_LATE) {
    kTrace.Error("WMIRequestFailed(CoInitializeSecurity).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiCommon::SetCimType(VARIANT& target, std::uint32_t cimType) {
  kTrace.Detail("SetCimType(CimType-0x%x;VarType-0x%x)\n", static_cast<unsigned>(cimType), target.vt);
  const std::optional<VARTYPE> vartype = VartypeOfCimType(cimType);
  if (!vartype) {
    return kWmiRequestFailed;
  }
  target.vt = *vartype;
  return kWmiSuccess;
}

std::int64_t OrbWmiCommon::WideToInt64(const wchar_t* text) {
  if (text == nullptr) {
    return 0;
  }
  if (*text == L'+') {
    ++text;
  }
  const bool isNegative = *text == L'-';
  if (isNegative) {
    ++text;
  }
  std::uint64_t value = 0;
  for (; *text >= L'0' && *text <= L'9'; ++text) {
    value = value * 10 + static_cast<std::uint64_t>(*text - L'0');
  }
  return static_cast<std::int64_t>(isNegative ? 0 - value : value);
}

} // namespace korvex
