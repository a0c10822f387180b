#include "simhost/variant_values.h"
#include "tests/unit/sim/lamp_host.h"
#include "tests/unit/support/variant_values.h"

// Class objects: their values as VARIANTs, system properties, signatures and iterations.

namespace simhost {
namespace {

using korvex::NumberValue;
using korvex::ObjectValue;
using korvex::TextValue;
using platform::ComPtr;

TEST(VariantValuesTest, MapsEachCimTypeToItsVartypeAndBack) {
  const std::wstring anyUnits(L"a\0\xD800", 3);
  const struct {
    CIMTYPE type;
    CimValue value;
    VARTYPE vartype;
    std::wstring shown;
  } rows[] = {
      {CIM_UINT8, 200, VT_UI1, L"200"},
      {CIM_SINT8, -3, VT_I2, L"-3"},
      {CIM_CHAR16, 0xFFFF, VT_I2, L"-1"},
      {CIM_UINT16, 65535, VT_I4, L"65535"},
      {CIM_UINT32, 4294967295U, VT_I4, L"-1"},
      {CIM_SINT64, INT64_MIN, VT_BSTR, L"-9223372036854775808"},
      {CIM_UINT64, UINT64_MAX, VT_BSTR, L"18446744073709551615"},
      {CIM_BOOLEAN, true, VT_BOOL, L"-1"},
      {CIM_STRING, anyUnits, VT_BSTR, anyUnits},
      {CIM_UINT32, {}, VT_NULL, L"null"},
      {CIM_UINT8 | CIM_FLAG_ARRAY, CimValue::Bytes({1, 2}), VT_ARRAY | VT_UI1, L"type 8209"},
      {CIM_STRING | CIM_FLAG_ARRAY, CimValue::Array({L"a"}), VT_ARRAY | VT_BSTR, L"type 8200"},
      {CIM_OBJECT | CIM_FLAG_ARRAY, CimValue::Array({}), VT_ARRAY | VT_UNKNOWN, L"type 8205"},
      {CIM_UINT32 | CIM_FLAG_ARRAY, CimValue::Array({1, 4294967295U}), VT_ARRAY | VT_I4, L"type 8195"},
  };
  const auto noObject = [](const CimObject&) -> IUnknown* { return nullptr; };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.type);
    platform::Variant variant;
    ASSERT_EQ(VariantFromValue(row.value, row.type, noObject, variant.get()), WBEM_S_NO_ERROR);
    EXPECT_EQ(variant.get().vt, row.vartype);
    EXPECT_EQ(Shown(variant.get()), row.shown);
    const PutValue back = ValueFromVariant(variant.get(), Property(L"P", row.type), ClassObject::ObjectBehind);
    EXPECT_EQ(back.result, WBEM_S_NO_ERROR);
    EXPECT_FALSE(back.isCoerced);
    EXPECT_EQ(back.value.Number(), row.value.Number());
    EXPECT_EQ(back.value.TextOrEmpty(), row.value.TextOrEmpty());
  }
}

