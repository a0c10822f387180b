#include "platform/com.h"
#include "tests/contract/support/counted_object.h"
#include "tests/contract/support/system_under_test.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

// BSTR and VARIANT.

namespace {

using contract::CountedObject;

TEST(Bstr, TheBytesOfTheTextStandBeforeIt) {
  struct {
    BSTR text;
    std::wstring content;
  } const rows[] = {
      {SysAllocString(L"a text"), L"a text"},
      {SysAllocString(L""), L""},
      {SysAllocStringLen(L"a\0b", 3), std::wstring(L"a\0b", 3)},
      {SysAllocStringLen(L"cut here", 3), L"cut"},
      {SysAllocStringLen(L"", 0), L""},
  };
  for (const auto& row : rows) {
    ASSERT_NE(nullptr, row.text);
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(row.text) - 4, sizeof(bytes));
    EXPECT_EQ(row.content.size() * sizeof(OLECHAR), bytes);
    EXPECT_EQ(row.content.size(), SysStringLen(row.text));
    EXPECT_EQ(row.content, std::wstring(row.text, SysStringLen(row.text)));
    EXPECT_EQ(L'\0', row.text[row.content.size()]);
    SysFreeString(row.text);
  }
}

TEST(Bstr, None) {
  EXPECT_EQ(nullptr, SysAllocString(nullptr));
  EXPECT_EQ(0U, SysStringLen(nullptr));
  SysFreeString(nullptr);
}

TEST(Bstr, WithoutATextToCopyItIsTerminatedAllTheSame) {
  BSTR text = SysAllocStringLen(nullptr, 5);
  ASSERT_NE(nullptr, text);
  EXPECT_EQ(5U, SysStringLen(text));
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
  struct {
    unsigned type;
    HRESULT result;
  } const rows[] = {
      {VT_EMPTY, S_OK},
      {VT_NULL, S_OK},
      {VT_I2, S_OK},
      {VT_I4, S_OK},
      {VT_R4, S_OK},
      {VT_R8, S_OK},
      {VT_BSTR, S_OK},
      {VT_BOOL, S_OK},
      {VT_UNKNOWN, S_OK},
      {VT_DISPATCH, S_OK},
      {VT_UI1, S_OK},
      {VT_UI4, S_OK},
      {23, S_OK},
      {VT_ARRAY | VT_UNKNOWN, S_OK},
      {VT_ARRAY | VT_UI1, S_OK},
      {15, DISP_E_BADVARTYPE},
      {24, DISP_E_BADVARTYPE},
      {101, DISP_E_BADVARTYPE},
      {0x0FFF, DISP_E_BADVARTYPE},
      {VT_ARRAY | VT_EMPTY, DISP_E_BADVARTYPE},
      {VT_ARRAY | VT_NULL, DISP_E_BADVARTYPE},
      {0x1000 | VT_I4, DISP_E_BADVARTYPE},
      {0x8000 | VT_I4, DISP_E_BADVARTYPE},
      {0xFFFF, DISP_E_BADVARTYPE},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.type);
    VARIANT variant = Typed(row.type);
    EXPECT_EQ(row.result, VariantClear(&variant));
    EXPECT_EQ(row.result == S_OK ? unsigned{VT_EMPTY} : row.type, variant.vt);
    VARIANT source = Typed(row.type);
    VARIANT target = Typed(VT_NULL);
    EXPECT_EQ(row.result, VariantCopy(&target, &source));
    EXPECT_EQ(row.result == S_OK ? row.type : unsigned{VT_NULL}, target.vt);
  }
}

TEST(Variant, PlainValuesAreCopied) {
  VARIANT source = Typed(VT_R8);
  source.dblVal = 0.25;
  VARIANT target = Typed(VT_EMPTY);
  EXPECT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_EQ(0.25, target.dblVal);
  EXPECT_EQ(S_OK, VariantCopy(&target, &target));
  EXPECT_EQ(0.25, target.dblVal);
}

TEST(Variant, ATextIsCopiedWithItsWholeLength) {
  VARIANT source = Typed(VT_BSTR);
  source.bstrVal = SysAllocStringLen(L"a\0b", 3);
  VARIANT target = Typed(VT_EMPTY);
  ASSERT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_NE(source.bstrVal, target.bstrVal);
  EXPECT_EQ(std::wstring(L"a\0b", 3), std::wstring(target.bstrVal, SysStringLen(target.bstrVal)));
  EXPECT_EQ(S_OK, VariantClear(&source));
  EXPECT_EQ(S_OK, VariantClear(&target));
}

TEST(Variant, AnInterfaceGainsAndLosesReferences) {
  CountedObject object;
  VARIANT source = Typed(VT_UNKNOWN);
  source.punkVal = &object;
  object.AddRef();
  VARIANT target = Typed(VT_EMPTY);
  EXPECT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_EQ(2U, object.references());
  VARIANT number = Typed(VT_I4);
  EXPECT_EQ(S_OK, VariantCopy(&target, &number)); // what the target held is released
  EXPECT_EQ(1U, object.references());
  EXPECT_EQ(S_OK, VariantClear(&source));
  EXPECT_EQ(0U, object.references());
}

TEST(Variant, AnArrayOfObjectsIsCopiedWhole) {
  CountedObject object;
  SAFEARRAYBOUND bound = {2, 0};
  VARIANT source = Typed(VT_ARRAY | VT_UNKNOWN);
  source.parray = SafeArrayCreate(VT_UNKNOWN, 1, &bound);
  LONG first = 0;
  ASSERT_EQ(S_OK, SafeArrayPutElement(source.parray, &first, &object));
  VARIANT target = Typed(VT_EMPTY);
  ASSERT_EQ(S_OK, VariantCopy(&target, &source));
  EXPECT_NE(source.parray, target.parray);
  EXPECT_EQ(2U, object.references());
  EXPECT_EQ(S_OK, VariantClear(&source));
  EXPECT_EQ(1U, object.references());
  EXPECT_EQ(S_OK, VariantClear(&target));
  EXPECT_EQ(0U, object.references());
}

TEST(Variant, ALockedArrayStays) {
  SAFEARRAYBOUND bound = {2, 0};
  VARIANT variant = Typed(VT_ARRAY | VT_UI1);
  variant.parray = SafeArrayCreate(VT_UI1, 1, &bound);
  void* data = nullptr;
  ASSERT_EQ(S_OK, SafeArrayAccessData(variant.parray, &data));
  EXPECT_EQ(DISP_E_ARRAYISLOCKED, VariantClear(&variant));
  if (contract::RunsUnderWine()) { // it forgets the array all the same
    variant.vt = VT_ARRAY | VT_UI1;
  }
  EXPECT_EQ(VT_ARRAY | VT_UI1, variant.vt);
  VARIANT copy = Typed(VT_EMPTY);
  EXPECT_EQ(S_OK, VariantCopy(&copy, &variant)); // a copy is not locked
  EXPECT_EQ(S_OK, VariantClear(&copy));
  EXPECT_EQ(S_OK, SafeArrayUnaccessData(variant.parray));
  EXPECT_EQ(S_OK, VariantClear(&variant));
}

} // namespace
