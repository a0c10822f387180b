#include "tests/unit/support/wmi_test.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_array_enumerator.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/store_ptr.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

const std::string kTag = "(orbWmiEnumerator):";

class OrbWmiEnumeratorTest : public WmiTest {
protected:
  void SetUp() override {
    WmiTest::SetUp();
    m_first = m_wmi->NewObject({
        {L"Level", CIM_UINT32, NumberValue(7)},
        {L"Name", CIM_STRING, TextValue(L"first")},
        {L"Nothing", CIM_STRING, EmptyValue(VT_NULL)},
        {L"Part", CIM_OBJECT, ObjectValue(m_wmi->NewObject({{L"Size", CIM_UINT8, NumberValue(3, VT_UI1)}}))},
        {L"Hole", CIM_OBJECT, EmptyValue(VT_UNKNOWN)},
        {L"List", static_cast<CIMTYPE>(kCimObjectArray),
         ObjectsValue({m_wmi->NewObject({{L"Size", CIM_UINT8, NumberValue(10, VT_UI1)}}),
                       m_wmi->NewObject({{L"Size", CIM_UINT8, NumberValue(11, VT_UI1)}})})},
    });
    m_second = m_wmi->NewObject({{L"Level", CIM_UINT32, NumberValue(8)}});
    m_wmi->classes[L"C"] = {m_wmi->NewObject({{L"Level", CIM_UINT32, EmptyValue(VT_NULL)}}), {m_first, m_second}};
    m_wmi->classes[L"Empty"] = {m_wmi->NewObject({}), {}};
    Connect();
    ASSERT_EQ(m_class.Initialize(m_connection, L"C"), kWmiSuccess);
  }

  void TearDown() override {
    m_class.cleanUp();
    WmiTest::TearDown();
  }

  /// A class that has been bound to a connection only.
  void BindWithoutDefinition(OrbWmiClass& bound) { ASSERT_EQ(bound.Initialize(m_connection, nullptr), kWmiSuccess); }

  static std::uint32_t Level(OrbWmiEnumerator& enumerator) {
    std::uint32_t level = 0;
    enumerator.GetProperty(L"Level", &level, sizeof level);
    return level;
  }
  static int Size(OrbWmiEnumerator& enumerator) {
    std::uint8_t size = 0;
    return enumerator.GetProperty(L"Size", &size, sizeof size) == kWmiSuccess ? size : -1;
  }

  FakeClassObject* m_first = nullptr;
  FakeClassObject* m_second = nullptr;
  OrbWmiClass m_class;
};

TEST_F(OrbWmiEnumeratorTest, WalksInstancesIndependently) {
  OrbWmiEnumerator one;
  OrbWmiEnumerator other;
  ASSERT_EQ(one.Initialize(&m_class), kWmiSuccess);
  ASSERT_EQ(other.Initialize(&m_class), kWmiSuccess);
  EXPECT_EQ(Level(one), 7U);
  EXPECT_EQ(Traced([&] { return one.Next(); }),
            (Outcome{0, kTag + "Next m_ClassObjectInstance " + Digits(m_second) + "\n"}));
  EXPECT_EQ(Level(one), 8U);
  EXPECT_EQ(Level(other), 7U);
  EXPECT_EQ(Traced([&] { return one.Next(); }), (Outcome{2, kTag + "Next m_ClassObjectInstance 0000000000000000\n"}));
  EXPECT_EQ(one.GetClassObjectInstance(), nullptr);
  EXPECT_EQ(Traced([&] { return one.Reset(); }), (Outcome{0, ""}));
  EXPECT_EQ(one.GetClassObjectInstance(), nullptr);
  EXPECT_EQ(one.Next(), 0U);
  EXPECT_EQ(Level(one), 7U);
  // Initialised again, it stands on the first of the other class: on none.
  OrbWmiClass empty;
  ASSERT_EQ(empty.Initialize(m_connection, L"Empty"), kWmiSuccess);
  EXPECT_EQ(one.Initialize(&empty), 0U);
  EXPECT_EQ(one.GetClassObjectInstance(), nullptr);
  EXPECT_EQ(CaptureTraced([&] { one.cleanUp(); }).out, kTag + "cleanUp\n");
}

