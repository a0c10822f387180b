#include "simhost/object_enumerator.h"

#include "simhost/class_object.h"

#include <algorithm>

namespace simhost {

HRESULT ObjectEnumerator::Reset() {
  return Carry(OperationIndex("Reset"), m_results->name, {}, [&]() -> HRESULT {
    if (m_results->isForwardOnly) {
      return WBEM_E_INVALID_OPERATION;
    }
    const std::scoped_lock lock(m_lock);
    m_position = 0;
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ObjectEnumerator::Next(LONG /*timeout*/, ULONG count, IWbemClassObject** objects, ULONG* returned) {
  if (objects != nullptr) {
    std::fill_n(objects, count, nullptr);
  }
  if (returned != nullptr) {
    *returned = 0;
  }
  return Carry(OperationIndex("Next"), m_results->name, {}, [&]() -> HRESULT {
    if (objects == nullptr || returned == nullptr || count == 0) {
      return WBEM_E_INVALID_PARAMETER;
    }
    const std::scoped_lock lock(m_lock);
    const std::vector<CimObject>& results = m_results->objects;
    while (*returned < count && m_position < results.size()) {
      objects[*returned] = MakeClassObject(TheHost(), results[m_position]);
      ++*returned;
      ++m_position;
    }
    return *returned == count ? WBEM_S_NO_ERROR : WBEM_S_FALSE;
  });
}

HRESULT ObjectEnumerator::Clone(IEnumWbemClassObject** copy) {
  if (copy != nullptr) {
    *copy = nullptr;
  }
  return Carry(OperationIndex("Clone"), m_results->name, {}, [&]() -> HRESULT {
    if (copy == nullptr) {
      return WBEM_E_INVALID_PARAMETER;
    }
    if (m_results->isForwardOnly) {
      return WBEM_E_INVALID_OPERATION;
    }
    const std::scoped_lock lock(m_lock);
    *copy = new ObjectEnumerator(TheHost(), m_results, m_position);
    return WBEM_S_NO_ERROR;
  });
}

HRESULT ObjectEnumerator::Skip(LONG /*timeout*/, ULONG count) {
  return Carry(OperationIndex("Skip"), m_results->name, {}, [&]() -> HRESULT {
    const std::scoped_lock lock(m_lock);
    const std::size_t left = m_results->objects.size() - m_position;
    m_position += std::min<std::size_t>(count, left);
    return count <= left ? WBEM_S_NO_ERROR : WBEM_S_FALSE;
  });
}

} // namespace simhost
