#include "simhost/variant_values.h"
#include "tests/unit/sim/lamp_host.h"

namespace simhost {
namespace {

IUnknown* NoObject(const CimObject& /*object*/) {
  return nullptr;
}

TEST(VariantValuesTest, MapsEachCimTypeToItsVartype) {
  const struct {
    CIMTYPE type;
    CimValue value;
    VARTYPE vartype;
    std::wstring shown;
  } rows[] = {
      {CIM_UINT8, 200, VT_UI1, L"200"},
      {CIM_SINT8, -3, VT_I2, L"-3"},
      {CIM_SINT16, -300, VT_I2, L"-300"},
      {CIM_CHAR16, 0xFFFF, VT_I2, L"-1"},
      {CIM_UINT16, 65535, VT_I4, L"65535"},
      {CIM_SINT32, -5, VT_I4, L"-5"},
      {CIM_UINT32, 4294967295U, VT_I4, L"-1"},
      {CIM_SINT64, INT64_MIN, VT_BSTR, L"-9223372036854775808"},
      {CIM_UINT64, UINT64_MAX, VT_BSTR, L"18446744073709551615"},
      {CIM_BOOLEAN, true, VT_BOOL, L"true"},
      {CIM_STRING, std::wstring(L"a\0\xD800", 3), VT_BSTR, std::wstring(L"a\0\xD800", 3)},
      {CIM_DATETIME, L"20260101", VT_BSTR, L"20260101"},
      {CIM_REFERENCE, L"Lamp", VT_BSTR, L"Lamp"},
      {CIM_UINT32, {}, VT_NULL, L"null"},
      {CIM_REAL32, 1.5, VT_R4, L"type 4"},
      {CIM_REAL64, 1.5, VT_R8, L"type 5"},
      {CIM_UINT8 | CIM_FLAG_ARRAY, CimValue::Bytes({1, 2}), VT_ARRAY | VT_UI1, L"type 8209"},
      {CIM_STRING | CIM_FLAG_ARRAY, CimValue::Array({L"a"}), VT_ARRAY | VT_BSTR, L"type 8200"},
      {CIM_OBJECT | CIM_FLAG_ARRAY, CimValue::Array({}), VT_ARRAY | VT_UNKNOWN, L"type 8205"},
      {CIM_UINT32 | CIM_FLAG_ARRAY, CimValue::Array({1, 4294967295U}), VT_ARRAY | VT_I4, L"type 8195"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.type);
    platform::Variant variant;
    ASSERT_EQ(VariantFromValue(row.value, row.type, NoObject, variant.get()), WBEM_S_NO_ERROR);
    EXPECT_EQ(variant.get().vt, row.vartype);
    EXPECT_EQ(Shown(variant.get()), row.shown);
  }
}

TEST(VariantValuesTest, ArraysHoldTheirElementsFromIndexZero) {
  platform::Variant variant;
  ASSERT_EQ(VariantFromValue(CimValue::Array({7, 4294967295U}), CIM_UINT32 | CIM_FLAG_ARRAY, NoObject, variant.get()),
            WBEM_S_NO_ERROR);
  LONG lower = 9;
  LONG upper = 9;
  void* data = nullptr;
  EXPECT_EQ(SafeArrayGetLBound(variant.get().parray, 1, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(variant.get().parray, 1, &upper), S_OK);
  ASSERT_EQ(SafeArrayAccessData(variant.get().parray, &data), S_OK);
  EXPECT_EQ(lower, 0);
  EXPECT_EQ(upper, 1);
  EXPECT_EQ(static_cast<const LONG*>(data)[0], 7);
  EXPECT_EQ(static_cast<const LONG*>(data)[1], -1);
  EXPECT_EQ(SafeArrayUnaccessData(variant.get().parray), S_OK);
}

/// A VARIANT to put: a text when one is given, else a number of that VARTYPE.
struct Given {
  VARTYPE vartype;
  LONG number;
  const wchar_t* text = nullptr;
};

TEST(VariantValuesTest, PutsWhatIsDocumentedAndCountsWhatIsNot) {
  enum Taken { kPlain, kCoerced, kRefused };
  const struct {
    CIMTYPE type;
    Given given;
    Taken taken;
    std::uint64_t number;
  } rows[] = {
      {CIM_UINT64, {VT_BSTR, 0, L"18446744073709551615"}, kPlain, UINT64_MAX},
      {CIM_SINT64, {VT_BSTR, 0, L"-9223372036854775808"}, kPlain, std::uint64_t{1} << 63},
      {CIM_SINT64, {VT_BSTR, 0, L"+7"}, kPlain, 7},
      {CIM_UINT64, {VT_BSTR, 0, L"0xfF"}, kPlain, 255},
      {CIM_UINT64, {VT_BSTR, 0, L"18446744073709551616"}, kRefused, 0},
      {CIM_UINT64, {VT_BSTR, 0, L"-1"}, kRefused, 0},
      {CIM_SINT64, {VT_BSTR, 0, L"9223372036854775808"}, kRefused, 0},
      {CIM_SINT64, {VT_BSTR, 0, L"-9223372036854775809"}, kRefused, 0},
      {CIM_UINT64, {VT_BSTR, 0, L"12ab"}, kRefused, 0},
      {CIM_UINT64, {VT_BSTR, 0, L""}, kRefused, 0},
      {CIM_UINT64, {VT_BSTR, 0, L" 1"}, kRefused, 0},
      {CIM_UINT64, {VT_I4, 5}, kCoerced, 5},
      {CIM_UINT64, {VT_I4, -5}, kRefused, 0},
      {CIM_UINT32, {VT_I4, -1}, kPlain, UINT32_MAX},
      {CIM_UINT32, {VT_UI4, -1}, kCoerced, UINT32_MAX},
      {CIM_UINT32, {VT_I2, -1}, kRefused, 0},
      {CIM_UINT32, {VT_BSTR, 0, L"12"}, kCoerced, 12},
      {CIM_SINT32, {VT_UI4, -1}, kRefused, 0},
      {CIM_UINT16, {VT_I4, 65535}, kPlain, 65535},
      {CIM_UINT16, {VT_I4, 65536}, kRefused, 0},
      {CIM_UINT16, {VT_I4, -1}, kRefused, 0},
      {CIM_CHAR16, {VT_I2, -1}, kPlain, 0xFFFF},
      {CIM_SINT8, {VT_I2, 128}, kRefused, 0},
      {CIM_UINT8, {VT_UI1, 255}, kPlain, 255},
      {CIM_UINT8, {VT_I4, 255}, kCoerced, 255},
      {CIM_UINT8, {VT_I4, 256}, kRefused, 0},
      {CIM_UINT8, {VT_BOOL, -1}, kRefused, 0},
      {CIM_BOOLEAN, {VT_I4, 1}, kRefused, 0},
      {CIM_STRING, {VT_I4, 1}, kRefused, 0},
      {CIM_OBJECT, {VT_BSTR, 0, L"x"}, kRefused, 0},
      {CIM_OBJECT, {VT_UNKNOWN, 0}, kRefused, 0},
      {CIM_UINT8 | CIM_FLAG_ARRAY, {VT_UI1, 1}, kRefused, 0},
      {CIM_UINT32, {VT_EMPTY, 0}, kRefused, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << "type " << row.type << ", vartype " << row.given.vartype << ", "
                                    << row.given.number);
    platform::Variant variant;
    variant.get().llVal = 0;
    variant.get().lVal = row.given.number;
    variant.get().vt = row.given.vartype;
    if (row.given.text != nullptr) {
      variant.get().bstrVal = SysAllocString(row.given.text);
    }
    const PutValue put = ValueFromVariant(variant.get(), Property(L"P", row.type), ClassObject::ObjectBehind);
    EXPECT_EQ(put.result, row.taken == kRefused ? WBEM_E_TYPE_MISMATCH : WBEM_S_NO_ERROR);
    EXPECT_EQ(put.isCoerced, row.taken == kCoerced);
    if (row.taken != kRefused) {
      EXPECT_EQ(put.value.Number(), row.number);
    }
  }
}

HRESULT PutObject(IWbemClassObject* target, const wchar_t* name, IUnknown* object) {
  platform::Variant value;
  object->AddRef();
  value.get().vt = VT_UNKNOWN;
  value.get().punkVal = object;
  return target->Put(name, 0, &value.get(), 0);
}

TEST(ClassObjectTest, ReadsProperties) {
  const LampClient client;
  const auto lamp = client.Object(L"lamp.name=\"A\\\\1\"");
  ASSERT_TRUE(lamp);
  const std::pair<const wchar_t*, std::wstring> rows[] = {
      {L"NAME", L"A\\1"},
      {L"Level", L"10"},
      {L"Note", L"null"},
      {L"__class", L"Lamp"},
      {L"__RELPATH", L"Lamp.Name=\"A\\\\1\""},
      {L"__PATH", L"\\\\box\\root\\WMI:Lamp.Name=\"A\\\\1\""},
      {L"__SUPERCLASS", L"null"},
      {L"__GENUS", L"2"},
      {L"__PROPERTY_COUNT", L"6"},
      {L"__NAMESPACE", L"root\\WMI"},
      {L"__SERVER", L"box"},
      {L"__DERIVATION", L"type 8200"},
      {L"__NOSUCH", L"not found"},
      {L"NoSuch", L"not found"},
  };
  for (const auto& [name, shown] : rows) {
    EXPECT_EQ(Shown(lamp.get(), name), shown) << testing::PrintToString(std::wstring(name));
  }
  const auto spare = client.Object(L"SpareLamp");
  EXPECT_EQ(Shown(spare.get(), L"__SUPERCLASS"), L"Lamp");
  EXPECT_EQ(Shown(spare.get(), L"__DYNASTY"), L"Lamp");
  EXPECT_EQ(Shown(spare.get(), L"__GENUS"), L"1");
}

TEST(ClassObjectTest, TellsTheTypeOfNullAndLeavesTheVariantAloneWhenNothingIsFound) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  platform::Variant value;
  CIMTYPE type = 0;
  LONG flavor = -1;
  EXPECT_EQ(lamp->Get(L"Note", 0, value.put(), &type, &flavor), WBEM_S_NO_ERROR);
  EXPECT_EQ(value.get().vt, VT_NULL);
  EXPECT_EQ(type, CIM_STRING);
  EXPECT_EQ(flavor, 0);
  value.put()->vt = VT_I4;
  value.get().lVal = 77;
  EXPECT_EQ(lamp->Get(L"NoSuch", 0, &value.get(), &type, &flavor), WBEM_E_NOT_FOUND);
  EXPECT_EQ(value.get().lVal, 77);
  EXPECT_EQ(lamp->Get(nullptr, 0, &value.get(), nullptr, nullptr), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(lamp->Get(L"Level", 1, &value.get(), nullptr, nullptr), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(lamp->Get(L"Level", 0, nullptr, &type, nullptr), WBEM_S_NO_ERROR);
  EXPECT_EQ(type, CIM_UINT32);
}

TEST(ClassObjectTest, EmbeddedObjectsAreCopiesInAndOut) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  const auto taken = [&] {
    platform::Variant value;
    EXPECT_EQ(lamp->Get(L"Colour", 0, value.put(), nullptr, nullptr), WBEM_S_NO_ERROR);
    platform::ComPtr<IWbemClassObject> object;
    EXPECT_EQ(value.get().punkVal->QueryInterface(IID_IWbemClassObject, object.putVoid()), S_OK);
    return object;
  };
  const auto setRed = [](IWbemClassObject* object, BYTE red) {
    platform::Variant value;
    value.get().vt = VT_UI1;
    value.get().bVal = red;
    EXPECT_EQ(object->Put(L"Red", 0, &value.get(), 0), WBEM_S_NO_ERROR);
  };
  const auto colour = taken();
  setRed(colour.get(), 1);
  EXPECT_EQ(Shown(taken().get(), L"Red"), L"201") << "a change of what Get gave";
  EXPECT_EQ(PutObject(lamp.get(), L"colour", colour.get()), WBEM_S_NO_ERROR);
  setRed(colour.get(), 2);
  EXPECT_EQ(Shown(taken().get(), L"Red"), L"1") << "a change of what Put took";
  EXPECT_EQ(PutObject(lamp.get(), L"Colour", lamp.get()), WBEM_E_TYPE_MISMATCH) << "an object of another class";
  EXPECT_EQ(PutObject(lamp.get(), L"Colour", client.services.get()), WBEM_E_TYPE_MISMATCH) << "no object at all";
  EXPECT_EQ(Shown(taken().get(), L"Red"), L"1");
}

TEST(ClassObjectTest, ReadsAndPutsArraysOfObjects) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  SAFEARRAYBOUND bound = {2, 1};
  platform::Variant bulbs;
  bulbs.get().vt = VT_ARRAY | VT_UNKNOWN;
  bulbs.get().parray = SafeArrayCreate(VT_UNKNOWN, 1, &bound);
  for (LONG index = 1; index <= 2; ++index) {
    platform::ComPtr<IWbemClassObject> bulb;
    ASSERT_EQ(client.Object(L"Bulb")->SpawnInstance(0, bulb.put()), WBEM_S_NO_ERROR);
    platform::Variant watts;
    watts.get().vt = VT_I4;
    watts.get().lVal = 60 + index;
    ASSERT_EQ(bulb->Put(L"Watts", 0, &watts.get(), CIM_UINT16), WBEM_S_NO_ERROR);
    if (index == 2) {
      EXPECT_EQ(lamp->Put(L"Bulbs", 0, &bulbs.get(), 0), WBEM_E_TYPE_MISMATCH) << "an element is none";
    }
    ASSERT_EQ(SafeArrayPutElement(bulbs.get().parray, &index, bulb.get()), S_OK);
  }
  EXPECT_EQ(lamp->Put(L"Bulbs", 0, &bulbs.get(), CIM_OBJECT), WBEM_E_TYPE_MISMATCH) << "another type";
  EXPECT_EQ(lamp->Put(L"Bulbs", 0, &bulbs.get(), 0), WBEM_S_NO_ERROR);
  platform::Variant read;
  ASSERT_EQ(lamp->Get(L"Bulbs", 0, read.put(), nullptr, nullptr), WBEM_S_NO_ERROR);
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(read.get().parray, &data), S_OK);
  platform::ComPtr<IWbemClassObject> second;
  EXPECT_EQ(static_cast<IUnknown**>(data)[1]->QueryInterface(IID_IWbemClassObject, second.putVoid()), S_OK);
  EXPECT_EQ(Shown(second.get(), L"Watts"), L"62");
  SafeArrayUnaccessData(read.get().parray);
}

TEST(ClassObjectTest, PutRefusesWhatCannotBeSet) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  const std::uint64_t coercions = TheStatistics().coercions.load();
  platform::Variant level;
  level.get().vt = VT_UI1;
  level.get().bVal = 9;
  EXPECT_EQ(lamp->Put(L"NoSuch", 0, &level.get(), 0), WBEM_E_NOT_FOUND);
  EXPECT_EQ(lamp->Put(L"__CLASS", 0, &level.get(), 0), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(lamp->Put(nullptr, 0, &level.get(), 0), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(client.Object(L"Lamp")->Put(L"Level", 0, &level.get(), 0), WBEM_E_NOT_SUPPORTED);
  EXPECT_EQ(lamp->Put(L"Note", 0, &level.get(), 0), WBEM_E_TYPE_MISMATCH);
  EXPECT_EQ(TheStatistics().coercions.load(), coercions);
  EXPECT_EQ(lamp->Put(L"Level", 0, &level.get(), 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(TheStatistics().coercions.load(), coercions + 1) << "uint32 is promised as VT_I4 only";
  EXPECT_EQ(Shown(lamp.get(), L"Level"), L"9");
  EXPECT_EQ(lamp->Put(L"Level", 0, nullptr, 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(lamp.get(), L"Level"), L"null");
}

TEST(ClassObjectTest, SpawnsInstancesWithInitialValues) {
  const LampClient client;
  platform::ComPtr<IWbemClassObject> colour;
  ASSERT_EQ(client.Object(L"colour")->SpawnInstance(0, colour.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(colour.get(), L"Mood"), L"calm");
  EXPECT_EQ(Shown(colour.get(), L"Red"), L"null");
  EXPECT_EQ(Shown(colour.get(), L"__RELPATH"), L"null");
  platform::ComPtr<IWbemClassObject> again;
  EXPECT_EQ(colour->SpawnInstance(0, again.put()), WBEM_E_INVALID_OPERATION);
  EXPECT_EQ(client.Object(L"Colour")->SpawnInstance(0, nullptr), WBEM_E_INVALID_PARAMETER);
}

TEST(ClassObjectTest, GivesMethodSignaturesWhereThereAreAny) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp");
  platform::ComPtr<IWbemClassObject> input;
  platform::ComPtr<IWbemClassObject> output;
  EXPECT_EQ(lamp->GetMethod(L"setlevel", 0, input.put(), output.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(input.get(), L"__CLASS"), L"__PARAMETERS");
  EXPECT_EQ(Shown(output.get(), L"Before"), L"null");
  IWbemClassObject* none = input.get();
  IWbemClassObject* alsoNone = input.get();
  EXPECT_EQ(lamp->GetMethod(L"NoSuch", 0, &none, &alsoNone), WBEM_E_NOT_FOUND);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(alsoNone, nullptr);
  none = alsoNone = input.get();
  EXPECT_EQ(lamp->GetMethod(L"Blink", 0, &none, &alsoNone), WBEM_S_NO_ERROR);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(alsoNone, nullptr);
}

/// The names that an iteration gives until it ends otherwise than with success, and how it ends.
template <class Next>
std::pair<std::vector<std::wstring>, HRESULT> Names(Next next) {
  std::vector<std::wstring> names;
  for (;;) {
    platform::Bstr name;
    const HRESULT result = next(name.put());
    if (result != WBEM_S_NO_ERROR) {
      EXPECT_FALSE(name);
      return {names, result};
    }
    names.emplace_back(name.get());
  }
}

TEST(ClassObjectTest, IteratesOverMethodsAndProperties) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp");
  const auto nextMethod = [&](BSTR* name) { return lamp->NextMethod(0, name, nullptr, nullptr); };
  const auto nextProperty = [&](BSTR* name) { return lamp->Next(0, name, nullptr, nullptr, nullptr); };
  using Names_ = std::vector<std::wstring>;
  EXPECT_EQ(Names(nextMethod), std::pair(Names_{}, HRESULT{WBEM_E_UNEXPECTED}));
  EXPECT_EQ(Names(nextProperty), std::pair(Names_{}, HRESULT{WBEM_E_UNEXPECTED}));
  EXPECT_EQ(lamp->BeginMethodEnumeration(0), WBEM_S_NO_ERROR);
  const Names_ methods{L"SetLevel", L"Blink"};
  EXPECT_EQ(Names(nextMethod), std::pair(methods, HRESULT{WBEM_S_NO_MORE_DATA}));
  EXPECT_EQ(lamp->BeginMethodEnumeration(0), WBEM_E_UNEXPECTED) << "begun twice";
  EXPECT_EQ(Names(nextMethod), std::pair(methods, HRESULT{WBEM_S_NO_MORE_DATA}));
  EXPECT_EQ(lamp->EndMethodEnumeration(), WBEM_S_NO_ERROR);
  EXPECT_EQ(Names(nextMethod), std::pair(Names_{}, HRESULT{WBEM_E_UNEXPECTED}));

  EXPECT_EQ(lamp->BeginEnumeration(0x40), WBEM_S_NO_ERROR);
  const Names_ own{L"Name", L"Level", L"Colour", L"Bulbs", L"Serial", L"Note"};
  EXPECT_EQ(Names(nextProperty), std::pair(own, HRESULT{WBEM_S_NO_MORE_DATA}));
  EXPECT_EQ(lamp->EndEnumeration(), WBEM_S_NO_ERROR);
  EXPECT_EQ(lamp->BeginEnumeration(0), WBEM_S_NO_ERROR);
  const auto all = Names(nextProperty).first;
  ASSERT_EQ(all.size(), 16U);
  EXPECT_EQ(all.front(), L"__GENUS");
  EXPECT_EQ(all.back(), L"Note");
  EXPECT_EQ(lamp->BeginEnumeration(0x7), WBEM_E_INVALID_PARAMETER);
}

TEST(ClassObjectTest, ClonesAreIndependent) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  platform::ComPtr<IWbemClassObject> clone;
  ASSERT_EQ(lamp->Clone(clone.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(lamp->Put(L"Level", 0, nullptr, 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(clone.get(), L"Level"), L"20");
}

} // namespace
} // namespace simhost
