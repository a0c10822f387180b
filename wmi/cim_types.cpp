#include "wmi/cim_types.h"

namespace korvex {
namespace {

struct CimTypeRow {
  std::uint32_t cimType;
  VARTYPE vartype;
};

constexpr CimTypeRow kCimTypes[] = {
    {CIM_EMPTY, VT_EMPTY},    {CIM_SINT16, VT_I2},      {CIM_SINT8, VT_I2},
    {CIM_CHAR16, VT_I2},      {CIM_SINT32, VT_I4},      {CIM_UINT16, VT_I4},
    {CIM_UINT32, VT_I4},      {CIM_REAL32, VT_R4},      {CIM_REAL64, VT_R8},
    {CIM_STRING, VT_BSTR},    {CIM_SINT64, VT_BSTR},    {CIM_UINT64, VT_BSTR},
    {CIM_DATETIME, VT_BSTR},  {CIM_REFERENCE, VT_BSTR}, {CIM_BOOLEAN, VT_BOOL},
    {CIM_OBJECT, VT_UNKNOWN}, {CIM_UINT8, VT_UI1},      {kCimObjectArray, kVtObjectArray},
};

enum class ValueKind { kNothing, kNumber, kText, kObject, kArray };

ValueKind KindOf(VARTYPE vartype) {
  if ((vartype & VT_ARRAY) != 0) {
    return ValueKind::kArray;
  }
  switch (vartype) {
  case VT_EMPTY:
  case VT_NULL:
    return ValueKind::kNothing;
  case VT_BSTR:
    return ValueKind::kText;
  case VT_UNKNOWN:
  case VT_DISPATCH:
    return ValueKind::kObject;
  default:
    return ValueKind::kNumber;
  }
}

} // namespace

std::optional<VARTYPE> VartypeOfCimType(std::uint32_t cimType) {
  for (const CimTypeRow& row : kCimTypes) {
    if (row.cimType == cimType) {
      return row.vartype;
    }
  }
  return std::nullopt;
}

bool AreOfOneKind(VARTYPE left, VARTYPE right) {
  return KindOf(left) == KindOf(right);
}

} // namespace korvex
