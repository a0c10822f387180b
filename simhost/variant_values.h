#pragma once

#include "simhost/cim.h"

#include <functional>

// CIM values as VARIANTs, as the WMI service maps them.

namespace simhost {

/// Makes the COM object of an embedded object; the caller owns the reference.
using MakeObject = std::function<IUnknown*(const CimObject&)>;
/// The object behind an interface that the host handed out; none for any other and for none.
using FindObject = std::function<ObjectRef(IUnknown*)>;

/// Fills `variant`, whatever it held, with the value in the VARTYPE of its CIM type: uint8 VT_UI1; sint8, sint16 and
/// char16 VT_I2; uint16, sint32 and uint32 VT_I4; 64-bit numbers VT_BSTR in decimal; reals VT_R4 and VT_R8; boolean
/// VT_BOOL; texts VT_BSTR; objects VT_UNKNOWN; arrays VT_ARRAY with the element's VARTYPE, from index 0; no value
/// VT_NULL. WBEM_E_OUT_OF_MEMORY leaves it alone.
HRESULT VariantFromValue(const CimValue& value, CIMTYPE type, const MakeObject& makeObject, VARIANT& variant);

/// What Put makes of a VARIANT for a property of that type.
struct PutValue {
  HRESULT result = WBEM_S_NO_ERROR; ///< WBEM_E_TYPE_MISMATCH for what cannot be coerced
  CimValue value;
  bool isCoerced = false; ///< taken, though the documentation does not promise that VARTYPE for that type
};

/// The documented VARTYPEs are those of VariantFromValue, and VT_NULL for no value; 64-bit numbers may be decimal or
/// "0x" and hexadecimal. Beyond them numbers within the range, in any integer VARTYPE, as decimal texts or as the other
/// real type, are coerced.
PutValue ValueFromVariant(const VARIANT& variant, const PropertyDefinition& property, const FindObject& findObject);

} // namespace simhost
