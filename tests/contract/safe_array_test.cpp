#include "platform/com.h"
#include "tests/contract/support/counted_object.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <tuple>
#include <vector>

namespace {

SAFEARRAY* Make(VARTYPE type, ULONG elements, LONG lower = 0) {
  SAFEARRAYBOUND bound = {elements, lower};
  SAFEARRAY* array = SafeArrayCreate(type, 1, &bound);
  EXPECT_NE(nullptr, array);
  return array;
}

TEST(SafeArray, BoundsTypeAndElementSize) {
  struct {
    VARTYPE type;
    ULONG elements;
    LONG lower;
    LONG upper;
    ULONG elementBytes;
  } const rows[] = {{VT_UI1, 5, 0, 4, 1}, {VT_I2, 1, 7, 7, 2}, {VT_BOOL, 3, 0, 2, 2},
                    {VT_I4, 4, -2, 1, 4}, {VT_R8, 2, 1, 2, 8}, {VT_BSTR, 2, 0, 1, 8},
                    {VT_I4, 0, 0, -1, 4}, {VT_I4, 0, 5, 4, 4}, {VT_UNKNOWN, 9, 0, 8, 8}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    SAFEARRAY* array = Make(row.type, row.elements, row.lower);
    LONG lower = 99;
    LONG upper = 99;
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetLBound(array, 1, &lower));
    EXPECT_EQ(S_OK, SafeArrayGetUBound(array, 1, &upper));
    EXPECT_EQ(S_OK, SafeArrayGetVartype(array, &type));
    EXPECT_EQ(std::tuple(row.lower, row.upper, row.type), std::tuple(lower, upper, type));
    EXPECT_EQ(row.elementBytes, array->cbElements);
    EXPECT_EQ(row.elements, array->rgsabound[0].cElements);
    EXPECT_EQ(S_OK, SafeArrayDestroy(array));
  }
}

TEST(SafeArray, WhatCannotBeMade) {
  SAFEARRAYBOUND bound = {1, 0};
  for (const int type : {int{VT_EMPTY}, int{VT_NULL}, 15, VT_ARRAY | VT_I4}) {
    EXPECT_EQ(nullptr, SafeArrayCreate(static_cast<VARTYPE>(type), 1, &bound)) << type;
  }
  EXPECT_EQ(nullptr, SafeArrayCreate(VT_I4, 0, &bound));
  EXPECT_EQ(nullptr, SafeArrayCreate(VT_I4, 1, nullptr));
}

TEST(SafeArray, WrongArgumentsAndIndexes) {
  SAFEARRAY* array = Make(VT_I4, 3, 10);
  LONG value = 7;
  void* data = nullptr;
  VARTYPE type = VT_EMPTY;
  EXPECT_EQ(E_INVALIDARG, SafeArrayGetLBound(nullptr, 1, &value));
  EXPECT_EQ(E_INVALIDARG, SafeArrayGetUBound(nullptr, 1, &value));
  EXPECT_EQ(E_INVALIDARG, SafeArrayAccessData(nullptr, &data));
  EXPECT_EQ(E_INVALIDARG, SafeArrayUnaccessData(nullptr));
  EXPECT_EQ(E_INVALIDARG, SafeArrayGetVartype(nullptr, &type));
  EXPECT_EQ(E_UNEXPECTED, SafeArrayUnaccessData(array)); // not accessed
  for (const UINT dimension : {0U, 2U}) {
    EXPECT_EQ(DISP_E_BADINDEX, SafeArrayGetLBound(array, dimension, &value));
    EXPECT_EQ(DISP_E_BADINDEX, SafeArrayGetUBound(array, dimension, &value));
  }
  for (LONG index : {LONG{0}, LONG{9}, LONG{13}, LONG{-1}}) {
    EXPECT_EQ(DISP_E_BADINDEX, SafeArrayPutElement(array, &index, &value)) << index;
  }
  EXPECT_EQ(S_OK, SafeArrayDestroy(array));
}

TEST(SafeArray, ElementsStartAsZeroAndAreCopied) {
  SAFEARRAY* numbers = Make(VT_I4, 3, 10);
  LONG value = 7;
  LONG index = 12;
  EXPECT_EQ(S_OK, SafeArrayPutElement(numbers, &index, &value));
  SAFEARRAY* texts = Make(VT_BSTR, 2);
  BSTR text = SysAllocString(L"first");
  index = 0;
  EXPECT_EQ(S_OK, SafeArrayPutElement(texts, &index, text));
  EXPECT_EQ(S_OK, SafeArrayPutElement(texts, &index, text)); // in place of the one there
  SAFEARRAY* copy = nullptr;
  ASSERT_EQ(S_OK, SafeArrayCopy(texts, &copy));
  EXPECT_EQ(S_OK, SafeArrayDestroy(texts));

  void* data = nullptr;
  ASSERT_EQ(S_OK, SafeArrayAccessData(numbers, &data));
  const auto* plain = static_cast<const LONG*>(data);
  EXPECT_EQ(std::vector<LONG>({0, 0, 7}), std::vector<LONG>(plain, plain + 3));
  ASSERT_EQ(S_OK, SafeArrayAccessData(copy, &data));
  BSTR* elements = static_cast<BSTR*>(data);
  EXPECT_NE(text, elements[0]);
  EXPECT_STREQ(L"first", elements[0]);
  EXPECT_EQ(nullptr, elements[1]);
  SysFreeString(text);
  for (SAFEARRAY* array : {numbers, copy}) {
    EXPECT_EQ(S_OK, SafeArrayUnaccessData(array));
    EXPECT_EQ(S_OK, SafeArrayDestroy(array));
  }
}

TEST(SafeArray, InterfacesAreReferenced) {
  contract::CountedObject first;
  contract::CountedObject second;
  SAFEARRAY* array = Make(VT_UNKNOWN, 3);
  LONG index = 1;
  EXPECT_EQ(S_OK, SafeArrayPutElement(array, &index, &first));
  EXPECT_EQ(1U, first.references());
  EXPECT_EQ(S_OK, SafeArrayPutElement(array, &index, &second));
  EXPECT_EQ(0U, first.references());
  EXPECT_EQ(1U, second.references());
  EXPECT_EQ(S_OK, SafeArrayDestroy(array));
  EXPECT_EQ(0U, second.references());
}

TEST(SafeArray, AccessLocksAndEachAccessIsUndone) {
  SAFEARRAY* array = Make(VT_UI1, 4);
  void* first = nullptr;
  void* second = nullptr;
  EXPECT_EQ(S_OK, SafeArrayAccessData(array, &first));
  EXPECT_EQ(S_OK, SafeArrayAccessData(array, &second));
  EXPECT_EQ(first, second);
  EXPECT_EQ(2U, array->cLocks);
  EXPECT_EQ(DISP_E_ARRAYISLOCKED, SafeArrayDestroy(array));
  EXPECT_EQ(S_OK, SafeArrayUnaccessData(array));
  EXPECT_EQ(DISP_E_ARRAYISLOCKED, SafeArrayDestroy(array));
  EXPECT_EQ(S_OK, SafeArrayUnaccessData(array));
  EXPECT_EQ(S_OK, SafeArrayDestroy(array));
}

} // namespace
