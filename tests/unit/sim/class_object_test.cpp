#include "simhost/variant_values.h"
#include "tests/unit/sim/lamp_host.h"
#include "tests/unit/support/variant_values.h"

// Class objects: their values as VARIANTs, system properties, signatures and iterations.

namespace simhost {
namespace {

using korvex::NumberValue;
using korvex::ObjectsValue;
using korvex::ObjectValue;
using korvex::TextValue;
using platform::ComPtr;

IUnknown* NoObject(const CimObject& /*object*/) {
  return nullptr;
}

TEST(VariantValuesTest, MapsEachCimTypeToItsVartype) {
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
      {CIM_BOOLEAN, true, VT_BOOL, L"true"},
      {CIM_STRING, anyUnits, VT_BSTR, anyUnits},
      {CIM_UINT32, {}, VT_NULL, L"null"},
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

TEST(VariantValuesTest, PutsWhatIsDocumentedAndCountsWhatIsNot) {
  enum Taken { kPlain, kCoerced, kRefused };
  const struct {
    CIMTYPE type;
    korvex::Value given;
    Taken taken;
    std::uint64_t number = 0;
  } rows[] = {
      {CIM_UINT64, TextValue(L"18446744073709551615"), kPlain, UINT64_MAX},
      {CIM_UINT64, TextValue(L"18446744073709551616"), kRefused},
      {CIM_UINT64, TextValue(L"-1"), kRefused},
      {CIM_UINT64, TextValue(L"12ab"), kRefused},
      {CIM_UINT64, TextValue(L""), kRefused},
      {CIM_SINT64, TextValue(L"-9223372036854775808"), kPlain, std::uint64_t{1} << 63},
      {CIM_SINT64, TextValue(L"9223372036854775808"), kRefused},
      {CIM_UINT64, NumberValue(5), kCoerced, 5},
      {CIM_UINT32, NumberValue(-1), kPlain, UINT32_MAX},
      {CIM_UINT32, NumberValue(-1, VT_UI4), kCoerced, UINT32_MAX},
      {CIM_UINT32, NumberValue(-1, VT_I2), kRefused},
      {CIM_UINT32, korvex::EmptyValue(), kRefused},
      {CIM_UINT16, NumberValue(65535), kPlain, 65535},
      {CIM_UINT16, NumberValue(65536), kRefused},
      {CIM_CHAR16, NumberValue(-1, VT_I2), kPlain, 0xFFFF},
      {CIM_SINT8, NumberValue(128, VT_I2), kRefused},
      {CIM_UINT8, NumberValue(255, VT_UI1), kPlain, 255},
      {CIM_UINT8, NumberValue(255), kCoerced, 255},
      {CIM_BOOLEAN, NumberValue(1), kRefused},
      {CIM_STRING, NumberValue(1), kRefused},
      {CIM_OBJECT, TextValue(L"x"), kRefused},
      {CIM_OBJECT, ObjectValue(nullptr), kRefused},
      {CIM_UINT8 | CIM_FLAG_ARRAY, NumberValue(1, VT_UI1), kRefused},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE("type " + std::to_string(row.type) + ", row " + std::to_string(&row - rows));
    const PutValue put = ValueFromVariant(row.given->get(), Property(L"P", row.type), ClassObject::ObjectBehind);
    EXPECT_EQ(put.result, row.taken == kRefused ? WBEM_E_TYPE_MISMATCH : WBEM_S_NO_ERROR);
    EXPECT_EQ(put.isCoerced, row.taken == kCoerced);
    EXPECT_EQ(put.value.Number(), row.number);
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
      {L"Lamp=\"B\"", L"__class", L"Lamp"},
      {L"Lamp=\"B\"", L"__SUPERCLASS", L"null"},
      {L"Lamp=\"B\"", L"__GENUS", L"2"},
      {L"Lamp=\"B\"", L"__NOSUCH", L"not found"},
      {L"SpareLamp", L"__SUPERCLASS", L"Lamp"},
      {L"SpareLamp", L"__GENUS", L"1"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Shown(client.Object(row.path).get(), row.property), row.shown);
  }
  platform::Variant value;
  CIMTYPE type = 0;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  EXPECT_EQ(lamp->Get(L"Note", 0, value.put(), &type, nullptr), WBEM_S_NO_ERROR);
  EXPECT_EQ(value.get().vt, VT_NULL);
  EXPECT_EQ(type, CIM_STRING) << "a property without a value has its type still";
  value.get() = NumberValue(77)->get();
  EXPECT_EQ(lamp->Get(L"NoSuch", 0, &value.get(), &type, nullptr), WBEM_E_NOT_FOUND);
  EXPECT_EQ(value.get().lVal, 77) << "left alone";
}

TEST(ClassObjectTest, EmbeddedObjectsAreCopiesInAndOut) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  const auto colour = client.Spawn(L"Colour");
  const auto setRed = [](IUnknown* object, LONG red) {
    ComPtr<IWbemClassObject> changed;
    EXPECT_EQ(object->QueryInterface(IID_IWbemClassObject, changed.putVoid()), S_OK);
    EXPECT_EQ(changed->Put(L"Red", 0, &NumberValue(red, VT_UI1)->get(), 0), WBEM_S_NO_ERROR);
  };
  const auto redInside = [&](const wchar_t* property) {
    platform::Variant value;
    EXPECT_EQ(lamp->Get(property, 0, value.put(), nullptr, nullptr), WBEM_S_NO_ERROR);
    IUnknown* object = value.get().punkVal;
    if (value.get().vt == (VT_ARRAY | VT_UNKNOWN)) {
      object = static_cast<IUnknown**>(value.get().parray->pvData)[1];
    }
    ComPtr<IWbemClassObject> inside;
    EXPECT_EQ(object->QueryInterface(IID_IWbemClassObject, inside.putVoid()), S_OK);
    const std::wstring red = Shown(inside.get(), L"Red");
    setRed(object, 99); // only in what Get gave
    return red;
  };
  const struct {
    const wchar_t* property;
    korvex::Value value;
    CIMTYPE type;
    HRESULT result;
  } rows[] = {
      {L"colour", ObjectValue(colour.get()), 0, WBEM_S_NO_ERROR},
      {L"Colour", ObjectValue(lamp.get()), 0, WBEM_E_TYPE_MISMATCH},
      {L"Colour", ObjectValue(client.services.get()), 0, WBEM_E_TYPE_MISMATCH},
      {L"Shades", ObjectsValue({client.Spawn(L"Colour").get(), colour.get()}, 1), 0, WBEM_S_NO_ERROR},
      {L"Shades", ObjectsValue({colour.get(), nullptr}), 0, WBEM_E_TYPE_MISMATCH},
      {L"Shades", ObjectsValue({colour.get()}), CIM_OBJECT, WBEM_E_TYPE_MISMATCH},
  };
  for (const auto& row : rows) {
    setRed(colour.get(), 1);
    EXPECT_EQ(lamp->Put(row.property, 0, &row.value->get(), row.type), row.result) << "row " << &row - rows;
    setRed(colour.get(), 2);
    EXPECT_EQ(redInside(row.property), L"1") << "row " << &row - rows;
    EXPECT_EQ(redInside(row.property), L"1") << "row " << &row - rows;
  }
}

TEST(ClassObjectTest, PutRefusesWhatCannotBeSet) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp=\"B\"");
  ComPtr<IWbemClassObject> clone;
  ASSERT_EQ(lamp->Clone(clone.put()), WBEM_S_NO_ERROR);
  const std::uint64_t coercions = TheStatistics().coercions.load();
  const auto put = [](const ComPtr<IWbemClassObject>& object, const wchar_t* name) {
    return object->Put(name, 0, &NumberValue(9, VT_UI1)->get(), 0);
  };
  EXPECT_EQ(put(lamp, L"NoSuch"), WBEM_E_NOT_FOUND);
  EXPECT_EQ(put(lamp, L"__CLASS"), WBEM_E_INVALID_PARAMETER);
  EXPECT_EQ(put(client.Object(L"Lamp"), L"Level"), WBEM_E_NOT_SUPPORTED);
  EXPECT_EQ(put(lamp, L"Note"), WBEM_E_TYPE_MISMATCH);
  EXPECT_EQ(TheStatistics().coercions.load(), coercions);
  EXPECT_EQ(put(lamp, L"Level"), WBEM_S_NO_ERROR);
  EXPECT_EQ(TheStatistics().coercions.load(), coercions + 1) << "uint32 is promised as VT_I4 only";
  EXPECT_EQ(Shown(lamp.get(), L"Level"), L"9");
  EXPECT_EQ(lamp->Put(L"Level", 0, nullptr, 0), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(lamp.get(), L"Level"), L"null");
  EXPECT_EQ(Shown(clone.get(), L"Level"), L"20");
}