TEST(VariantValuesTest, CountsWhatIsNotPromisedAndRefusesWhatCannotBe) {
  const struct {
    CIMTYPE type;
    korvex::Value given;
    std::optional<std::uint64_t> coerced; ///< none: refused
  } rows[] = {
      {CIM_UINT64, NumberValue(5), 5},
      {CIM_UINT32, NumberValue(-1, VT_UI4), UINT32_MAX},
      {CIM_UINT8, NumberValue(255), 255},
      {CIM_UINT64, TextValue(L"18446744073709551616"), {}},
      {CIM_UINT64, TextValue(L"-1"), {}},
      {CIM_UINT64, TextValue(L"12ab"), {}},
      {CIM_UINT64, TextValue(L""), {}},
      {CIM_SINT64, TextValue(L"9223372036854775808"), {}},
      {CIM_UINT32, NumberValue(-1, VT_I2), {}},
      {CIM_UINT32, korvex::EmptyValue(), {}},
      {CIM_UINT16, NumberValue(65536), {}},
      {CIM_SINT8, NumberValue(128, VT_I2), {}},
      {CIM_BOOLEAN, NumberValue(1), {}},
      {CIM_STRING, NumberValue(1), {}},
      {CIM_OBJECT, TextValue(L"x"), {}},
      {CIM_OBJECT, ObjectValue(nullptr), {}},
      {CIM_UINT8 | CIM_FLAG_ARRAY, NumberValue(1, VT_UI1), {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE("row " + std::to_string(&row - rows));
    const PutValue put = ValueFromVariant(row.given->get(), Property(L"P", row.type), ClassObject::ObjectBehind);
    EXPECT_EQ(put.result, row.coerced ? WBEM_S_NO_ERROR : WBEM_E_TYPE_MISMATCH);
    EXPECT_EQ(put.isCoerced, row.coerced.has_value());
    EXPECT_EQ(put.value.Number(), row.coerced.value_or(0));
  }
}

TEST(ClassObjectTest, ReadsProperties) {
  const LampClient client;
  const struct {
    const wchar_t* path;
    const wchar_t* property;
    std::wstring shown;
  } rows[] = {
      {L"lamp.name=\"A\\\\1\"", L"NAME", L"A\\1"},
      {L"Lamp=\"A\\\\1\"", L"__RELPATH", L"Lamp.Name=\"A\\\\1\""},
      {L"Lamp=\"B\"", L"__PATH", L"\\\\box\\root\\WMI:Lamp.Name=\"B\""},
      {L"Lamp=\"B\"", L"__SUPERCLASS", L"null"},
      {L"Lamp=\"B\"", L"__GENUS", L"2"},
      {L"SpareLamp", L"__SUPERCLASS", L"Lamp"},
      {L"SpareLamp", L"__NOSUCH", L"not found"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Shown(client.Object(row.path), row.property), row.shown);
  }
  platform::Variant value;
  CIMTYPE type = 0;
  EXPECT_EQ(client.Object(L"Lamp=\"B\"")->Get(L"Note", 0, value.put(), &type, nullptr), WBEM_S_NO_ERROR);
  EXPECT_EQ(type, CIM_STRING) << "a property without a value has its type still";
  value.get() = NumberValue(77)->get();
  EXPECT_EQ(client.Object(L"Lamp")->Get(L"NoSuch", 0, &value.get(), nullptr, nullptr), WBEM_E_NOT_FOUND);
  EXPECT_EQ(value.get().lVal, 77) << "left alone";
}

TEST(ClassObjectTest, EmbeddedObjectsAreCopiesInAndOut) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  const auto colour = client.Spawn(L"Colour");
  const auto setRed = [](IWbemClassObject* object, LONG red) {
    EXPECT_EQ(object->Put(L"Red", 0, &NumberValue(red, VT_UI1)->get(), 0), WBEM_S_NO_ERROR);
  };
  const std::pair<IUnknown*, HRESULT> rows[] = {{colour.get(), WBEM_S_NO_ERROR},
                                                {lamp.get(), WBEM_E_TYPE_MISMATCH},
                                                {client.services.get(), WBEM_E_TYPE_MISMATCH}};
  for (const auto& [object, result] : rows) {
    setRed(colour.get(), 1);
    EXPECT_EQ(lamp->Put(L"colour", 0, &ObjectValue(object)->get(), 0), result);
    setRed(colour.get(), 2);
    for (int time = 0; time < 2; ++time) {
      platform::Variant value;
      ASSERT_EQ(lamp->Get(L"Colour", 0, value.put(), nullptr, nullptr), WBEM_S_NO_ERROR);
      ComPtr<IWbemClassObject> inside;
      ASSERT_EQ(value.get().punkVal->QueryInterface(IID_IWbemClassObject, inside.putVoid()), S_OK);
      EXPECT_EQ(Shown(inside, L"Red"), L"1");
      setRed(inside.get(), 99);
    }
  }
}

TEST(ClassObjectTest, PutChangesNothingButTheObjectsOwnProperties) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  ComPtr<IWbemClassObject> clone;
  ASSERT_EQ(lamp->Clone(clone.put()), WBEM_S_NO_ERROR);
  const std::pair<const wchar_t*, HRESULT> rows[] = {{L"NoSuch", WBEM_E_NOT_FOUND},
                                                     {L"__CLASS", WBEM_E_INVALID_PARAMETER},
                                                     {L"Note", WBEM_E_TYPE_MISMATCH},
                                                     {L"Level", WBEM_S_NO_ERROR}};
  const std::uint64_t coercions = TheStatistics().coercions.load();
  for (const auto& [property, result] : rows) {
    EXPECT_EQ(lamp->Put(property, 0, &NumberValue(9, VT_UI1)->get(), 0), result);
    EXPECT_EQ(TheStatistics().coercions.load() - coercions, SUCCEEDED(result) ? 1U : 0U);
  }
  EXPECT_EQ(Shown(lamp, L"Level"), L"9");
  EXPECT_EQ(Shown(clone, L"Level"), L"20");
  EXPECT_EQ(client.Object(L"Lamp")->Put(L"Level", 0, nullptr, 0), WBEM_E_NOT_SUPPORTED);
}

