#include "wmi/orb_wmi_class.h"

#include "platform/allocation.h"
#include "platform/com_owners.h"
#include "wmi/call_status.h"
#include "wmi/category_trace.h"
#include "wmi/enumerator_security.h"
#include "wmi/text_copy.h"

#include <utility>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kClass};

/// A copy of a credential, which may be none.
bool CopyCredential(const wchar_t* text, wchar_t*& copy) {
  if (text == nullptr) {
    return true;
  }
  std::size_t length = 0;
  if (FAILED(MeasureWideText(text, length))) {
    return false;
  }
  copy = AllocateWideText("OrbWmiClass credentials", length);
  return copy != nullptr && SUCCEEDED(CopyWideText(copy, length + 1, text));
}

} // namespace

OrbWmiClass::~OrbWmiClass() {
  cleanUp();
}

wmiReturn OrbWmiClass::Initialize(OrbWmiConnection& connection, const wchar_t* className) {
  ReleaseClass();
  m_QueryInstance = 0;
  if (connection.IsConnected() == 0) {
    return kWmiNoConnection;
  }
  m_Connection = &connection;
  if (className == nullptr) {
    return kWmiSuccess;
  }
  const platform::Bstr name(className);
  if (!name) {
    kTrace.Error("MemoryAllocationFailed(SysAllocString)\n");
    return kWmiOutOfMemory;
  }
  IWbemServices* services = connection.GetServices();
  if (services == nullptr) {
    return kWmiRequestFailed;
  }

  HRESULT result = services->GetObject(name.get(), 0, nullptr, &m_ClassObject, nullptr);
  if (FAILED(result) || m_ClassObject == nullptr) {
    kTrace.Error("WMIRequestFailed(GetObject).  Error 0x%x\n", Hex(result));
    return result == WBEM_E_NOT_FOUND ? kWmiClassNotFound : StatusOfFailure(result);
  }
  result = services->CreateInstanceEnum(name.get(), WBEM_FLAG_SHALLOW, nullptr, &m_InstanceEnumerator);
  if (FAILED(result) || m_InstanceEnumerator == nullptr) {
    kTrace.Error("WMIRequestFailed(CreateInstanceEnum).  Error 0x%x\n", Hex(result));
    return StatusOfFailure(result);
  }
  return SecureInstances(services);
}

wmiReturn OrbWmiClass::SecureInstances(IWbemServices* services) {
  if (m_Connection->IsSecured() == 0) {
    return kWmiSuccess;
  }
  const HRESULT result =
      SetEnumeratorSecurity(services, m_InstanceEnumerator, m_Authority, m_User, m_Password, m_AuthnLevel, m_ImpLevel);
  if (FAILED(result)) {
    kTrace.Error("AuthorizationFailed.  Error 0x%x\n", Hex(result));
    return StatusOfFailure(result);
  }
  return kWmiSuccess;
}

IEnumWbemClassObject* OrbWmiClass::GetInstanceEnumerator(std::uint8_t& isClonedOut) {
  isClonedOut = 0;
  if (m_QueryInstance != 0 || m_InstanceEnumerator == nullptr) {
    return m_InstanceEnumerator;
  }
  IEnumWbemClassObject* clone = nullptr;
  const HRESULT result = m_InstanceEnumerator->Clone(&clone);
  if (FAILED(result) || clone == nullptr) {
    kTrace.Error("WMIRequestFailed(GetInstanceEnumerator)-Clone.  Error 0x%x\n", Hex(result));
    return nullptr;
  }
  isClonedOut = 1;
  return clone;
}

IWbemServices* OrbWmiClass::GetServices() const {
  return m_Connection == nullptr ? nullptr : m_Connection->GetServices();
}

void OrbWmiClass::setQueryInstance(IEnumWbemClassObject* enumerator) {
  if (m_InstanceEnumerator != nullptr) {
    m_InstanceEnumerator->Release();
  }
  m_InstanceEnumerator = enumerator;
  kTrace.Detail("setQueryInstance %s\n", PointerText(enumerator).c_str());
  m_QueryInstance = 1;
}

wmiReturn OrbWmiClass::SetCredentials(const wchar_t* authority, const wchar_t* user, const wchar_t* password,
                                      DWORD authnLevel, DWORD impLevel) {
  wchar_t* newAuthority = nullptr;
  wchar_t* newUser = nullptr;
  wchar_t* newPassword = nullptr;
  if (!CopyCredential(authority, newAuthority) || !CopyCredential(user, newUser) ||
      !CopyCredential(password, newPassword)) {
    platform::FreeStore(newAuthority);
    platform::FreeStore(newUser);
    platform::FreeStore(newPassword);
    return kWmiOutOfMemory;
  }
  platform::FreeStore(std::exchange(m_Authority, newAuthority));
  platform::FreeStore(std::exchange(m_User, newUser));
  platform::FreeStore(std::exchange(m_Password, newPassword));
  m_AuthnLevel = authnLevel;
  m_ImpLevel = impLevel;
  return kWmiSuccess;
}

void OrbWmiClass::cleanUp() {
  kTrace.Detail("cleanUp\n");
  platform::FreeStore(std::exchange(m_Authority, nullptr));
  platform::FreeStore(std::exchange(m_User, nullptr));
  platform::FreeStore(std::exchange(m_Password, nullptr));
  ReleaseClass();
}

void OrbWmiClass::ReleaseClass() {
  if (IEnumWbemClassObject* instances = std::exchange(m_InstanceEnumerator, nullptr); instances != nullptr) {
    instances->Release();
  }
  if (IWbemClassObject* definition = std::exchange(m_ClassObject, nullptr); definition != nullptr) {
    definition->Release();
  }
}

} // namespace korvex
