#include "tests/unit/support/variant_values.h"
#include "tests/unit/support/wmi_test.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_variant.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace korvex {
namespace {

using OrbWmiVariantTest = WmiTest;

TEST_F(OrbWmiVariantTest, ReadsOnlyValuesOfTheKindAskedFor) {
  struct Row {
    const char* what;
    Value held;
    std::uint32_t cimType;
    wmiReturn status;
    VARTYPE tagAfter;
  };
  FakeClassObject* object = m_wmi->NewObject({});
  const Row rows[] = {
      {"number", NumberValue(5), CIM_UINT32, 0, VT_I4},
      {"number under another number's tag", NumberValue(5), CIM_BOOLEAN, 0, VT_BOOL},
      {"boolean as a number", BooleanValue(VARIANT_TRUE), CIM_UINT32, 0, VT_I4},
      {"text", TextValue(L"5"), CIM_UINT64, 0, VT_BSTR},
      {"object", ObjectValue(object), CIM_OBJECT, 0, VT_UNKNOWN},
      {"null", EmptyValue(VT_NULL), CIM_UINT32, 7, VT_NULL},
      {"nothing", EmptyValue(), CIM_UINT32, 1, VT_EMPTY},
      {"number as text", NumberValue(5), CIM_STRING, 1, VT_I4},
      {"number as object", NumberValue(5), CIM_OBJECT, 1, VT_I4},
      {"text as number", TextValue(L"5"), CIM_UINT32, 1, VT_BSTR},
      {"text as object", TextValue(L"5"), CIM_OBJECT, 1, VT_BSTR},
      {"object as number", ObjectValue(object), CIM_UINT32, 1, VT_UNKNOWN},
      {"object as array", ObjectValue(object), kCimObjectArray, 1, VT_UNKNOWN},
      {"bytes as objects", BytesValue("abc"), kCimObjectArray, 1, kVtByteArray},
      {"bytes", BytesValue("abc"), 0x2011, 1, kVtByteArray},
      {"unknown type", NumberValue(5), 0x7F, 1, VT_I4},
  };
  for (const Row& row : rows) {
    OrbWmiVariant holder;
    ASSERT_EQ(holder.CopyVariant(row.held->get()), 0U);
    platform::Variant buffer;
    EXPECT_EQ(holder.GetProperty(&buffer.get(), sizeof(VARIANT), row.cimType), row.status) << row.what;
    EXPECT_EQ(holder.GetVariant().vt, row.tagAfter) << row.what;
    if (buffer.get().vt != VT_UNKNOWN) {
      VariantInit(&buffer.get());
    }
  }
}

TEST_F(OrbWmiVariantTest, TracesReadingAndWriting) {
  OrbWmiVariant holder;
  const std::uint32_t number = 9;
  EXPECT_EQ(Traced([&] { return holder.SetProperty(&number, 4, CIM_UINT32); }),
            (Outcome{0, "(orbWmiCommon):SetCimType(CimType-0x13;VarType-0x0)\n"
                        "(orbWmiCommon):SetVariantType(0x3);cimType(0x13)\n"}));
  std::uint32_t read = 0;
  EXPECT_EQ(Traced([&] { return holder.GetProperty(&read, 4, CIM_UINT32); }),
            (Outcome{0, "(orbWmiCommon):SetCimType(CimType-0x13;VarType-0x3)\n"
                        "(orbWmiCommon):GetVariantType(0x3);cimType(0x13)\n"}));
  EXPECT_EQ(read, 9U);
  holder.Clear();
  holder.GetVariant().vt = VT_NULL;
  EXPECT_EQ(Traced([&] { return holder.GetProperty(&read, 4, CIM_UINT32); }),
            (Outcome{7, "(orbWmiVariant):NullDataType(GetProperty)\n"}));
}

TEST_F(OrbWmiVariantTest, RefusedWriteLeavesTheHeldValue) {
  OrbWmiVariant holder;
  ASSERT_EQ(holder.SetProperty("abc", 3, CIM_STRING), 0U);
  for (const std::uint32_t cimType : {std::uint32_t{CIM_EMPTY}, std::uint32_t{CIM_REAL64}, std::uint32_t{CIM_DATETIME},
                                      std::uint32_t{CIM_CHAR16}, std::uint32_t{0x2011}}) {
    EXPECT_EQ(holder.SetProperty("12345678", 8, cimType), 1U) << cimType;
  }
  EXPECT_EQ(holder.SetProperty(nullptr, 4, CIM_UINT32), 1U);
  char text[4] = {};
  EXPECT_EQ(holder.GetProperty(text, sizeof text, CIM_STRING), 0U);
  EXPECT_STREQ(text, "abc");
}

TEST_F(OrbWmiVariantTest, OwnsObjectsAndReferencesGivenToIt) {
  FakeClassObject* object = m_wmi->NewObject({});
  OrbWmiVariant holder;
  object->AddRef();
  ASSERT_EQ(holder.SetProperty(object, sizeof(void*), CIM_OBJECT), 0U);
  EXPECT_EQ(object->AddRef(), 3U);
  object->Release();
  platform::Variant read;
  EXPECT_EQ(holder.GetProperty(&read.get(), sizeof(VARIANT), CIM_OBJECT), 0U);
  EXPECT_EQ(read.get().punkVal, object);
  EXPECT_EQ(object->AddRef(), 4U);
  object->Release();
  // Replaces the object, whose reference goes.
  ASSERT_EQ(holder.SetProperty("x", 1, CIM_STRING), 0U);
  EXPECT_EQ(object->AddRef(), 3U);
  object->Release();
}

TEST_F(OrbWmiVariantTest, LeavesAnArrayToItsMaker) {
  FakeClassObject* object = m_wmi->NewObject({});
  const Value array = ObjectsValue({object});
  {
    OrbWmiVariant holder;
    ASSERT_EQ(holder.SetProperty(array->get().parray, sizeof(void*), kCimObjectArray), 0U);
    ASSERT_EQ(holder.SetProperty(array->get().parray, sizeof(void*), kCimObjectArray), 0U);
    // A copy is the holder's own.
    ASSERT_EQ(holder.CopyVariant(array->get()), 0U);
    EXPECT_EQ(object->AddRef(), 4U);
    object->Release();
    ASSERT_EQ(holder.SetProperty(array->get().parray, sizeof(void*), kCimObjectArray), 0U);
    // Once cleared, an array at the same address may be the holder's own.
    holder.Clear();
    std::swap(holder.GetVariant(), array->get());
  }
  EXPECT_EQ(object->AddRef(), 2U);
  object->Release();
}

TEST_F(OrbWmiVariantTest, TracesItsDestructionUnlessSilent) {
  EXPECT_EQ(CaptureTraced([] { const OrbWmiVariant holder; }).out, "(orbWmiVariant):cleanUp\n");
  EXPECT_EQ(CaptureTraced([] { const OrbWmiVariant holder(OrbWmiVariant::Destruction::kSilent); }).out, "");
}

TEST_F(OrbWmiVariantTest, RefusesToCopyWhatIsNoVariant) {
  OrbWmiVariant holder;
  const std::uint32_t number = 9;
  ASSERT_EQ(holder.SetProperty(&number, 4, CIM_UINT32), 0U);
  VARIANT invalid;
  VariantInit(&invalid);
  invalid.vt = 15;
  EXPECT_EQ(Traced([&] { return holder.CopyVariant(invalid); }),
            (Outcome{1, "(orbWmiVariant):WMIRequestFailed(VariantCopy).  Error 0x80020008\n"}));
  EXPECT_EQ(holder.GetVariant().lVal, 9);
}

TEST_F(OrbWmiVariantTest, TakesElementsByPlace) {
  FakeClassObject* first = m_wmi->NewObject({});
  FakeClassObject* second = m_wmi->NewObject({});
  const std::string bounds = "(orbWmiVariant):Bounds(Low-0xfffffffe;High-0xffffffff)\n";
  OrbWmiVariant holder;
  ASSERT_EQ(holder.CopyVariant(ObjectsValue({first, second}, -2)->get()), 0U);
  struct Row {
    std::int32_t index;
    IWbemClassObject* element;
    wmiReturn status;
  };
  const Row rows[] = {{0, first, 0}, {1, second, 0}, {2, nullptr, 2}, {INT32_MAX, nullptr, 2}, {-1, nullptr, 2}};
  for (const Row& row : rows) {
    platform::ComPtr<IWbemClassObject> element;
    EXPECT_EQ(Traced([&] { return holder.GetElement(row.index, element.put()); }), (Outcome{row.status, bounds}));
    EXPECT_EQ(element.get(), row.element) << row.index;
  }
  EXPECT_EQ(Traced([&] { return holder.GetElement(0, nullptr); }), (Outcome{5, ""}));
}

TEST_F(OrbWmiVariantTest, GivesNoElementOfAnythingElse) {
  FakeClassObject* object = m_wmi->NewObject({});
  const Value oddBounds = ObjectsValue({object});
  oddBounds->get().parray->rgsabound[0].lLbound = INT32_MIN;
  oddBounds->get().parray->rgsabound[0].cElements = 0;
  struct Row {
    const char* what;
    Value held;
    wmiReturn status;
    std::string trace;
  };
  const std::string oneElement = "(orbWmiVariant):Bounds(Low-0x0;High-0x0)\n";
  const std::string failed = "(orbWmiVariant):WMIRequestFailed(QueryInterface).  Error ";
  const Row rows[] = {
      {"null", EmptyValue(VT_NULL), 2, ""},
      {"nothing", EmptyValue(), 2, ""},
      {"object", ObjectValue(object), 2, ""},
      {"no array", EmptyValue(kVtObjectArray), 2, ""},
      {"bytes", BytesValue("a"), 1, ""},
      {"texts that claim to be objects", ArrayValue(VT_UNKNOWN, MakeArray(VT_BSTR, 1)), 1, oneElement},
      {"bytes that claim to be objects", ArrayValue(VT_UNKNOWN, MakeArray(VT_UI1, 1)), 1, oneElement},
      {"null interface", ObjectsValue({nullptr}), 1, oneElement + failed + "0x80004003\n"},
      {"bounds wider than the array", oddBounds, 1, "(orbWmiVariant):Bounds(Low-0x80000000;High-0x7fffffff)\n"},
  };
  for (const Row& row : rows) {
    OrbWmiVariant holder(OrbWmiVariant::Destruction::kSilent);
    holder.GetVariant() = row.held->get();
    platform::ComPtr<IWbemClassObject> element;
    EXPECT_EQ(Traced([&] { return holder.GetElement(0, element.put()); }), (Outcome{row.status, row.trace}))
        << row.what;
    EXPECT_EQ(element.get(), nullptr);
    VariantInit(&holder.GetVariant());
  }
  oddBounds->get().parray->rgsabound[0].cElements = 1;

  OrbWmiVariant holder;
  ASSERT_EQ(holder.CopyVariant(ObjectsValue({object})->get()), 0U);
  m_wmi->End("QueryInterface", E_NOINTERFACE);
  IWbemClassObject* element = object;
  EXPECT_EQ(Traced([&] { return holder.GetElement(0, &element); }), (Outcome{1, oneElement + failed + "0x80004002\n"}));
  EXPECT_EQ(element, nullptr);
}

} // namespace
} // namespace korvex