TEST(ClassObjectTest, GivesMethodSignaturesAndInstancesWithInitialValues) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp");
  ComPtr<IWbemClassObject> input;
  ComPtr<IWbemClassObject> output;
  EXPECT_EQ(lamp->GetMethod(L"setlevel", 0, input.put(), output.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(input, L"__CLASS"), L"__PARAMETERS");
  EXPECT_EQ(Shown(output, L"Before"), L"null");
  EXPECT_EQ(lamp->GetMethod(L"Blink", 0, input.put(), output.put()), WBEM_S_NO_ERROR);
  EXPECT_FALSE(input || output);
  IWbemClassObject* none = lamp.get();
  EXPECT_EQ(lamp->GetMethod(L"NoSuch", 0, &none, nullptr), WBEM_E_NOT_FOUND);
  EXPECT_EQ(none, nullptr);
  const auto colour = client.Spawn(L"colour");
  EXPECT_EQ(Shown(colour, L"Mood"), L"calm");
  EXPECT_EQ(Shown(colour, L"Red"), L"null");
  EXPECT_EQ(colour->SpawnInstance(0, output.put()), WBEM_E_INVALID_OPERATION) << "of an instance";
}

TEST(ClassObjectTest, IteratesOverMethodsAndProperties) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp");
  /// The names that an iteration gives, and how it ends.
  const auto names = [](auto next) {
    std::wstring shown;
    platform::Bstr name;
    HRESULT result = next(name.put());
    for (; result == WBEM_S_NO_ERROR; result = next(name.put())) {
      shown += std::wstring(name.get()) + L" ";
    }
    return shown + (result == WBEM_S_NO_MORE_DATA ? L"end" : result == WBEM_E_UNEXPECTED ? L"unexpected" : L"error");
  };
  const auto methods = [&] { return names([&](BSTR* name) { return lamp->NextMethod(0, name, nullptr, nullptr); }); };
  const auto properties = [&] {
    return names([&](BSTR* name) { return lamp->Next(0, name, nullptr, nullptr, nullptr); });
  };
  EXPECT_EQ(methods() + L" " + properties(), L"unexpected unexpected") << "not begun";
  EXPECT_EQ(lamp->BeginMethodEnumeration(0), WBEM_S_NO_ERROR);
  EXPECT_EQ(methods(), L"SetLevel Blink end");
  EXPECT_EQ(lamp->BeginEnumeration(0x40), WBEM_S_NO_ERROR) << "without the system's";
  EXPECT_EQ(properties(), L"Name Level Colour Note end");
}

} // namespace
} // namespace simhost
