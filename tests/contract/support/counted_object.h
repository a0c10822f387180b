#pragma once

#include "platform/com.h"

namespace contract {

/// A COM object that lives on the test's stack and tells how many references are out.
template <class Interface>
class Counted : public Interface {
public:
  explicit Counted(REFIID iid) : m_iid(iid) {}
  virtual ~Counted() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    *object = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, m_iid) ? this : nullptr;
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
  IID m_iid;
  ULONG m_references = 0;
};

/// One that has no interface of its own.
class CountedObject : public Counted<IUnknown> {
public:
  CountedObject() : Counted(IID_IUnknown) {}
};

} // namespace contract
