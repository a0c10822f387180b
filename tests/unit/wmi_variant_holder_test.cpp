#include "tests/unit/support/test_object.h"
#include "tests/unit/support/traced.h"
#include "tests/unit/support/variant_values.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_variant.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>

namespace korvex {
namespace {

TEST(OrbWmiVariantTest, ReadsOnlyValuesOfTheKindAskedFor) {
  TestObject object;
  const struct {
    const char* what;
    Value held;
    std::uint32_t cimType;
    const char* outcome;
    VARTYPE tagAfter;
  } rows[] = {
      {"number", NumberValue(5), CIM_UINT32, "0 ", VT_I4},
      {"number under another number's tag", NumberValue(5), CIM_BOOLEAN, "0 ", VT_BOOL},
      {"text", TextValue(L"5"), CIM_UINT64, "0 ", VT_BSTR},
      {"object", ObjectValue(&object), CIM_OBJECT, "0 ", VT_UNKNOWN},
      {"null", EmptyValue(VT_NULL), CIM_UINT32, "7 (orbWmiVariant):NullDataType(GetProperty)\n", VT_NULL},
      {"nothing", EmptyValue(), CIM_UINT32, "1 ", VT_EMPTY},
      {"number as text", NumberValue(5), CIM_STRING, "1 ", VT_I4},
      {"number as object", NumberValue(5), CIM_OBJECT, "1 ", VT_I4},
      {"text as number", TextValue(L"5"), CIM_UINT32, "1 ", VT_BSTR},
      {"object as number", ObjectValue(&object), CIM_UINT32, "1 ", VT_UNKNOWN},
      {"bytes as objects", BytesValue("abc"), kCimObjectArray, "1 ", kVtByteArray},
      {"bytes", BytesValue("abc"), 0x2011, "1 ", kVtByteArray},
      {"unknown type", NumberValue(5), 0x7F, "1 ", VT_I4},
  };
  for (const auto& row : rows) {
    OrbWmiVariant holder;
    ASSERT_EQ(holder.CopyVariant(row.held->get()), 0U);
    platform::Variant buffer;
    EXPECT_EQ(Traced([&] { return holder.GetProperty(&buffer.get(), sizeof(VARIANT), row.cimType); }), row.outcome)
        << row.what;
    EXPECT_EQ(holder.GetVariant().vt, row.tagAfter) << row.what;
    if (buffer.get().vt != VT_UNKNOWN) {
      VariantInit(&buffer.get());
    }
  }
}

TEST(OrbWmiVariantTest, KeepsTheHeldValueWhenANewOneIsRefused) {
  OrbWmiVariant holder;
  ASSERT_EQ(holder.SetProperty("abc", 3, CIM_STRING), 0U);
  for (const std::uint32_t cimType : {0U, 5U, 101U, 103U, 0x2011U}) {
    EXPECT_EQ(holder.SetProperty("12345678", 8, cimType), 1U) << cimType;
  }
  EXPECT_EQ(holder.SetProperty(nullptr, 4, CIM_UINT32), 1U);
  EXPECT_EQ(Traced([&] { return holder.CopyVariant(EmptyValue(15)->get()); }),
            "1 (orbWmiVariant):WMIRequestFailed(VariantCopy).  Error 0x80020008\n");
  char text[4] = {};
  EXPECT_EQ(holder.GetProperty(text, sizeof text, CIM_STRING), 0U);
  EXPECT_STREQ(text, "abc");
}

TEST(OrbWmiVariantTest, OwnsObjectsButLeavesAnArrayToItsMaker) {
  TestObject object;
  {
    OrbWmiVariant holder;
    object.AddRef();
    ASSERT_EQ(holder.SetProperty(&object, sizeof(void*), CIM_OBJECT), 0U);
    EXPECT_EQ(object.referencesHeld, 1U) << "the caller's, passed on";
    platform::Variant read;
    EXPECT_EQ(holder.GetProperty(&read.get(), sizeof(VARIANT), CIM_OBJECT), 0U);
    EXPECT_EQ(read.get().punkVal, &object);
    EXPECT_EQ(object.referencesHeld, 2U);
    ASSERT_EQ(holder.SetProperty("x", 1, CIM_STRING), 0U);
    EXPECT_EQ(object.referencesHeld, 1U);
  }
  const Value array = ObjectsValue({&object});
  {
    OrbWmiVariant holder;
    const auto borrow = [&] { return holder.SetProperty(array->get().parray, sizeof(void*), kCimObjectArray); };
    ASSERT_EQ(borrow(), 0U);
    ASSERT_EQ(borrow(), 0U);
    ASSERT_EQ(holder.CopyVariant(array->get()), 0U);
    EXPECT_EQ(object.referencesHeld, 2U) << "a copy is the holder's own";
    ASSERT_EQ(borrow(), 0U);
    EXPECT_EQ(object.referencesHeld, 1U);
    // Once cleared, an array at the same address may be the holder's own.
    holder.Clear();
    std::swap(holder.GetVariant(), array->get());
  }
}

/// A test's object in the place of a class object, of which only the references are used.
IWbemClassObject* AsElement(TestObject& object) {
  return static_cast<IWbemClassObject*>(static_cast<void*>(&object));
}

TEST(OrbWmiVariantTest, GivesTheElementsOfAnArrayOfObjectsOnly) {
  TestObject first;
  TestObject second;
  TestObject mute;
  mute.isMute = true;
  const Value oddBounds = ObjectsValue({&first});
  SAFEARRAYBOUND& odd = oddBounds->get().parray->rgsabound[0];
  odd.lLbound = std::numeric_limits<LONG>::min();
  odd.cElements = 0;
  const Value withoutType = ObjectsValue({&first});
  withoutType->get().parray->fFeatures &= static_cast<USHORT>(~FADF_HAVEVARTYPE);
  const struct {
    const char* what;
    Value held;
    std::int32_t index;
    const char* outcome;
    IWbemClassObject* element = nullptr;
  } rows[] = {
      {"first", ObjectsValue({&first, &second}, -2), 0, "0 ", AsElement(first)},
      {"second", ObjectsValue({&first, &second}, -2), 1, "0 ", AsElement(second)},
      {"of an array that does not tell its type", withoutType, 0, "0 ", AsElement(first)},
      {"past the end", ObjectsValue({&first, &second}, -2), 2, "2 "},
      {"before the first", ObjectsValue({&first}, -2), -1, "2 "},
      {"of null", EmptyValue(VT_NULL), 0, "2 "},
      {"of an object", ObjectValue(&first), 0, "2 "},
      {"of no array", EmptyValue(kVtObjectArray), 0, "2 "},
      {"of bytes", BytesValue("a"), 0, "1 "},
      {"texts that claim to be objects", ArrayValue(VT_UNKNOWN, MakeArray(VT_BSTR, 1)), 0, "1 "},
      {"bytes that claim to be objects", ArrayValue(VT_UNKNOWN, MakeArray(VT_UI1, 1)), 0, "1 "},
      {"bounds wider than the array", oddBounds, 0, "1 "},
      {"none", ObjectsValue({nullptr}), 0, "1 (orbWmiVariant):WMIRequestFailed(QueryInterface).  Error 0x80004003\n"},
      {"of another interface", ObjectsValue({&mute}), 0,
       "1 (orbWmiVariant):WMIRequestFailed(QueryInterface).  Error 0x80004002\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    OrbWmiVariant holder;
    std::swap(holder.GetVariant(), row.held->get());
    IWbemClassObject* element = AsElement(second);
    EXPECT_EQ(Traced([&] { return holder.GetElement(row.index, &element); }), row.outcome);
    std::swap(holder.GetVariant(), row.held->get());
    EXPECT_EQ(element, row.element);
    if (row.element != nullptr) {
      element->Release();
    }
  }
  odd.cElements = 1;
  EXPECT_EQ(OrbWmiVariant().GetElement(0, nullptr), 5U);
}

} // namespace
} // namespace korvex
