#include "platform/com.h"
#include "tests/contract/support/counted_object.h"
#include "tests/contract/support/system_under_test.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

// BSTR and VARIANT.

namespace {

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

  SAFEARRAYBOUND bound = {2, 0};
  source = Typed(VT_ARRAY | VT_UNKNOWN);
  source.parray = SafeArrayCreate(VT_UNKNOWN, 1, &bound);
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

TEST(Variant, ALockedArrayStays) {
  SAFEARRAYBOUND bound = {2, 0};
  VARIANT variant = Typed(VT_ARRAY | VT_UI1);
  variant.parray = SafeArrayCreate(VT_UI1, 1, &bound);
  void* data = nullptr;
  ASSERT_EQ(S_OK, SafeArrayAccessData(variant.parray, &data));
  EXPECT_EQ(DISP_E_ARRAYISLOCKED, VariantClear(&variant));
  EXPECT_TRUE(variant.vt == (VT_ARRAY | VT_UI1) || contract::RunsUnderWine()); // which forgets the array all the same
  variant.vt = VT_ARRAY | VT_UI1;
  VARIANT copy = Typed(VT_EMPTY);
  EXPECT_EQ(S_OK, VariantCopy(&copy, &variant));
  EXPECT_EQ(S_OK, VariantClear(&copy)); // a copy is not locked
  EXPECT_EQ(S_OK, SafeArrayUnaccessData(variant.parray));
  EXPECT_EQ(S_OK, VariantClear(&variant));
}

} // namespace