TEST(ClassObjectTest, GivesMethodSignaturesAndInstancesWithInitialValues) {
  const LampClient client;
  const auto lamp = client.Object(L"Lamp");
  ComPtr<IWbemClassObject> input;
  ComPtr<IWbemClassObject> output;
  EXPECT_EQ(lamp->GetMethod(L"setlevel", 0, input.put(), output.put()), WBEM_S_NO_ERROR);
  EXPECT_EQ(Shown(input.get(), L"__CLASS"), L"__PARAMETERS");
  EXPECT_EQ(Shown(output.get(), L"Before"), L"null");
  const std::pair<const wchar_t*, HRESULT> rows[] = {{L"NoSuch", WBEM_E_NOT_FOUND}, {L"Blink", WBEM_S_NO_ERROR}};
  for (const auto& [method, result] : rows) {
    IWbemClassObject* noInput = input.get();
    IWbemClassObject* noOutput = input.get();
    EXPECT_EQ(lamp->GetMethod(method, 0, &noInput, &noOutput), result);
    EXPECT_EQ(noInput, nullptr);
    EXPECT_EQ(noOutput, nullptr);
  }
  const auto colour = client.Spawn(L"colour");
  EXPECT_EQ(Shown(colour.get(), L"Mood"), L"calm");
  EXPECT_EQ(Shown(colour.get(), L"Red"), L"null");
  EXPECT_EQ(colour->SpawnInstance(0, output.put()), WBEM_E_INVALID_OPERATION) << "of an instance";
}

