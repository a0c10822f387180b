#include "platform/com_owners.h"
#include "tests/unit/sim/wmi_host.h"
#include "tests/unit/support/variant_values.h"
#include "wmi/orb_wmi_array_enumerator.h"
#include "wmi/orb_wmi_common.h"
#include "wmi/orb_wmi_request.h"

#include <functional>
#include <vector>

// What the layer makes of each call that fails, each allocation that is refused and each object that is missing.

namespace korvex {
namespace {

using Operation = std::function<wmiReturn()>;

/// The ways in which a call of the machine is made to fail, and what the layer's message must then show.
std::vector<std::pair<std::string, std::string>> WaysToFail(const simhost::OperationName& call) {
  std::vector<std::pair<std::string, std::string>> ways;
  if (call.family == simhost::CodeFamily::kWmi) {
    ways = {{"access denied", "  Error 0x80041003\n"}, {"failed", "  Error 0x80041001\n"}};
  } else if (call.family == simhost::CodeFamily::kCom) {
    ways = {{"access denied", "  Error 0x80070005\n"}};
  } else if (call.family == simhost::CodeFamily::kAllocation) {
    ways = {{"out of memory", "MemoryAllocationFailed("}};
  }
  if (call.handsOut) {
    ways.emplace_back("nothing", ":");
  }
  return ways;
}

class WmiFailuresTest : public WmiHostTest {
protected:
  /// Lets each call of an operation fail in each way, one at a time, and gives what came of it: for every call that
  /// mattered its statuses, with "!" behind one without a message or without the failure's code in it.
  std::string Swept(const Operation& operation) {
    std::string swept;
    for (const simhost::OperationName& call : simhost::kOperations) {
      std::string statuses;
      for (int occurrence = 1; occurrence <= 5; ++occurrence) {
        std::string added = ",";
        for (const auto& [gives, message] : WaysToFail(call)) {
          Fail(std::string(call.name), gives, occurrence);
          const std::string outcome = Traced(operation);
          added += outcome[0] == '0' || outcome.find(message) != std::string::npos ? outcome.substr(0, 1)
                                                                                   : outcome.substr(0, 1) + "!";
          Stand();
        }
        statuses += added.find_first_not_of(",0") == std::string::npos ? "" : added;
      }
      swept += statuses.empty() ? "" : " " + std::string(call.name) + statuses.replace(0, 1, ":");
    }
    return swept;
  }

  /// Holds each operation, which lacks something that it needs, to the status and the message beside it.
  static void ExpectOutcomes(const std::vector<std::pair<std::string, Operation>>& rows) {
    for (const auto& [expected, operation] : rows) {
      std::string outcome = Traced(operation);
      const std::size_t tagEnd = outcome.find("):");
      outcome = outcome.substr(0, 2) + (tagEnd == std::string::npos ? "" : outcome.substr(tagEnd + 2));
      EXPECT_EQ(outcome, expected.size() == 1 ? expected + " " : expected + "\n");
    }
  }

