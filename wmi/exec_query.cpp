#include "platform/allocation.h"
#include "platform/com_owners.h"
#include "wmi/call_status.h"
#include "wmi/category_trace.h"
#include "wmi/orb_wmi_request.h"

// The execution of a query request.

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kRequest};

} // namespace

wmiReturn OrbWmiRequest::ExecQuery(OrbWmiEnumerator** enumeratorOut) {
  if (enumeratorOut == nullptr) {
    return kWmiNotDefined;
  }
  *enumeratorOut = nullptr;
  IWbemServices* services = m_Class == nullptr ? nullptr : m_Class->GetServices();
  if (services == nullptr) {
    kTrace.Error("NoServiceConnection(OrbRequest)\n");
    return kWmiNotDefined;
  }
  if (m_Text == nullptr) {
    kTrace.Error("NoRequestDefined(OrbRequest)\n");
    return kWmiNotDefined;
  }
  const platform::Bstr language(L"WQL");
  const platform::Bstr query(m_Text);
  if (!language || !query) {
    return kWmiOutOfMemory;
  }
  platform::ComPtr<IEnumWbemClassObject> results;
  const HRESULT result =
      services->ExecQuery(language.get(), query.get(), WBEM_FLAG_FORWARD_ONLY, nullptr, results.put());
  if (FAILED(result)) {
    kTrace.Error("WmiRequestFailed(ExecQuery).  Error 0x%x\n", Hex(result));
    return StatusOfFailure(result);
  }
  StorePtr<OrbWmiEnumerator> enumerator(platform::NewObject<OrbWmiEnumerator>("OrbWmiEnumerator"));
  if (enumerator == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiEnumerator)-ExecQuery\n");
    return kWmiOutOfMemory;
  }
  kTrace.Detail("enumClassObject %s\n", PointerText(results.get()).c_str());
  m_Class->setQueryInstance(results.detach());
  const wmiReturn status = enumerator->Initialize(m_Class);
  if (status != kWmiSuccess) {
    enumerator.reset();
    kTrace.Error("InitializationFailed(OrbWmiEnumerator)-ExecQuery\n");
    return status;
  }
  *enumeratorOut = enumerator.release();
  return kWmiSuccess;
}

} // namespace korvex
