#pragma once

#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/inventory/gen2_inventory.h"
#include "app/inventory/limits.h"
#include "tests/unit/sim/channel_host.h"

#include <map>
#include <string>
#include <vector>

namespace korvex {

/// One element of an information list: what its three properties hold.
struct ListElement {
  simhost::CimValue size;
  simhost::CimValue buffer;
};

/// An element that tells `size` for a record of `bytes` bytes, all `value`.
inline ListElement Record(std::uint32_t size, std::size_t bytes, int value = 1) {
  return {size, simhost::CimValue::Bytes(std::vector<std::uint8_t>(bytes, static_cast<std::uint8_t>(value)))};
}

/// A DSM of generation 2 that answers each information request with the elements that the test lays down.
class CollectionHost : public ChannelHost {
protected:
  using Elements = std::vector<ListElement>;

  /// Starts the channel over a DSM with one array of two controllers and 300 LUNs, so announced, and empty lists.
  void Open(const std::string& faults = "[]") {
    FreeRunBuffers();
    MaxArrayModules = kUnknownLimit;
    Begin(faults);
    ConnectRooms();
    gNumberOfArrays = 1;
    AddVersion(L"2.0.4");
    AddClassOf(L"VRXDSM_INPUT_ARGUMENTS",
               {simhost::Property(L"argType", CIM_UINT8), simhost::Property(L"argID", CIM_UINT8),
                simhost::Property(L"argWWN", CIM_STRING)});
    std::vector<simhost::MethodDefinition> methods = {
        {L"VrxDsmGetCurrentNumberOfArrays", {}, {simhost::Property(L"NumberOfArrays", CIM_UINT32)}}};
    const auto addList = [this, &methods](const wchar_t* method, const wchar_t* output, const std::wstring& element) {
      AddClassOf(element, {simhost::Property(L"Size", CIM_UINT32), simhost::Property(L"Version", CIM_UINT32),
                           simhost::Property(L"Buffer", CIM_UINT8 | CIM_FLAG_ARRAY)});
      AddClassOf(element + L"_LIST", {simhost::EmbeddedArray(L"List", element)});
      methods.push_back({method,
                         {simhost::Embedded(L"inputArguments", L"VRXDSM_INPUT_ARGUMENTS")},
                         {simhost::Embedded(output, element + L"_LIST")}});
    };
    addList(L"VrxDsmGetArrayInfo", L"DSMArrayInfo", L"VRXDSM_ARRAY_INFO");
    addList(L"VrxDsmGetTPGInfo", L"TPGInfo", L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER");
    addList(L"VrxDsmGetTPGInfoWithStatus", L"TPGInfo", L"VRXDSM_TARGET_PORT_GROUP_CONTROLLER");
    addList(L"VrxDsmGetMPGInfo", L"MPGInfo", L"VRXDSM_MULTIPATH_DEVICE");
    addList(L"VrxDsmGetDeviceInfo", L"DEVInfo", L"VRXDSM_DEVICE_INFO");
    addList(L"VrxDsmGetDeviceInfoWithStatus", L"DEVInfo", L"VRXDSM_DEVICE_INFO");
    AddMethods(std::move(methods), [this](const simhost::MethodCall& call, simhost::CimObject* output) {
      ++calls[call.method.name];
      Answer(call.method, *output);
      return WBEM_S_NO_ERROR;
    });
    calls.clear();
    lists.clear();
    lists[L"VrxDsmGetArrayInfo"] = {{186U, simhost::CimValue::Bytes(ArrayRecord(300, 2))}};
    ASSERT_TRUE(StartChannel());
  }

  void TearDown() override {
    FreeRunBuffers();
    MaxArrayModules = kUnknownLimit;
    ChannelHost::TearDown();
  }

  /// Collects the array in all its parts, silently.
  static int Collect() {
    gDetailMode = true;
    gReportSelectionErrors = false;
    return GetDsmArrayInfo();
  }

  /// An array record without a name that announces its lists so long.
  static std::vector<std::uint8_t> ArrayRecord(std::uint32_t luns, std::uint32_t controllers) {
    std::vector<std::uint8_t> record(186);
    for (std::size_t i = 0; i < 4; ++i) {
      record[168 + i] = static_cast<std::uint8_t>(luns >> (8 * i));
      record[172 + i] = static_cast<std::uint8_t>(controllers >> (8 * i));
    }
    return record;
  }

  std::map<std::wstring, Elements> lists; ///< by method
  std::map<std::wstring, int> calls;      ///< by method

private:
  void AddClassOf(const std::wstring& name, std::vector<simhost::PropertyDefinition> properties) {
    simhost::CimClass definition;
    definition.name = name;
    definition.properties = std::move(properties);
    Classes().AddClass(std::move(definition));
  }

  void Answer(const simhost::MethodDefinition& method, simhost::CimObject& output) {
    const simhost::PropertyDefinition& parameter = method.outputs[0];
    if (parameter.type != CIM_OBJECT) {
      output.Set(parameter.name, 1U);
      return;
    }
    simhost::CimObject list(Classes().RequireClass(parameter.embeddedClass));
    std::vector<simhost::CimObject> elements;
    for (const ListElement& element : lists[method.name]) {
      simhost::CimObject& made =
          elements.emplace_back(Classes().RequireClass(list.Class()->properties[0].embeddedClass));
      made.Set(L"Size", element.size).Set(L"Version", 1U);
      if (element.buffer.IfObject() != nullptr) {
        made.Force(made.Class()->PropertyIndex(L"Buffer").value(), element.buffer, CIM_OBJECT);
      } else {
        made.Set(L"Buffer", element.buffer);
      }
    }
    list.Set(L"List", simhost::CimValue::Embed(std::move(elements)));
    output.Set(parameter.name, simhost::CimValue::Embed(std::move(list)));
  }
};

} // namespace korvex