  /// Gives the enumerator that `make` hands out back; a failure must hand out none.
  template <class Make>
  Operation Making(Make make) {
    return [this, make] {
      OrbWmiEnumerator* made = &m_lamp;
      const wmiReturn status = make(&made);
      EXPECT_EQ(made == nullptr, status != kWmiSuccess);
      platform::DeleteObject(made);
      return status;
    };
  }
  Operation Listing(OrbWmiEnumerator& owner) {
    return Making([&](OrbWmiEnumerator** made) { return owner.InitArrayEnumerator(&m_class, L"Note", made); });
  }
  Operation Entering(OrbWmiEnumerator& owner, const wchar_t* property) {
    return Making([&owner, property](OrbWmiEnumerator** made) { return owner.InitUnknownEnumerator(property, made); });
  }
  Operation Querying(OrbWmiRequest& request) {
    return Making([&](OrbWmiEnumerator** made) { return request.ExecQuery(made); });
  }
};

TEST_F(WmiFailuresTest, Values) {
  const Value text = TextValue(L"abc");
  const Value bytes = BytesValue("abc");
  const Value object = ObjectValue(m_lamp.GetClassObjectInstance());
  const Value objects = ObjectsValue({m_lamp.GetClassObjectInstance()});
  char buffer[4];
  OrbWmiVariant holder;
  const Operation take = [&] {
    platform::ComPtr<IWbemClassObject> element;
    return holder.GetElement(0, element.put());
  };
  const Operation copy = [&] {
    platform::Variant read;
    return OrbWmiCommon::GetVariantData(object->get(), &read.get(), sizeof(VARIANT), CIM_OBJECT);
  };
  EXPECT_EQ(Swept([&] { return OrbWmiCommon::GetVariantData(text->get(), buffer, 4, CIM_STRING); }),
            " AllocateStore:4");
  EXPECT_EQ(Swept([&] { return OrbWmiCommon::GetVariantData(bytes->get(), buffer, 4, 0x2011); }),
            " SafeArrayGetLBound:1 SafeArrayGetUBound:1 SafeArrayAccessData:1");
  EXPECT_EQ(Swept(copy), " VariantCopy:1");
  EXPECT_EQ(Swept([&] { return holder.SetProperty("abc", 3, CIM_STRING); }), " SysAllocString:4! AllocateStore:4");
  EXPECT_EQ(Swept([&] { return holder.CopyVariant(objects->get()); }), " VariantCopy:1");
  EXPECT_EQ(Swept(take), " QueryInterface:1 SafeArrayGetLBound:1 SafeArrayGetUBound:1 SafeArrayAccessData:1");
}

TEST_F(WmiFailuresTest, ConnectionsAndClasses) {
  const Operation connect = [&] {
    OrbWmiConnection other;
    const wmiReturn status = other.Initialize(L"root\\WMI");
    EXPECT_EQ(other.IsConnected(), status == kWmiSuccess ? 1 : 0);
    return status;
  };
  const Operation secure = [&] { return m_connection.SetSecurity(); };
  const Operation bind = [&] { return m_class.Initialize(m_connection, L"Lamp"); };
  EXPECT_EQ(Swept(&OrbWmiCommon::InitializeSecurity), " CoInitializeSecurity:1");
  EXPECT_EQ(Swept(connect), " ConnectServer:666 QueryInterface:6 CoCreateInstance:6 SysAllocString:4");
  EXPECT_EQ(Swept(bind), " GetObject:911 CreateInstanceEnum:911 SysAllocString:4");
  ASSERT_EQ(secure(), kWmiSuccess);
  EXPECT_EQ(Swept(bind), " GetObject:911 CreateInstanceEnum:911 QueryInterface:1,1 QueryBlanket:1 SetBlanket:1 "
                         "CoSetProxyBlanket:1 SysAllocString:4");
  EXPECT_EQ(Swept(secure), " QueryInterface:6 SetBlanket:6 CoSetProxyBlanket:6");
}

TEST_F(WmiFailuresTest, Names) {
  char name[20];
  const Operation firstMethod = [&] { return m_class.ResetMethodName(name, sizeof name); };
  const Operation firstProperty = [&] { return m_class.ResetPropertyName(name, sizeof name); };
  EXPECT_EQ(Swept(firstMethod), " BeginMethodEnumeration:1!1! NextMethod:1!1!1");
  EXPECT_EQ(Swept(firstProperty), " BeginEnumeration:1!1! NextProperty:1!1!1!");
  Fail("NextMethod", "access denied");
  EXPECT_EQ(Traced(firstMethod), "1 (orbWmiClass):PropertyNameNull(NextMethodName)\n");
  for (const auto& [gives, status] : {std::pair{"transport failure", "1 "}, std::pair{"invalid parameter", "5 "},
                                      std::pair{"unexpected", "5 "}, std::pair{"out of memory", "4 "}}) {
    Fail("NextMethod", gives);
    EXPECT_EQ(Traced(firstMethod), status) << gives;
    Fail("NextProperty", gives);
    EXPECT_EQ(Traced(firstProperty), status) << gives;
  }
}

TEST_F(WmiFailuresTest, Enumerators) {
  std::uint32_t level = 1;
  OrbWmiVariant holder;
  ASSERT_EQ(holder.CopyVariant(ObjectValue(m_lamp.GetClassObjectInstance())->get()), kWmiSuccess);
  OrbWmiEnumerator other;
  const Operation build = [&] {
    OrbWmiArrayEnumerator builder;
    std::uint32_t index = 0;
    wmiReturn status = builder.Initialize(&m_class, 1);
    status = status == kWmiSuccess ? builder.NewElementInstance() : status;
    return status == kWmiSuccess ? builder.SaveElementInstance(&index) : status;
  };
  EXPECT_EQ(Swept([&] { return m_lamp.Next(); }), " Next:111");
  EXPECT_EQ(Swept([&] { return m_lamp.Reset(); }), " Reset:11");
  EXPECT_EQ(Swept([&] { return m_lamp.InitializeInputEnumerator(&m_class); }), " SpawnInstance:111");
  EXPECT_EQ(Swept([&] { return m_lamp.GetProperty(L"Level", &level, 4); }), " Get:111");
  EXPECT_EQ(Swept([&] { return m_lamp.SetProperty(L"Level", &level, 4); }), " Get:111 Put:11");
  EXPECT_EQ(Swept([&] { return m_lamp.SaveProperties(); }), " PutInstance:11");
  EXPECT_EQ(Swept([&] { return other.Initialize(&m_class); }), " Clone:111");
  EXPECT_EQ(Swept([&] { return other.Initialize(&m_class, &holder); }), " QueryInterface:1");
  EXPECT_EQ(Swept(Entering(m_lamp, L"Colour")), " Get:115 QueryInterface:1 AllocateStore:4");
  EXPECT_EQ(Swept(Listing(m_lamp)), " Get:110 VariantCopy:1 SysAllocString:4 AllocateStore:4,4,4");
  EXPECT_EQ(Swept(build), " SpawnInstance:111 QueryInterface:1 SafeArrayCreate:4");
}

TEST_F(WmiFailuresTest, Requests) {
  const Operation call = [&] {
    OrbWmiVariant level;
    OrbWmiVariant before;
    OrbWmiRequest request;
    wmiReturn status = level.CopyVariant(NumberValue(1)->get());
    status = status == kWmiSuccess ? request.MethodRequest(L"SetLevel", &m_class) : status;
    status = status == kWmiSuccess ? request.AddInputParameter(L"Level", &level) : status;
    status = status == kWmiSuccess ? request.AddOutputParameter(L"Before", &before) : status;
    return status == kWmiSuccess ? request.ExecMethod(&m_lamp) : status;
  };
  const Operation query = [&] {
    OrbWmiRequest request;
    const wmiReturn status = request.QueryRequest(L"Select * From Meta_Class Where __SUPERCLASS = \"\"", m_connection);
    return status == kWmiSuccess ? Querying(request)() : status;
  };
  EXPECT_EQ(Swept(call), " ExecMethod:910 Get:911,910 Put:91 SpawnInstance:911,911 GetMethod:910 VariantCopy:1 "
                         "SysAllocString:4,4,4 AllocateStore:4,4,4,4,4");
  EXPECT_EQ(Swept(query), " ExecQuery:911 SysAllocString:4!,4! AllocateStore:4,4,4");
}

TEST_F(WmiFailuresTest, ConnectionsAndClassesWithoutWhatTheyNeed) {
  OrbWmiConnection closed;
  OrbWmiClass unbound;
  char name[20];
  std::uint8_t isCloned = 1;
  ExpectOutcomes({
      {"5", [&] { return closed.Initialize(nullptr); }},
      {"6 WMIRequestFailed(ConnectServer).  Error 0x8004100e", [&] { return closed.Initialize(L"root\\nowhere"); }},
      {"6 WMIRequestFailed(ConnectServer).  Error 0x80070057", [&] { return closed.SetSecurity(); }},
      {"6", [&] { return unbound.Initialize(closed, L"Lamp"); }},
      {"0", [&] { return unbound.Initialize(m_connection, nullptr); }},
      {"5", [&] { return unbound.GetInstanceEnumerator(isCloned) == nullptr ? 5U : 0U; }},
      {"5 InstanceClassNotDefined(ResetMethodName)", [&] { return unbound.ResetMethodName(name, 20); }},
      {"5 InstanceClassNotDefined(NextMethodName)", [&] { return unbound.NextMethodName(name, 20); }},
      {"5 InstanceClassNotDefined(ResetPropertyName)", [&] { return unbound.ResetPropertyName(name, 20); }},
      {"5 InstanceClassNotDefined(NextPropertyName)", [&] { return unbound.NextPropertyName(name, 20); }},
      {"5 BufferNotDefined(NextMethodName)", [&] { return m_class.NextMethodName(nullptr, 20); }},
      {"5 BufferNotDefined(NextPropertyName)", [&] { return m_class.NextPropertyName(nullptr, 20); }},
      {"3 WMIRequestFailed(GetObject).  Error 0x80041002", [&] { return unbound.Initialize(m_connection, L"None"); }},
  });
}

TEST_F(WmiFailuresTest, EnumeratorsWithoutWhatTheyNeed) {
  std::uint32_t level = 1;
  OrbWmiVariant holder;
  OrbWmiClass unbound;
  ASSERT_EQ(unbound.Initialize(m_connection, nullptr), kWmiSuccess);
  OrbWmiEnumerator none;
  ExpectOutcomes({
      {"5 ClassNotDefined(OrbWmiEnumerator)-Initialize", [&] { return none.Initialize(nullptr); }},
      {"5 ClassNotDefined(Next)", [&] { return none.Next(); }},
      {"5 ClassNotDefined(Reset)", [&] { return none.Reset(); }},
      {"5 ClassNotDefined(Reset)", [&] { return none.InitializeInputEnumerator(nullptr); }},
      {"5 ClassObjectInstanceNotDefined(GetProperty)", [&] { return none.GetProperty(L"Level", &level, 4); }},
      {"5 BufferNotDefined(GetProperty)", [&] { return none.GetProperty(L"Level", nullptr, 4); }},
      {"5 ClassObjectInstanceNotDefined(SetProperty)", [&] { return none.SetProperty(L"Level", &level, 4); }},
      {"5 BufferNotDefined(SetProperty)", [&] { return none.SetProperty(L"Level", nullptr, 4); }},
      {"5 NoServiceConnection(SaveProperties)", [&] { return none.SaveProperties(); }},
      {"5 VariantNotDefined(GetElement)", [&] { return none.GetElement(0); }},
      {"5 VariantNotDefined(SetVariant)", [&] { return none.SetVariant(nullptr); }},
      {"5 NoClassInstance(GetEnumeratorInterface)", [&] { return none.GetEnumeratorInterface() == nullptr ? 5U : 0U; }},
      {"5 NewEnumeratorNotDefined(OrbWmiEnumerator)-InitArrayEnumerator",
       [&] { return none.InitArrayEnumerator(&m_class, L"Note", nullptr); }},
      {"5 ClassObjectInstanceNotDefined(OrbWmiEnumerator)-InitArrayEnumerator", Listing(none)},
      {"5 NewEnumeratorNotDefined(OrbWmiEnumerator)-InitUnknownEnumerator",
       [&] { return none.InitUnknownEnumerator(L"Colour", nullptr); }},
      {"5 ClassObjectInstanceNotDefined(OrbWmiEnumerator)-InitUnknownEnumerator", Entering(none, L"Colour")},
      {"5 InitUnknownEnumerator-NotUnknown(Name-'Name';CimType-0x8;VtType-0x8).  Error 0x0", Entering(m_lamp, L"Name")},
      {"5 ClassNotDefined(OrbWmiEnumerator)-Initialize", [&] { return none.Initialize(nullptr, &holder); }},
      {"5 VariantNotDefined(OrbWmiEnumerator)-Initialize", [&] { return none.Initialize(&m_class, nullptr); }},
      {"1 WMIRequestFailed(QueryInterface).  Error 0x80004003", [&] { return none.Initialize(&m_class, &holder); }},
      {"5", [&] { return none.Next(); }},
      {"1 InitializationFailure(OrbWmiEnumerator)->Initialize", [&] { return none.Initialize(&unbound); }},
      {"5 ClassObjectEnumeratorNotDefined(Reset)", [&] { return none.Reset(); }},
      {"1", [&] { return none.InitializeInputEnumerator(&unbound); }},
      {"5 ClassObjectInstanceNotDefined(SaveProperties)", [&] { return none.SaveProperties(); }},
  });
  OrbWmiArrayEnumerator builder;
  std::uint32_t index = 0;
  const Operation add = [&] { return builder.NewElementInstance(); };
  const Operation save = [&] { return builder.SaveElementInstance(&index); };
  ExpectOutcomes({
      {"5 ClassNotDefined(OrbWmiArrayEnumerator)-Initialize", [&] { return builder.Initialize(nullptr, 1); }},
      {"5 ClassNotDefined(OrbWmiArrayEnumerator)-NewElementInstance", add},
      {"5 ClassNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance", save},
      {"0", [&] { return builder.Initialize(&unbound, 1); }},
      {"1 ClassNotDefined(OrbWmiArrayEnumerator)-GetInstanceClass", add},
      {"5 ClassObjectInstanceNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance", save},
      {"0", [&] { return builder.InitializeInputEnumerator(&m_class); }},
      {"5 ElementOffsetNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance",
       [&] { return builder.SaveElementInstance(nullptr); }},
  });
  builder.cleanUp();
  ASSERT_EQ(builder.InitializeInputEnumerator(&m_class), kWmiSuccess);
  ExpectOutcomes({{"5 SafeArrayNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance", save}});
}

TEST_F(WmiFailuresTest, RequestsWithoutWhatTheyNeed) {
  OrbWmiVariant holder;
  OrbWmiConnection closed;
  OrbWmiClass undefined;
  ASSERT_EQ(undefined.Initialize(m_connection, nullptr), kWmiSuccess);
  OrbWmiRequest request;
  const Operation call = [&] { return request.ExecMethod(&m_lamp); };
  ExpectOutcomes({
      {"1 WMIRequestFailed(StringCchLength)-MethodRequest.  Error 0x80070057",
       [&] { return request.MethodRequest(nullptr, &m_class); }},
      {"1 WMIRequestFailed(StringCchLength)-QueryRequest.  Error 0x80070057",
       [&] { return request.QueryRequest(nullptr, m_connection); }},
      {"6 InitializationFailure(OrbWmiClass)-QueryRequest", [&] { return request.QueryRequest(L"Q", closed); }},
      {"5 NoServiceConnection(OrbRequest)", call},
      {"5 NoServiceConnection(OrbRequest)", Querying(request)},
      {"5", [&] { return request.ExecQuery(nullptr); }},
      {"0", [&] { return request.MethodRequest(L"Blink", &undefined); }},
      {"5 NoMethodsClass(OrbRequest)", call},
      {"0", [&] { return request.MethodRequest(L"Blink", &m_class); }},
      {"5", [&] { return request.ExecMethod(nullptr); }},
      {"1 WMIRequestFailed(StringCchLength).  Error 0x80070057\n"
       "(orbWmiRequest):InitializationFailure(OrbRequestParameter)-AddInputParameter",
       [&] { return request.AddInputParameter(nullptr, &holder); }},
      {"1 InitializationFailure(OrbRequestParameter)-AddOutputParameter",
       [&] { return request.AddOutputParameter(L"Before", nullptr); }},
  });
  request.cleanUp();
  ExpectOutcomes({{"5 NoRequestDefined(OrbRequest)", Querying(request)}});
}

} // namespace
} // namespace korvex
