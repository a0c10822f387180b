#include "tests/unit/support/traced.h"
#include "tests/unit/support/variant_values.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_common.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace korvex {
namespace {

using namespace std::string_view_literals;

constexpr std::uint32_t kByteArray = 0x2011;

/// A VARIANT's type tag and its number or text.
std::wstring Shown(const VARIANT& variant) {
  const std::wstring tag = std::to_wstring(variant.vt) + L" ";
  if (variant.vt == VT_BSTR) {
    return tag + std::wstring(variant.bstrVal, SysStringLen(variant.bstrVal));
  }
  const bool is16Bits = variant.vt == VT_I2 || variant.vt == VT_BOOL;
  return tag + std::to_wstring(variant.vt == VT_I4 ? variant.lVal : is16Bits ? variant.iVal : variant.bVal);
}

TEST(SetVariantType, WritesTheCallersValueByCimType) {
  constexpr std::string_view kNumber = "\x80\xFF\xFE\xFF"sv;
  constexpr std::string_view kOnes = "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv;
  constexpr std::string_view kPadded = "abc                                       "sv;
  constexpr std::string_view kEnded = "abc\0defghijklmnopqrstuvwxyzabcdefghijklmno"sv;
  const struct {
    std::uint32_t cimType;
    std::string_view value;
    std::wstring written; ///< of a target that held VT_NULL
  } rows[] = {
      {CIM_SINT16, kNumber, L"2 -128"},
      {CIM_SINT8, kNumber, L"2 -128"},
      {CIM_SINT32, kNumber, L"3 -65664"},
      {CIM_UINT16, kNumber, L"3 -65664"},
      {CIM_UINT32, kNumber, L"3 -65664"},
      {CIM_UINT8, kNumber, L"17 128"},
      {CIM_BOOLEAN, "\0"sv, L"11 0"},
      {CIM_BOOLEAN, "\2"sv, L"11 -1"},
      {CIM_STRING, kPadded, L"8 abc" + std::wstring(39, L' ')},
      {CIM_STRING, kEnded, L"8 abc"},
      {CIM_STRING, kEnded.substr(0, 2), L"8 ab"},
      {CIM_STRING, "\xE9\x80"sv, L"8 \u00E9\u20AC"},
      {CIM_STRING, "", L"8 "},
      {CIM_SINT64, kOnes, L"8 -1"},
      {CIM_SINT64, "\0\0\0\0\0\0\0\x80"sv, L"8 -9223372036854775808"},
      {CIM_UINT64, kOnes, L"8 18446744073709551615"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE("row " + std::to_string(&row - rows));
    platform::Variant target;
    target.get().vt = VT_NULL;
    const auto length = static_cast<std::uint32_t>(row.value.size());
    EXPECT_EQ(OrbWmiCommon::SetVariantType(target.get(), row.value.data(), length, row.cimType), 0U);
    EXPECT_EQ(Shown(target.get()), row.written);
  }
  platform::Variant target;
  target.get() = NumberValue(7)->get();
  for (const std::uint32_t cimType : {0U, 4U, 5U, 101U, 102U, 103U, kByteArray, 0xFFFF0003U}) {
    EXPECT_EQ(Traced([&] { return OrbWmiCommon::SetVariantType(target.get(), "12345678", 8, cimType); }),
              "1 (orbWmiCommon):SetVariantDataError(UnknownCIMType)\n");
  }
  EXPECT_EQ(OrbWmiCommon::SetVariantType(target.get(), nullptr, 4, CIM_UINT32), 1U);
  EXPECT_EQ(Shown(target.get()), L"3 7") << "left alone";
}

constexpr const char* kShort = "InsufficientBufferLength-GetVariantData";
constexpr const char* kUnsupported = "GetVariantDataError(UnsupportedVariantType)";
constexpr const char* kNoArray = "WMIRequestFailed(SafeArrayGetLBound).  Error 0x80070057";
constexpr const char* kNotNarrow = "WMIRequestFailed(wcstombs).";

TEST(GetVariantData, WritesWhatFitsAndRefusesTheRest) {
  const Value mislabelled = ArrayValue(VT_UI1, MakeArray(VT_I4, 2));
  const Value badBounds = BytesValue("abc");
  badBounds->get().parray->rgsabound[0].lLbound = std::numeric_limits<LONG>::max();
  const struct {
    const char* what;
    Value value;
    std::uint32_t cimType;
    std::uint32_t length;
    std::string_view written; ///< the buffer and one byte behind it; untouched when there is a message
    const char* message = "";
  } rows[] = {
      {"32 bits", NumberValue(0x04030201), CIM_UINT32, 4, "\x01\x02\x03\x04#"sv},
      {"byte", NumberValue(0x41, VT_UI1), CIM_UINT8, 1, "A#"sv},
      {"true", NumberValue(VARIANT_TRUE, VT_BOOL), CIM_BOOLEAN, 4, "\x01\0\0\0#"sv},
      {"odd true is false", NumberValue(1, VT_BOOL), CIM_BOOLEAN, 4, "\0\0\0\0#"sv},
      {"true in three bytes", NumberValue(VARIANT_TRUE, VT_BOOL), CIM_BOOLEAN, 3, "\x01\0\0#"sv},
      {"text", TextValue(L"abc"), CIM_STRING, 4, "abc\0#"sv},
      {"text up to U+00FF", TextValue(L"\u00E9\u00FF"), CIM_STRING, 3, "\xE9\xFF\0#"sv},
      {"text as sint64", TextValue(L"12"), CIM_SINT64, 8, "#########"sv},
      {"text as datetime", TextValue(L"12"), CIM_DATETIME, 0, "#"sv},
      {"64 bits", TextValue(L"578437695752307201"), CIM_UINT64, 8, "\x01\x02\x03\x04\x05\x06\x07\x08#"sv},
      {"bytes", BytesValue("0123456789abcdef"), kByteArray, 16, "0123456789abcdef#"sv},
      {"bytes from 5 on", BytesValue("xyz", 5), kByteArray, 4, "xyz##"sv},
      {"no bytes", BytesValue(""), kByteArray, 0, "#"sv},
      {"32 bits, cut", NumberValue(1), CIM_UINT32, 3, {}, kShort},
      {"boolean", NumberValue(VARIANT_TRUE, VT_BOOL), CIM_BOOLEAN, 1, {}, kShort},
      {"text, cut", TextValue(L"abc"), CIM_STRING, 3, {}, kShort},
      {"64 bits, cut", TextValue(L"1"), CIM_UINT64, 7, {}, kShort},
      {"bytes, cut", BytesValue("0123456789abcdef"), kByteArray, 15, {}, kShort},
      {"object into a text", EmptyValue(VT_UNKNOWN), CIM_OBJECT, 260, {}, kShort},
      {"text without a byte", TextValue(L"\u20AC"), CIM_STRING, 260, {}, kNotNarrow},
      {"unpaired surrogate", TextValue(L"a\xD800"), CIM_STRING, 260, {}, kNotNarrow},
      {"no text", EmptyValue(VT_BSTR), CIM_STRING, 260, {}, kNotNarrow},
      {"no text as a number", EmptyValue(VT_BSTR), CIM_UINT64, 8, {}, kUnsupported},
      {"16 bits", NumberValue(1, VT_I2), CIM_SINT16, 4, {}, kUnsupported},
      {"null", EmptyValue(VT_NULL), CIM_UINT32, 4, {}, kUnsupported},
      {"objects", ObjectsValue({nullptr}), kCimObjectArray, 260, {}, kUnsupported},
      {"numbers as bytes", mislabelled, kByteArray, 260, {}, kUnsupported},
      {"bounds that wrap", badBounds, kByteArray, 260, {}, kUnsupported},
      {"no array", EmptyValue(VT_ARRAY | VT_UI1), kByteArray, 1, {}, kNoArray},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string message = row.message;
    const std::string untouched(row.length + 1, '#');
    std::string bytes = untouched;
    EXPECT_EQ(
        Traced([&] { return OrbWmiCommon::GetVariantData(row.value->get(), &bytes[0], row.length, row.cimType); }),
        message.empty() ? "0 " : "1 (orbWmiCommon):" + message + "\n");
    EXPECT_EQ(bytes, message.empty() ? row.written : untouched);
  }
  EXPECT_EQ(OrbWmiCommon::GetVariantData(NumberValue(1)->get(), nullptr, 4, CIM_UINT32), 1U);
  EXPECT_EQ(OrbWmiCommon::GetVariantData(TextValue(L"")->get(), nullptr, 260, CIM_STRING), 1U);
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
      {L"18446744073709551615", -1}};
  for (const auto& [text, number] : kRows) {
    EXPECT_EQ(OrbWmiCommon::WideToInt64(text), number) << testing::PrintToString(std::wstring(text));
  }
}

TEST(SetCimType, SetsOnlyTheTag) {
  constexpr VARTYPE kNoTag = VT_DISPATCH;
  constexpr std::pair<std::uint32_t, VARTYPE> kRows[] = {
      {0, VT_EMPTY}, {2, VT_I2},       {3, VT_I4},       {4, VT_R4},   {5, VT_R8},       {8, VT_BSTR},
      {11, VT_BOOL}, {16, VT_I2},      {17, VT_UI1},     {18, VT_I4},  {13, VT_UNKNOWN}, {19, VT_I4},
      {20, VT_BSTR}, {21, VT_BSTR},    {103, VT_I2},     {1, kNoTag},  {101, VT_BSTR},   {102, VT_BSTR},
      {6, kNoTag},   {0x200D, 0x200D}, {0x2011, kNoTag}, {12, kNoTag}, {14, kNoTag}};
  for (const auto& [cimType, tag] : kRows) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = kNoTag;
    variant.llVal = 0x1122334455667788;
    EXPECT_EQ(OrbWmiCommon::SetCimType(variant, cimType), tag == kNoTag ? 1U : 0U) << cimType;
    EXPECT_EQ(variant.vt, tag) << cimType;
    EXPECT_EQ(variant.llVal, 0x1122334455667788) << cimType;
  }
}

} // namespace
} // namespace korvex
