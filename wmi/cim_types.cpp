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

enum class ValueKind { kNothing, kNumber, kText, kObject, kOther };

ValueKind KindOf(VARTYPE vartype) {
  switch (vartype) {
  case VT_EMPTY:
  case VT_NULL:
    return ValueKind::kNothing;
  case VT_BSTR:
    return ValueKind::kText;
  case VT_UNKNOWN:
  case VT_DISPATCH:
    return ValueKind::kObject;
  case VT_I1:
  case VT_I2:
  case VT_I4:
  case VT_UI1:
  case VT_UI2:
  case VT_UI4:
  case VT_R4:
  case VT_R8:
  case VT_BOOL:
    return ValueKind::kNumber;
  default:
    return ValueKind::kOther;
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
  const ValueKind kind = KindOf(left);
  return kind == ValueKind::kOther ? left == right : kind == KindOf(right);
}

bool IsArrayOf(SAFEARRAY* array, VARTYPE elementType, std::int64_t count) {
  const ULONG elementBytes = elementType == VT_UI1 ? 1 : sizeof(void*);
  if (array->cDims != 1 || array->cbElements != elementBytes || count < 0 ||
      count > std::int64_t{array->rgsabound[0].cElements}) {
    return false;
  }
  // An array of interfaces says so in its features; its VARTYPE it need not tell.
  if (elementType == VT_UNKNOWN && (array->fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) != 0) {
    return true;
  }
  VARTYPE told = VT_EMPTY;
  return FAILED(SafeArrayGetVartype(array, &told)) || AreOfOneKind(told, elementType);
}

} // namespace korvex
