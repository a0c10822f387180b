#pragma once

#include "platform/wbem.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_variant.h"
#include "wmi/store_ptr.h"
#include "wmi/wmi_return.h"

#include <cstdint>

namespace korvex {

/// Walks a class's instances, stands on one embedded object, or steps through an array of embedded objects; reads and
/// writes the properties of the object it stands on. The class must outlive it.
class OrbWmiEnumerator {
public:
  OrbWmiEnumerator() = default;
  ~OrbWmiEnumerator();
  OrbWmiEnumerator(const OrbWmiEnumerator&) = delete;
  OrbWmiEnumerator& operator=(const OrbWmiEnumerator&) = delete;

  /// Walks the class's instances, positioned on the first (none for a class without instances); 0, 1 or 5. What an
  /// earlier Initialize left is released first.
  wmiReturn Initialize(OrbWmiClass* elementClass);
  /// The embedded object that `variant` holds becomes the current instance; 0, 1 or 5. A holder without an object
  /// gives 1.
  wmiReturn Initialize(OrbWmiClass* elementClass, OrbWmiVariant* variant);
  /// A new instance of the class becomes the current instance; 0, 1 or 5.
  wmiReturn InitializeInputEnumerator(OrbWmiClass* elementClass);

  /// 0, 1, 2 at the end or 5.
  wmiReturn Next();
  /// Rewinds without moving onto the first instance; 0, 1 or 5.
  wmiReturn Reset();
  /// Reads a property into `buffer` of `length` bytes, zeroed first; 0, 1, 4, 5 or 7. `delivered`, where it is given,
  /// gets the number of bytes of a byte array, and 0 for anything else.
  wmiReturn GetProperty(const wchar_t* name, void* buffer, std::uint32_t length, std::uint32_t* delivered = nullptr);
  /// Writes a property of the current instance; 0, 1, 4 or 5. A number with fewer bytes than the property's type takes
  /// is refused with 1 (a uint16 takes 32 bits, or 16 as 2 or 3 bytes). For a property that holds an object or an array
  /// of objects the value is itself the interface or the array, and `length` must be a pointer's. An object's reference
  /// passes to this call unless the value is refused before it is put.
  wmiReturn SetProperty(const wchar_t* name, const void* value, std::uint32_t length);
  /// Saves the current instance; 0, 1 or 5.
  wmiReturn SaveProperties();
  /// A new enumerator, which the caller releases with platform::DeleteObject, over the array of embedded objects in a
  /// property; GetElement moves it. It owns its copy of the array. 0, 1, 4 or 5.
  wmiReturn InitArrayEnumerator(OrbWmiClass* elementClass, const wchar_t* propertyName,
                                OrbWmiEnumerator** enumeratorOut);
  /// Element `index`, counted from 0, becomes the current instance; 0, 1, 2 past the end or 5.
  wmiReturn GetElement(std::int32_t index);
  /// A new enumerator, which the caller releases with platform::DeleteObject, standing on the embedded object in a
  /// property; 0, 1, 4 or 5.
  wmiReturn InitUnknownEnumerator(const wchar_t* propertyName, OrbWmiEnumerator** enumeratorOut);
  /// Borrows the holder of an array of embedded objects; 0 or 5.
  wmiReturn SetVariant(OrbWmiVariant* variant);
  /// Borrowed; none when there is no current instance.
  IWbemClassObject* GetClassObjectInstance() const { return m_ClassObjectInstance; }
  /// The current instance as an IUnknown with a reference for the caller, or none.
  IUnknown* GetEnumeratorInterface();
  void cleanUp();

protected:
  /// The current instance's address for a call that fills it; what was held is released first.
  IWbemClassObject** PutInstance();
  /// A new instance of the class's definition becomes the current instance.
  HRESULT SpawnFrom(IWbemClassObject* definition);

  OrbWmiClass* m_Class = nullptr;
  IEnumWbemClassObject* m_ClassObjectEnumerator = nullptr;
  IWbemClassObject* m_ClassObjectInstance = nullptr;
  std::uint8_t m_IsCloned = 0;
  OrbWmiVariant* m_ArrayVariant = nullptr;

private:
  void ReleaseEnumerator();
  /// Takes the IWbemClassObject of an interface as the current instance.
  HRESULT StandOn(IUnknown* object);
  wmiReturn FillArrayEnumerator(StorePtr<OrbWmiEnumerator>& enumerator, OrbWmiClass* elementClass,
                                const wchar_t* propertyName);
  wmiReturn FillUnknownEnumerator(StorePtr<OrbWmiEnumerator>& enumerator, const wchar_t* propertyName);

  /// The holder behind m_ArrayVariant when it was made for this enumerator (InitArrayEnumerator).
  StorePtr<OrbWmiVariant> m_OwnedVariant;
};

} // namespace korvex
