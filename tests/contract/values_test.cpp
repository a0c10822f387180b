#include "platform/com.h"
#include "tests/contract/support/counted_object.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

// BSTR, VARIANT and SAFEARRAY.

namespace {

SAFEARRAY* MakeArray(VARTYPE type, ULONG elements, LONG lower = 0) {
  SAFEARRAYBOUND bound = {elements, lower};
  SAFEARRAY* array = SafeArrayCreate(type, 1, &bound);
  EXPECT_NE(nullptr, array);
  return array;
}

TEST(Bstr, TheBytesOfTheTextStandBeforeIt) {
  const std::pair<BSTR, std::wstring> rows[] = {
      {SysAllocString(L"a text"), L"a text"},
      {SysAllocString(L""), L""},
      {SysAllocStringLen(L"a\0b", 3), std::wstring(L"a\0b", 3)},
      {SysAllocStringLen(L"cut here", 3), L"cut"},
  };
  for (const auto& [text, content] : rows) {
    ASSERT_NE(nullptr, text);
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, sizeof(bytes));
    EXPECT_EQ(content.size() * sizeof(OLECHAR), bytes);
    EXPECT_EQ(content, std::wstring(text, SysStringLen(text)));
    EXPECT_EQ(L'\0', text[content.size()]);
    SysFreeString(text);
  }
}

TEST(Bstr, WithoutAText) {
  EXPECT_EQ(nullptr, SysAllocString(nullptr));
  EXPECT_EQ(0U, SysStringLen(nullptr));
  SysFreeString(nullptr);
  BSTR text = SysAllocStringLen(nullptr, 5);
  ASSERT_EQ(5U, SysStringLen(text));
  EXPECT_EQ(L'\0', text[5]);
  SysFreeString(text);
}

VARIANT Typed(unsigned type) {
  VARIANT variant;
  std::memset(&variant, 0, sizeof(variant));
  variant.vt = static_cast<VARTYPE>(type);
  return variant;
}

TEST(Variant, WhichTypesItMayHave) {
  const std::pair<HRESULT, std::vector<unsigned>> rows[] = {
      {S_OK,
       {VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R4, VT_R8, VT_BSTR, VT_BOOL, VT_UNKNOWN, VT_DISPATCH, VT_UI1, VT_UI4, 23,
        VT_ARRAY | VT_UNKNOWN, VT_ARRAY | VT_UI1}},
      {DISP_E_BADVARTYPE,
       {15, 24, 101, 0x0FFF, VT_ARRAY | VT_EMPTY, VT_ARRAY | VT_NULL, 0x1000 | VT_I4, 0x8000 | VT_I4, 0xFFFF}},
  };
  for (const auto& [result, types] : rows) {
    for (const unsigned type : types) {
      VARIANT source = Typed(type);
      VARIANT target = Typed(VT_NULL);
      EXPECT_EQ(result, VariantCopy(&target, &source)) << type;
      EXPECT_EQ(result == S_OK ? type : unsigned{VT_NULL}, target.vt);
      EXPECT_EQ(result, VariantClear(&source)) << type;
      EXPECT_EQ(result == S_OK ? unsigned{VT_EMPTY} : type, source.vt);
    }
  }
}

TEST(Variant, ValuesAreCopiedWhole) {
  VARIANT source = Typed(VT_R8);
  source.dblVal = 0.25;
  VARIANT target = Typed(VT_EMPTY);
  EXPECT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_EQ(S_OK, VariantCopy(&target, &target));
  EXPECT_EQ(0.25, target.dblVal);

  source = Typed(VT_BSTR);
  source.bstrVal = SysAllocStringLen(L"a\0b", 3);
  ASSERT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_NE(source.bstrVal, target.bstrVal);
  EXPECT_EQ(S_OK, VariantClear(&source));
  EXPECT_EQ(std::wstring(L"a\0b", 3), std::wstring(target.bstrVal, SysStringLen(target.bstrVal)));
  EXPECT_EQ(S_OK, VariantClear(&target));
}

TEST(Variant, ObjectsGainAndLoseReferences) {
  contract::CountedObject object;
  VARIANT source = Typed(VT_UNKNOWN);
  source.punkVal = &object;
  object.AddRef();
  VARIANT target = Typed(VT_EMPTY);
  EXPECT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_EQ(2U, object.references());
  EXPECT_EQ(S_OK, VariantClear(&source));

  source = Typed(VT_ARRAY | VT_UNKNOWN);
  source.parray = MakeArray(VT_UNKNOWN, 2);
  LONG first = 0;
  ASSERT_EQ(S_OK, SafeArrayPutElement(source.parray, &first, &object));
  EXPECT_EQ(2U, object.references());
  ASSERT_EQ(S_OK, VariantCopy(&target, &source)); // what the target held is released
  EXPECT_NE(source.parray, target.parray);
  EXPECT_EQ(2U, object.references());
  EXPECT_EQ(S_OK, VariantClear(&source));
  EXPECT_EQ(1U, object.references());
  EXPECT_EQ(S_OK, VariantClear(&target));
  EXPECT_EQ(0U, object.references());
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
    SAFEARRAY* array = MakeArray(row.type, row.elements, row.lower);
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

TEST(SafeArray, WrongArgumentsAndIndexes) {
  SAFEARRAY* array = MakeArray(VT_I4, 3, 10);
  LONG value = 7;
  void* data = nullptr;
  VARTYPE type = VT_EMPTY;
  EXPECT_EQ(nullptr, SafeArrayCreate(VT_EMPTY, 1, array->rgsabound));
  EXPECT_EQ(nullptr, SafeArrayCreate(VT_ARRAY | VT_I4, 1, array->rgsabound));
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
  SAFEARRAY* numbers = MakeArray(VT_I4, 3, 10);
  LONG value = 7;
  LONG index = 12;
  EXPECT_EQ(S_OK, SafeArrayPutElement(numbers, &index, &value));
  SAFEARRAY* texts = MakeArray(VT_BSTR, 2);
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
  SAFEARRAY* array = MakeArray(VT_UNKNOWN, 3);
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
  SAFEARRAY* array = MakeArray(VT_UI1, 4);
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
