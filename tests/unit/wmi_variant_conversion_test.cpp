#include "tests/unit/support/traced.h"
#include "tests/unit/support/variant_values.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_common.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>

namespace korvex {
namespace {

std::string Hex(std::uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(number));
  return text;
}

/// What SetVariantType leaves in a VARIANT that held VT_NULL.
struct Written {
  Outcome outcome;
  platform::Variant variant;
};
void Write(Written& written, const void* value, std::uint32_t length, std::uint32_t cimType) {
  written.variant.get().vt = VT_NULL;
  written.outcome = Traced([&] { return OrbWmiCommon::SetVariantType(written.variant.get(), value, length, cimType); });
}

std::string CallLine(std::uint32_t cimType) {
  return "(orbWmiCommon):SetVariantType(0x1);cimType(" + Hex(cimType) + ")\n";
}

TEST(SetVariantType, WritesNumbersByCimType) {
  constexpr std::uint32_t kValue = 0xFFFEFF80;
  struct Row {
    std::uint32_t cimType;
    VARTYPE vartype;
    LONG written;
  };
  constexpr Row kRows[] = {
      {CIM_SINT16, VT_I2, -128},
      {CIM_SINT8, VT_I2, -128},
      {CIM_SINT32, VT_I4, -65664},
      {CIM_UINT16, VT_I4, -65664},
      {CIM_UINT32, VT_I4, -65664},
      {CIM_UINT8, VT_UI1, 0x80},
      {CIM_BOOLEAN, VT_BOOL, VARIANT_TRUE},
  };
  for (const Row& row : kRows) {
    Written written;
    Write(written, &kValue, 0, row.cimType);
    EXPECT_EQ(written.outcome, (Outcome{0, CallLine(row.cimType)}));
    const VARIANT& variant = written.variant.get();
    ASSERT_EQ(variant.vt, row.vartype) << row.cimType;
    const LONG number = row.vartype == VT_I4    ? variant.lVal
                        : row.vartype == VT_UI1 ? variant.bVal
                        : row.vartype == VT_I2  ? variant.iVal
                                                : variant.boolVal;
    EXPECT_EQ(number, row.written) << row.cimType;
  }
}

TEST(SetVariantType, WritesAnyByteButZeroAsTrue) {
  constexpr std::pair<unsigned char, VARIANT_BOOL> kRows[] = {{0, VARIANT_FALSE}, {1, VARIANT_TRUE}, {2, VARIANT_TRUE}};
  for (const auto& [byte, boolean] : kRows) {
    Written written;
    Write(written, &byte, 1, CIM_BOOLEAN);
    EXPECT_EQ(written.variant.get().boolVal, boolean) << int{byte};
  }
}

TEST(SetVariantType, WritesTextsAndWideNumbersAsText) {
  constexpr std::int64_t kMinusOne = -1;
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::uint64_t kMost = UINT64_MAX;
  struct Row {
    std::uint32_t cimType;
    const void* value;
    std::uint32_t length;
    std::wstring written;
  };
  const Row rows[] = {
      {CIM_STRING, "abc                                       ", 42, L"abc" + std::wstring(39, L' ')},
      {CIM_STRING, "abc\0defghijklmnopqrstuvwxyzabcdefghijklmno", 42, L"abc"},
      {CIM_STRING, "abcdef", 3, L"abc"},
      {CIM_STRING, "\xE9\x80", 2, L"\u00E9\u20AC"},
      {CIM_STRING, "", 0, L""},
      {CIM_SINT64, &kMinusOne, 8, L"-1"},
      {CIM_SINT64, &kLeast, 8, L"-9223372036854775808"},
      {CIM_UINT64, &kMost, 8, L"18446744073709551615"},
  };
  for (const Row& row : rows) {
    Written written;
    Write(written, row.value, row.length, row.cimType);
    EXPECT_EQ(written.outcome, (Outcome{0, CallLine(row.cimType)}));
    ASSERT_EQ(written.variant.get().vt, VT_BSTR);
    EXPECT_EQ(std::wstring(written.variant.get().bstrVal, SysStringLen(written.variant.get().bstrVal)), row.written);
  }
}

TEST(SetVariantType, RefusesOtherTypesAndLeavesTheTargetAlone) {
  constexpr double kValue = 1.0;
  for (const std::uint32_t cimType :
       {std::uint32_t{CIM_EMPTY}, std::uint32_t{CIM_REAL32}, std::uint32_t{CIM_REAL64}, std::uint32_t{CIM_DATETIME},
        std::uint32_t{CIM_REFERENCE}, std::uint32_t{CIM_CHAR16}, std::uint32_t{0x2011}, std::uint32_t{0xFFFF0003}}) {
    Written written;
    Write(written, &kValue, sizeof kValue, cimType);
    EXPECT_EQ(written.outcome,
              (Outcome{1, CallLine(cimType) + "(orbWmiCommon):SetVariantDataError(UnknownCIMType)\n"}));
    EXPECT_EQ(written.variant.get().vt, VT_NULL);
  }
  Written written;
  Write(written, nullptr, 4, CIM_UINT32);
  EXPECT_EQ(written.outcome.status, 1U);
  EXPECT_EQ(written.variant.get().vt, VT_NULL);
}

constexpr char kUntouched = '#';

/// GetVariantData of a value into a buffer of `length` bytes: what the buffer holds then, with one byte behind it.
Outcome Read(const VARIANT& source, std::uint32_t length, std::uint32_t cimType, std::string& bytes) {
  bytes.assign(length + 1, kUntouched);
  return Traced([&] { return OrbWmiCommon::GetVariantData(source, bytes.data(), length, cimType); });
}

std::string ReadLine(const VARIANT& source, std::uint32_t cimType) {
  return "(orbWmiCommon):GetVariantType(" + Hex(source.vt) + ");cimType(" + Hex(cimType) + ")\n";
}

constexpr std::string_view kShort = "(orbWmiCommon):InsufficientBufferLength-GetVariantData\n";
constexpr std::string_view kUnsupported = "(orbWmiCommon):GetVariantDataError(UnsupportedVariantType)\n";
constexpr std::string_view kNotNarrow = "(orbWmiCommon):WMIRequestFailed(wcstombs).\n";

TEST(GetVariantData, WritesValuesThatFit) {
  using namespace std::string_view_literals;
  struct Row {
    const char* what;
    Value value;
    std::uint32_t cimType;
    std::uint32_t length;
    std::string_view written;
  };
  const Row rows[] = {
      {"32 bits", NumberValue(0x04030201), CIM_UINT32, 4, "\x01\x02\x03\x04#"sv},
      {"32 bits with room left", NumberValue(0x04030201), CIM_STRING, 6, "\x01\x02\x03\x04###"sv},
      {"byte", NumberValue(0x41, VT_UI1), CIM_UINT8, 1, "A#"sv},
      {"true", BooleanValue(VARIANT_TRUE), CIM_BOOLEAN, 4, "\x01\0\0\0#"sv},
      {"odd true is false", BooleanValue(1), CIM_BOOLEAN, 4, "\0\0\0\0#"sv},
      {"true in two bytes", BooleanValue(VARIANT_TRUE), CIM_BOOLEAN, 2, "\x01\0#"sv},
      {"true in three bytes", BooleanValue(VARIANT_TRUE), CIM_BOOLEAN, 3, "\x01\0\0#"sv},
      {"text", TextValue(L"abc"), CIM_STRING, 4, "abc\0#"sv},
      {"text up to U+00FF", TextValue(L"\u00E9\u00FF"), CIM_STRING, 3, "\xE9\xFF\0#"sv},
      {"empty text", TextValue(L""), CIM_STRING, 1, "\0#"sv},
      {"text as sint64", TextValue(L"12"), CIM_SINT64, 8, "#########"sv},
      {"text as datetime", TextValue(L"12"), CIM_DATETIME, 0, "#"sv},
      {"64 bits", TextValue(L"578437695752307201"), CIM_UINT64, 8, "\x01\x02\x03\x04\x05\x06\x07\x08#"sv},
      {"bytes", BytesValue("0123456789abcdef"), 0x2011, 16, "0123456789abcdef#"sv},
      {"bytes from 5 on", BytesValue("xyz", 5), 0x2011, 4, "xyz##"sv},
      {"no bytes", BytesValue(""), 0x2011, 0, "#"sv},
  };
  for (const Row& row : rows) {
    std::string bytes;
    EXPECT_EQ(Read(row.value->get(), row.length, row.cimType, bytes),
              (Outcome{0, ReadLine(row.value->get(), row.cimType)}))
        << row.what;
    EXPECT_EQ(bytes, row.written) << row.what;
  }
}

/// An array of `count` elements of one type in a VARIANT that says another.
Value Mislabelled(VARTYPE label, VARTYPE type, std::size_t count) {
  return ArrayValue(label, MakeArray(type, count));
}

TEST(GetVariantData, RefusesWhatDoesNotFitOrCannotBeRead) {
  struct Row {
    const char* what;
    Value value;
    std::uint32_t cimType;
    std::uint32_t length;
    std::string_view message;
  };
  const Value badBounds = BytesValue("abc");
  badBounds->get().parray->rgsabound[0].lLbound = std::numeric_limits<LONG>::max();
  const Row rows[] = {
      {"32 bits", NumberValue(1), CIM_UINT32, 3, kShort},
      {"byte", NumberValue(1, VT_UI1), CIM_UINT8, 0, kShort},
      {"boolean", BooleanValue(VARIANT_TRUE), CIM_BOOLEAN, 1, kShort},
      {"text", TextValue(L"abc"), CIM_STRING, 3, kShort},
      {"64 bits", TextValue(L"1"), CIM_UINT64, 7, kShort},
      {"bytes", BytesValue("0123456789abcdef"), 0x2011, 15, kShort},
      {"object", EmptyValue(VT_UNKNOWN), CIM_OBJECT, sizeof(VARIANT) - 1, kShort},
      {"object into a text", EmptyValue(VT_UNKNOWN), CIM_OBJECT, 260, kShort},
      {"text without a byte", TextValue(L"\u20AC"), CIM_STRING, 260, kNotNarrow},
      {"unpaired surrogate", TextValue(L"a\xD800"), CIM_STRING, 260, kNotNarrow},
      {"no text", EmptyValue(VT_BSTR), CIM_STRING, 260, kNotNarrow},
      {"no text as a number", EmptyValue(VT_BSTR), CIM_UINT64, 8, kUnsupported},
      {"16 bits", NumberValue(1, VT_I2), CIM_SINT16, 4, kUnsupported},
      {"real", EmptyValue(VT_R8), CIM_REAL64, 8, kUnsupported},
      {"null", EmptyValue(VT_NULL), CIM_UINT32, 4, kUnsupported},
      {"empty", EmptyValue(), CIM_UINT32, 4, kUnsupported},
      {"objects", ObjectsValue({nullptr}), kCimObjectArray, 260, kUnsupported},
      {"numbers as bytes", Mislabelled(VT_UI1, VT_I4, 2), 0x2011, 260, kUnsupported},
      {"bounds that wrap", badBounds, 0x2011, 260, kUnsupported},
  };
  for (const Row& row : rows) {
    std::string bytes;
    EXPECT_EQ(Read(row.value->get(), row.length, row.cimType, bytes),
              (Outcome{1, ReadLine(row.value->get(), row.cimType) + std::string(row.message)}))
        << row.what;
    EXPECT_EQ(bytes, std::string(row.length + 1, kUntouched)) << row.what;
  }
}

TEST(GetVariantData, RefusesMissingBuffersAndArrays) {
  EXPECT_EQ(OrbWmiCommon::GetVariantData(NumberValue(1)->get(), nullptr, 4, CIM_UINT32), 1U);
  EXPECT_EQ(OrbWmiCommon::GetVariantData(TextValue(L"")->get(), nullptr, 260, CIM_STRING), 1U);
  const Value noArray = EmptyValue(VT_ARRAY | VT_UI1);
  const Outcome outcome = Traced([&] {
    char byte = 0;
    return OrbWmiCommon::GetVariantData(noArray->get(), &byte, 1, 0x2011);
  });
  EXPECT_EQ(outcome.status, 1U);
  EXPECT_EQ(outcome.trace, ReadLine(noArray->get(), 0x2011) +
                               "(orbWmiCommon):WMIRequestFailed(SafeArrayGetLBound).  Error 0x80070057\n");
}

TEST(WideToInt64, ReadsTheNumberThatATextBeginsWith) {
  constexpr std::pair<const wchar_t*, std::int64_t> kRows[] = {
      {L"12345", 12345},
      {L"+42", 42},
      {L"-7", -7},
      {L"+-7", -7},
      {L"-+7", 0},
      {L"++7", 0},
      {L"12ab", 12},
      {L"", 0},
      {L" 1", 0},
      {L"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {L"18446744073709551615", -1},
      {L"18446744073709551617", 1},
  };
  for (const auto& [text, number] : kRows) {
    EXPECT_EQ(OrbWmiCommon::WideToInt64(text), number) << std::wstring(text).size();
  }
}

TEST(SetCimType, SetsOnlyTheTag) {
  struct Row {
    std::uint32_t cimType;
    VARTYPE vartype;
  };
  constexpr Row kRows[] = {
      {0, VT_EMPTY}, {2, VT_I2},       {3, VT_I4},     {4, VT_R4},     {5, VT_R8},   {8, VT_BSTR},
      {11, VT_BOOL}, {13, VT_UNKNOWN}, {16, VT_I2},    {17, VT_UI1},   {18, VT_I4},  {19, VT_I4},
      {20, VT_BSTR}, {21, VT_BSTR},    {101, VT_BSTR}, {102, VT_BSTR}, {103, VT_I2}, {0x200D, VT_ARRAY | VT_UNKNOWN},
  };
  for (const Row& row : kRows) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_R8;
    variant.llVal = 0x1122334455667788;
    EXPECT_EQ(Traced([&] { return OrbWmiCommon::SetCimType(variant, row.cimType); }),
              (Outcome{0, "(orbWmiCommon):SetCimType(CimType-" + Hex(row.cimType) + ";VarType-0x5)\n"}));
    EXPECT_EQ(variant.vt, row.vartype) << row.cimType;
    EXPECT_EQ(variant.llVal, 0x1122334455667788) << row.cimType;
  }
  for (const std::uint32_t cimType : {1U, 6U, 12U, 14U, 0x2011U, 0x2008U, 0x1000DU}) {
    const Value number = NumberValue(7);
    EXPECT_EQ(OrbWmiCommon::SetCimType(number->get(), cimType), 1U) << cimType;
    EXPECT_EQ(number->get().vt, VT_I4) << cimType;
  }
}

} // namespace
} // namespace korvex
