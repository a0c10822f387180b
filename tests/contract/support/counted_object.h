#pragma once

#include "platform/com.h"

namespace contract {

/// A COM object that lives on the test's stack and tells how many references are out.
class CountedObject : public IUnknown {
public:
  virtual ~CountedObject() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    *object = IsEqualIID(riid, IID_IUnknown) ? this : nullptr;
    if (*object == nullptr) {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

  ULONG references() const { return m_references; }

private:
  ULONG m_references = 0;
};

} // namespace contract
