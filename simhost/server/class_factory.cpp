#include "simhost/host_files.h"
#include "simhost/services.h"
#include "simhost/text.h"

#include <array>
#include <new>

// The simulated host as an in-process COM server for the WMI locator. It reads its description beside the program that
// it is loaded into.

namespace simhost {

namespace {

std::filesystem::path ProgramDirectory() {
  std::array<wchar_t, 32768> path;
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return std::filesystem::path(std::wstring_view(path.data(), length)).parent_path();
}

std::wstring RealComputerName() {
  std::array<wchar_t, 256> name;
  auto length = static_cast<DWORD>(name.size());
  return GetComputerNameExW(ComputerNameDnsHostname, name.data(), &length) ? std::wstring(name.data(), length)
                                                                           : L"localhost";
}

/// The host of this process; never destroyed, as the program's objects outlive its threads.
const std::shared_ptr<Host>& TheHost() {
  static const std::shared_ptr<Host>& host = *new std::shared_ptr<Host>([] {
    const std::filesystem::path directory = ProgramDirectory();
    PrepareAudit(directory);
    return HostOfDirectory(directory, RealComputerName());
  }());
  return host;
}

/// Makes locators; one for the whole process, without a count of references.
class LocatorFactory final : public IClassFactory {
public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    const bool known = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    const CallScope scope;
    try {
      auto* locator = new Locator(simhost::TheHost());
      const HRESULT result = locator->QueryInterface(riid, object);
      locator->Release();
      return result;
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (const std::exception& error) {
      Refuse(error.what());
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }
};

} // namespace

} // namespace simhost

/// Called by COM for each class that the registry ascribes to this library.
extern "C" __declspec(dllexport) HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID riid, void** object) {
  if (!IsEqualGUID(classId, CLSID_WbemLocator)) {
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  static simhost::LocatorFactory factory;
  return factory.QueryInterface(riid, object);
}