TEST_F(OrbWmiEnumeratorTest, TellsWhyItCannotWalk) {
  OrbWmiEnumerator enumerator;
  EXPECT_EQ(Traced([&] { return enumerator.Initialize(nullptr); }),
            (Outcome{5, kTag + "ClassNotDefined(OrbWmiEnumerator)-Initialize\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.Next(); }), (Outcome{5, kTag + "ClassNotDefined(Next)\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.Reset(); }), (Outcome{5, kTag + "ClassNotDefined(Reset)\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.InitializeInputEnumerator(nullptr); }),
            (Outcome{5, kTag + "ClassNotDefined(Reset)\n"}));

  OrbWmiClass unbound;
  BindWithoutDefinition(unbound);
  EXPECT_EQ(Traced([&] { return enumerator.Initialize(&unbound); }),
            (Outcome{1, kTag + "m_ClassObjectEnumerator 0000000000000000;m_IsCloned 0x0\n" + kTag +
                            "InitializationFailure(OrbWmiEnumerator)->Initialize\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.Next(); }), (Outcome{5, ""}));
  EXPECT_EQ(Traced([&] { return enumerator.Reset(); }),
            (Outcome{5, kTag + "ClassObjectEnumeratorNotDefined(Reset)\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.InitializeInputEnumerator(&unbound); }), (Outcome{1, ""}));

  ASSERT_EQ(enumerator.Initialize(&m_class), kWmiSuccess);
  m_wmi->End("EnumNext", platform::WbemResult(WBEM_E_FAILED));
  EXPECT_EQ(Traced([&] { return enumerator.Next(); }),
            (Outcome{1, kTag + "Next m_ClassObjectInstance 0000000000000000\n" + kTag +
                            "WMIRequestFailed(Next)-Next.  Error 0x80041001\n"}));
  m_wmi->End("EnumNext", S_OK);
  EXPECT_EQ(enumerator.Next(), 1U);
  m_wmi->End("EnumReset", platform::WbemResult(WBEM_E_INVALID_OPERATION));
  EXPECT_EQ(Traced([&] { return enumerator.Reset(); }),
            (Outcome{1, kTag + "WMIRequestFailed(Reset)-Reset.  Error 0x80041016\n"}));
  m_wmi->End("SpawnInstance", platform::WbemResult(WBEM_E_FAILED));
  EXPECT_EQ(Traced([&] { return enumerator.InitializeInputEnumerator(&m_class); }),
            (Outcome{1, kTag + "WMIRequestFailed(SpawnInstance)-InitializeInputEnumerator.  Error 0x80041001\n"}));
}

TEST_F(OrbWmiEnumeratorTest, ReadsProperties) {
  OrbWmiEnumerator enumerator;
  ASSERT_EQ(enumerator.Initialize(&m_class), kWmiSuccess);
  char text[8] = "#######";
  EXPECT_EQ(Traced([&] { return enumerator.GetProperty(L"Name", text, sizeof text); }),
            (Outcome{0, "(orbWmiCommon):GetVariantType(0x8);cimType(0x8)\n"}));
  EXPECT_EQ(std::string(text, sizeof text), std::string("first\0\0\0", 8));
  EXPECT_EQ(enumerator.GetProperty(L"Name", text, 5), 1U);
  EXPECT_EQ(std::string(text, sizeof text), std::string("\0\0\0\0\0\0\0\0", 8));
  text[0] = '#';
  EXPECT_EQ(Traced([&] { return enumerator.GetProperty(L"Nothing", text, sizeof text); }),
            (Outcome{7, kTag + "NullDataType(GetProperty)\n"}));
  EXPECT_STREQ(text, "");
  EXPECT_EQ(Traced([&] { return enumerator.GetProperty(L"Unknown", text, sizeof text); }),
            (Outcome{1, kTag + "WMIRequestFailed(Get)-GetProperty.  Error 0x80041002\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.GetProperty(L"Name", nullptr, 8); }),
            (Outcome{5, kTag + "BufferNotDefined(GetProperty)\n"}));
  OrbWmiEnumerator nowhere;
  EXPECT_EQ(Traced([&] { return nowhere.GetProperty(L"Name", text, sizeof text); }),
            (Outcome{5, kTag + "ClassObjectInstanceNotDefined(GetProperty)\n"}));
}

TEST_F(OrbWmiEnumeratorTest, WritesAndSavesProperties) {
  const std::uint32_t level = 12;
  OrbWmiEnumerator enumerator;
  EXPECT_EQ(Traced([&] { return enumerator.SetProperty(L"Level", nullptr, 4); }),
            (Outcome{5, kTag + "BufferNotDefined(SetProperty)\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.SetProperty(L"Level", &level, 4); }),
            (Outcome{5, kTag + "ClassObjectInstanceNotDefined(SetProperty)\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.SaveProperties(); }),
            (Outcome{5, kTag + "NoServiceConnection(SaveProperties)\n"}));

  ASSERT_EQ(enumerator.InitializeInputEnumerator(&m_class), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return enumerator.SetProperty(L"Level", &level, 4); }),
            (Outcome{0, "(orbWmiCommon):SetVariantType(0x1);cimType(0x13)\n"}));
  EXPECT_EQ(m_wmi->log.back(), L"Put Level vt 3 type 0");
  EXPECT_EQ(Level(enumerator), 12U);
  EXPECT_EQ(Traced([&] { return enumerator.SetProperty(L"Unknown", &level, 4); }),
            (Outcome{1, kTag + "WMIRequestFailed(Get)-SetProperty.  Error 0x80041002\n"}));
  m_wmi->End("Put", platform::WbemResult(WBEM_E_TYPE_MISMATCH));
  EXPECT_EQ(Traced([&] { return enumerator.SetProperty(L"Level", &level, 4); }),
            (Outcome{1, "(orbWmiCommon):SetVariantType(0x3);cimType(0x13)\n" + kTag +
                            "WMIRequestFailed(Put)-SetProperty.  Error 0x80041005\n"}));

  EXPECT_EQ(Traced([&] { return enumerator.SaveProperties(); }), (Outcome{0, ""}));
  EXPECT_EQ(m_wmi->log.back(), L"PutInstance");
  m_wmi->End("PutInstance", platform::WbemResult(WBEM_E_ACCESS_DENIED));
  EXPECT_EQ(Traced([&] { return enumerator.SaveProperties(); }),
            (Outcome{1, kTag + "WMIRequestFailed(PutInstance).  Error 0x80041003\n"}));
  enumerator.cleanUp();
  EXPECT_EQ(Traced([&] { return enumerator.SaveProperties(); }),
            (Outcome{5, kTag + "ClassObjectInstanceNotDefined(SaveProperties)\n"}));
}

TEST_F(OrbWmiEnumeratorTest, PassesObjectsAndArraysOnToProperties) {
  FakeClassObject* part = m_wmi->NewObject({});
  const Value parts = ObjectsValue({part});
  OrbWmiEnumerator enumerator;
  ASSERT_EQ(enumerator.Initialize(&m_class), kWmiSuccess);
  // The reference passes to the property, or goes with a failed call.
  part->AddRef();
  EXPECT_EQ(enumerator.SetProperty(L"Part", part, sizeof(void*)), 0U);
  part->AddRef();
  m_wmi->End("Put", platform::WbemResult(WBEM_E_FAILED));
  EXPECT_EQ(enumerator.SetProperty(L"Part", part, sizeof(void*)), 1U);
  EXPECT_EQ(enumerator.SetProperty(L"List", parts->get().parray, sizeof(void*)), 0U);
  // The service's, the property's, the array's and the copy's.
  EXPECT_EQ(part->AddRef(), 5U);
  part->Release();
}

TEST_F(OrbWmiEnumeratorTest, StepsThroughEmbeddedArrays) {
  OrbWmiClass elements;
  ASSERT_EQ(elements.Initialize(m_connection, L"Empty"), kWmiSuccess);
  OrbWmiEnumerator owner;
  ASSERT_EQ(owner.Initialize(&m_class), kWmiSuccess);
  OrbWmiEnumerator* made = nullptr;
  ASSERT_EQ(owner.InitArrayEnumerator(&elements, L"List", &made), kWmiSuccess);
  const StorePtr<OrbWmiEnumerator> list(made);
  EXPECT_EQ(list->GetClassObjectInstance(), nullptr);
  EXPECT_EQ(Traced([&] { return list->GetElement(1); }), (Outcome{0, "(orbWmiVariant):Bounds(Low-0x0;High-0x1)\n"}));
  EXPECT_EQ(Size(*list), 11);
  EXPECT_EQ(list->GetElement(0), 0U);
  EXPECT_EQ(Size(*list), 10);
  EXPECT_EQ(list->GetElement(2), 2U);
  EXPECT_EQ(list->GetClassObjectInstance(), nullptr);
  // A property without an array has no elements.
  ASSERT_EQ(owner.InitArrayEnumerator(&elements, L"Nothing", &made), kWmiSuccess);
  const StorePtr<OrbWmiEnumerator> none(made);
  EXPECT_EQ(none->GetElement(0), 2U);
}

TEST_F(OrbWmiEnumeratorTest, TellsWhyThereIsNoEmbeddedArray) {
  OrbWmiEnumerator owner;
  OrbWmiEnumerator* made = &owner;
  EXPECT_EQ(Traced([&] { return owner.InitArrayEnumerator(&m_class, L"List", nullptr); }),
            (Outcome{5, kTag + "NewEnumeratorNotDefined(OrbWmiEnumerator)-InitArrayEnumerator\n"}));
  EXPECT_EQ(Traced([&] { return owner.InitArrayEnumerator(&m_class, L"List", &made); }),
            (Outcome{5, kTag + "ClassObjectInstanceNotDefined(OrbWmiEnumerator)-InitArrayEnumerator\n"}));
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(Traced([&] { return owner.GetElement(0); }), (Outcome{5, kTag + "VariantNotDefined(GetElement)\n"}));
  EXPECT_EQ(Traced([&] { return owner.SetVariant(nullptr); }), (Outcome{5, kTag + "VariantNotDefined(SetVariant)\n"}));
  ASSERT_EQ(owner.Initialize(&m_class), kWmiSuccess);
  made = &owner;
  // The new enumerator goes before the message comes.
  EXPECT_EQ(Traced([&] { return owner.InitArrayEnumerator(&m_class, L"Unknown", &made); }),
            (Outcome{1, kTag + "cleanUp\n" + kTag + "WMIRequestFailed(Get)-InitArrayEnumerator.  Error 0x80041002\n"}));
  EXPECT_EQ(made, nullptr);
}

TEST_F(OrbWmiEnumeratorTest, TracesTheMakingOfAnArrayEnumerator) {
  OrbWmiEnumerator owner;
  ASSERT_EQ(owner.Initialize(&m_class), kWmiSuccess);
  OrbWmiEnumerator* made = nullptr;
  Outcome outcome = Traced([&] { return owner.InitArrayEnumerator(nullptr, L"List", &made); });
  const StorePtr<OrbWmiEnumerator> list(made);
  // Both addresses are the layer's own.
  outcome.trace.replace(outcome.trace.find("OrbVariant(") + 11, 16, "A");
  outcome.trace.replace(outcome.trace.find("var(") + 4, 16, "B");
  EXPECT_EQ(outcome, (Outcome{0, kTag + "OrbVariant(A);var(B);varType(0x200d);cimType(0x200d);\n" + kTag +
                                     "ClassNotDefined(OrbWmiEnumerator)-Initialize\n"}));
  EXPECT_EQ(list->GetElement(0), 0U);
}

TEST_F(OrbWmiEnumeratorTest, StandsOnEmbeddedObjects) {
  OrbWmiEnumerator owner;
  OrbWmiEnumerator* made = &owner;
  EXPECT_EQ(Traced([&] { return owner.InitUnknownEnumerator(L"Part", nullptr); }),
            (Outcome{5, kTag + "NewEnumeratorNotDefined(OrbWmiEnumerator)-InitUnknownEnumerator\n"}));
  EXPECT_EQ(Traced([&] { return owner.InitUnknownEnumerator(L"Part", &made); }),
            (Outcome{5, kTag + "ClassObjectInstanceNotDefined(OrbWmiEnumerator)-InitUnknownEnumerator\n"}));
  EXPECT_EQ(made, nullptr);
  ASSERT_EQ(owner.Initialize(&m_class), kWmiSuccess);
  ASSERT_EQ(owner.InitUnknownEnumerator(L"Part", &made), kWmiSuccess);
  const StorePtr<OrbWmiEnumerator> part(made);
  EXPECT_EQ(Size(*part), 3);

  // What the new enumerator prints as it walks the class is left out.
  const auto failed = [&](const wchar_t* property) {
    made = &owner;
    Outcome outcome = Traced([&] { return owner.InitUnknownEnumerator(property, &made); });
    EXPECT_EQ(made, nullptr);
    const std::string walked = "Next m_ClassObjectInstance " + Digits(m_first) + "\n";
    outcome.trace.erase(0, outcome.trace.find(walked) + walked.size());
    return outcome;
  };
  EXPECT_EQ(failed(L"Unknown"), (Outcome{1, kTag + "WMIRequestFailed(Get)-InitUnknownEnumerator.  Error 0x80041002\n" +
                                                kTag + "cleanUp\n"}));
  EXPECT_EQ(failed(L"Name"),
            (Outcome{5, kTag + "InitUnknownEnumerator-NotUnknown(Name-'Name';CimType-0x8;VtType-0x8).  Error 0x0\n" +
                            kTag + "cleanUp\n"}));
  EXPECT_EQ(failed(L"Hole"), (Outcome{1, kTag + "cleanUp\n" + kTag +
                                             "WMIRequestFailed(QueryInterface)-InitUnknownEnumerator.  Error "
                                             "0x80004003\n"}));
}

TEST_F(OrbWmiEnumeratorTest, StandsOnTheObjectOfAHolder) {
  OrbWmiVariant holder;
  OrbWmiEnumerator enumerator;
  EXPECT_EQ(Traced([&] { return enumerator.Initialize(nullptr, &holder); }),
            (Outcome{5, kTag + "ClassNotDefined(OrbWmiEnumerator)-Initialize\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.Initialize(&m_class, nullptr); }),
            (Outcome{5, kTag + "VariantNotDefined(OrbWmiEnumerator)-Initialize\n"}));
  for (const Value& held : {EmptyValue(), NumberValue(3), EmptyValue(VT_UNKNOWN), ObjectsValue({m_second})}) {
    ASSERT_EQ(holder.CopyVariant(held->get()), kWmiSuccess);
    EXPECT_EQ(Traced([&] { return enumerator.Initialize(&m_class, &holder); }),
              (Outcome{1, kTag + "WMIRequestFailed(QueryInterface).  Error 0x80004003\n"}));
  }
  ASSERT_EQ(holder.CopyVariant(ObjectValue(m_second)->get()), kWmiSuccess);
  m_wmi->End("QueryInterface", E_NOINTERFACE);
  EXPECT_EQ(Traced([&] { return enumerator.Initialize(&m_class, &holder); }),
            (Outcome{1, kTag + "WMIRequestFailed(QueryInterface).  Error 0x80004002\n"}));
  EXPECT_EQ(Traced([&] { return enumerator.Initialize(&m_class, &holder); }), (Outcome{0, ""}));
  EXPECT_EQ(Level(enumerator), 8U);

  EXPECT_EQ(enumerator.Next(), 5U);
  const platform::ComPtr<IUnknown> object(enumerator.GetEnumeratorInterface());
  EXPECT_EQ(object.get(), static_cast<IUnknown*>(m_second));
  const auto give = [&] { return enumerator.GetEnumeratorInterface() == nullptr ? 0U : 1U; };
  m_wmi->End("QueryInterface", E_NOINTERFACE);
  EXPECT_EQ(Traced(give),
            (Outcome{0, kTag + "WMIRequestFailed(QueryInterface)-GetEnumeratorInterface.  Error 0x80004002\n"}));
  enumerator.cleanUp();
  EXPECT_EQ(Traced(give), (Outcome{0, kTag + "NoClassInstance(GetEnumeratorInterface)\n"}));
}

TEST_F(OrbWmiEnumeratorTest, BuildsArraysElementByElement) {
  OrbWmiArrayEnumerator builder;
  ASSERT_EQ(Traced([&] { return builder.Initialize(&m_class, 2); }), (Outcome{0, ""}));
  for (std::uint32_t place = 0; place < 2; ++place) {
    ASSERT_EQ(builder.NewElementInstance(), kWmiSuccess);
    const std::uint32_t level = 40 + place;
    ASSERT_EQ(builder.SetProperty(L"Level", &level, sizeof level), kWmiSuccess);
    std::uint32_t index = 99;
    EXPECT_EQ(builder.SaveElementInstance(&index), kWmiSuccess);
    EXPECT_EQ(index, place);
  }
  std::uint32_t index = 99;
  EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(&index); }),
            (Outcome{1, kTag + "ElementNotSaved(OrbWmiArrayEnumerator).  Error 0x8002000b\n"}));
  EXPECT_EQ(index, 0U);

  LONG lower = 0;
  EXPECT_EQ(SafeArrayGetLBound(builder.GetSafeArray(), 1, &lower), S_OK);
  EXPECT_EQ(lower, 1);
  OrbWmiVariant holder;
  ASSERT_EQ(holder.SetProperty(builder.GetSafeArray(), sizeof(void*), kCimObjectArray), kWmiSuccess);
  OrbWmiEnumerator elements;
  ASSERT_EQ(elements.SetVariant(&holder), kWmiSuccess);
  ASSERT_EQ(elements.GetElement(0), kWmiSuccess);
  EXPECT_EQ(Level(elements), 40U);
  ASSERT_EQ(elements.GetElement(1), kWmiSuccess);
  EXPECT_EQ(Level(elements), 41U);
  holder.Clear();

  // A second array replaces the first.
  ASSERT_EQ(builder.Initialize(&m_class, 0), kWmiSuccess);
  ASSERT_EQ(builder.NewElementInstance(), kWmiSuccess);
  EXPECT_EQ(builder.SaveElementInstance(&index), 1U);
}

TEST_F(OrbWmiEnumeratorTest, TellsWhyAnArrayCannotBeBuilt) {
  const std::string tag = kTag;
  EXPECT_EQ(CaptureTraced([] { const OrbWmiArrayEnumerator builder; }).out, tag + "cleanUp\n" + tag + "cleanUp\n");
  OrbWmiArrayEnumerator builder;
  std::uint32_t index = 0;
  EXPECT_EQ(Traced([&] { return builder.Initialize(nullptr, 1); }),
            (Outcome{5, tag + "ClassNotDefined(OrbWmiArrayEnumerator)-Initialize\n"}));
  EXPECT_EQ(Traced([&] { return builder.NewElementInstance(); }),
            (Outcome{5, tag + "ClassNotDefined(OrbWmiArrayEnumerator)-NewElementInstance\n"}));
  EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(&index); }),
            (Outcome{5, tag + "ClassNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n"}));
  OrbWmiClass unbound;
  BindWithoutDefinition(unbound);
  ASSERT_EQ(builder.Initialize(&unbound, 1), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return builder.NewElementInstance(); }),
            (Outcome{1, tag + "ClassNotDefined(OrbWmiArrayEnumerator)-GetInstanceClass\n"}));
  EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(&index); }),
            (Outcome{5, tag + "ClassObjectInstanceNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n"}));
  ASSERT_EQ(builder.Initialize(&m_class, 1), kWmiSuccess);
  m_wmi->End("SpawnInstance", S_OK);
  EXPECT_EQ(Traced([&] { return builder.NewElementInstance(); }),
            (Outcome{1, tag + "WMIRequestFailed(SpawnInstance)-InitializeInputEnumerator.  Error 0x80004003\n"}));
  ASSERT_EQ(builder.NewElementInstance(), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(nullptr); }),
            (Outcome{5, tag + "ElementOffsetNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n"}));
  m_wmi->End("QueryInterface", E_NOINTERFACE);
  EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(&index); }),
            (Outcome{1, tag + "WMIRequestFailed(QueryInterface)-GetEnumeratorInterface.  Error 0x80004002\n" + tag +
                            "ElementNotSaved(OrbWmiArrayEnumerator).  Error 0x80004003\n"}));
  EXPECT_EQ(CaptureTraced([&] { builder.cleanUp(); }).out, tag + "cleanUp\n" + tag + "cleanUp\n");
  // An instance, but no array any more.
  ASSERT_EQ(builder.InitializeInputEnumerator(&m_class), kWmiSuccess);
  EXPECT_EQ(Traced([&] { return builder.SaveElementInstance(&index); }),
            (Outcome{5, tag + "SafeArrayNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n"}));
}

} // namespace
} // namespace korvex