/// The names that an iteration gives, and how it ends.
template <class Next>
std::pair<std::vector<std::wstring>, HRESULT> Names(Next next) {
  std::vector<std::wstring> names;
  for (;;) {
    platform::Bstr name;
    if (const HRESULT result = next(name.put()); result != WBEM_S_NO_ERROR) {
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
  const std::pair<std::vector<std::wstring>, HRESULT> methods = {{L"SetLevel", L"Blink"}, WBEM_S_NO_MORE_DATA};
  EXPECT_EQ(Names(nextMethod).second, WBEM_E_UNEXPECTED);
  EXPECT_EQ(Names(nextProperty).second, WBEM_E_UNEXPECTED);
  EXPECT_EQ(lamp->BeginMethodEnumeration(0), WBEM_S_NO_ERROR);
  EXPECT_EQ(Names(nextMethod), methods);
  EXPECT_EQ(lamp->EndMethodEnumeration(), WBEM_S_NO_ERROR);
  EXPECT_EQ(Names(nextMethod).second, WBEM_E_UNEXPECTED);
  EXPECT_EQ(lamp->BeginEnumeration(0), WBEM_S_NO_ERROR);
  const auto [properties, end] = Names(nextProperty);
  EXPECT_EQ(properties.front(), L"__GENUS");
  EXPECT_EQ(properties.back(), L"Note");
  EXPECT_EQ(end, WBEM_S_NO_MORE_DATA);
}

} // namespace
} // namespace simhost
