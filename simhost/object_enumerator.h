#pragma once

#include "simhost/com_object.h"

#include <string>
#include <vector>

// IEnumWbemClassObject over objects of the repository.

namespace simhost {

/// The objects of one result; shared by an enumerator and its clones, none of which changes them.
struct ResultSet {
  std::wstring name; ///< the class or query, as faults name it
  std::vector<CimObject> objects;
  bool isForwardOnly = false;
};

class ObjectEnumerator final : public ComObject<IEnumWbemClassObject> {
public:
  ObjectEnumerator(std::shared_ptr<Host> host, std::shared_ptr<const ResultSet> results, std::size_t position = 0)
      : ComObject(std::move(host)), m_results(std::move(results)), m_position(position) {}

  HRESULT STDMETHODCALLTYPE Reset() override;
  HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) override;
  HRESULT STDMETHODCALLTYPE NextAsync(ULONG /*count*/, IWbemObjectSink* /*sink*/) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) override;
  HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) override;

private:
  ~ObjectEnumerator() override = default;

  std::shared_ptr<const ResultSet> m_results;
  std::mutex m_lock;
  std::size_t m_position;
};

} // namespace simhost
