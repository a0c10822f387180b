#include "wmi/orb_wmi_connection.h"

#include "wmi/category_trace.h"

#include <utility>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kConnection};

} // namespace

OrbWmiConnection::~OrbWmiConnection() {
  cleanUp();
  ReleaseAll();
}

wmiReturn OrbWmiConnection::Initialize(const wchar_t* nameSpace) {
  if (nameSpace == nullptr) {
    return kWmiNotDefined;
  }
  ReleaseAll();
  m_Connected = 0;
  m_Secured = 0;

  m_Namespace = SysAllocString(nameSpace);
  if (m_Namespace == nullptr) {
    kTrace.Error("MemoryAllocationFailed(SysAllocString)\n");
    return kWmiOutOfMemory;
  }
  HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                    reinterpret_cast<void**>(&m_Locator));
  if (FAILED(result) || m_Locator == nullptr) {
    FreeNamespace();
    kTrace.Error("WMIRequestFailed(CoCreateInstance).  Error 0x%x\n", Hex(result));
    return kWmiNoConnection;
  }
  result = m_Locator->ConnectServer(m_Namespace, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &m_Services);
  if (FAILED(result) || m_Services == nullptr) {
    ReleaseLocator();
    FreeNamespace();
    kTrace.Error("WMIRequestFailed(ConnectServer).  Error 0x%x\n", Hex(result));
    return kWmiNoConnection;
  }
  m_Connected = 1;
  return kWmiSuccess;
}

wmiReturn OrbWmiConnection::SetSecurity() {
  HRESULT result = E_INVALIDARG;
  if (m_Services != nullptr) {
    result = CoSetProxyBlanket(m_Services, RPC_C_AUTHN_DEFAULT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                               RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
  }
  if (FAILED(result)) {
    ReleaseLocator();
    FreeNamespace();
    kTrace.Error("WMIRequestFailed(ConnectServer).  Error 0x%x\n", Hex(result));
    return kWmiNoConnection;
  }
  m_Secured = 1;
  return kWmiSuccess;
}

void OrbWmiConnection::CloseConnection() {
  kTrace.Detail("CloseConnection\n");
  ReleaseAll();
  m_Connected = 0;
}

void OrbWmiConnection::cleanUp() {
  kTrace.Detail("cleanUp\n");
  if (m_Connected != 0) {
    CloseConnection();
  }
  FreeNamespace();
}

void OrbWmiConnection::ReleaseAll() {
  FreeNamespace();
  IWbemServices* services = std::exchange(m_Services, nullptr);
  if (services != nullptr) {
    services->Release();
  }
  ReleaseLocator();
}

void OrbWmiConnection::FreeNamespace() {
  SysFreeString(std::exchange(m_Namespace, nullptr));
}

void OrbWmiConnection::ReleaseLocator() {
  IWbemLocator* locator = std::exchange(m_Locator, nullptr);
  if (locator != nullptr) {
    locator->Release();
  }
}

} // namespace korvex
