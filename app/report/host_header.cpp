#include "app/report/host_header.h"

#include "app/channel/channel.h"
#include "app/cli/console/bounded_text.h"
#include "app/cli/console/print.h"
#include "platform/error.h"
#include "platform/host.h"
#include "wmi/trace_text.h"

#include <iterator>

namespace korvex {

char gHostName[256] = {};
char gDomainName[256] = {};
char gGmtTimeText[256] = {};
char gDsmNameText[11] = {};
char gDsmVersionText[256] = {};

namespace {

constexpr DWORD kWideCapacity = 256;

void GetComputerNameText(COMPUTER_NAME_FORMAT nameType, char* text, std::size_t capacity) {
  WCHAR name[kWideCapacity] = {};
  DWORD size = kWideCapacity;
  if (!GetComputerNameExW(nameType, name, &size)) {
    PrintError("GetComputerNameEx() error - 0x%x\n", static_cast<unsigned>(GetLastError()));
    return;
  }
  BoundedFormat(text, capacity, "%s", NarrowText(name).c_str());
}

/// The driver's version, each number cut to its field.
void FormatDsmVersion(const DsmVersion& version) {
  char major[3];
  char minor[3];
  char build[5];
  char qfe[5];
  BoundedFormat(major, std::size(major), "%02lu", static_cast<unsigned long>(version.MajorVersion));
  BoundedFormat(minor, std::size(minor), "%02lu", static_cast<unsigned long>(version.MinorVersion));
  BoundedFormat(build, std::size(build), "%04lu", static_cast<unsigned long>(version.ProductBuild));
  BoundedFormat(qfe, std::size(qfe), "%04lu", static_cast<unsigned long>(version.QfeNumber));
  BoundedFormat(gDsmVersionText, std::size(gDsmVersionText), "%s.%s.%s.%s", major, minor, build, qfe);
}

void RefreshHost() {
  GetHostName();
  GetDomainName();
  GetGmtTimeText();
}

void PrintHostLines() {
  if (gHostName[0] != '\0') {
    Print("Hostname    = %s\n", gHostName);
  } else {
    Print("Hostname    = N/A\n");
  }
  if (gDomainName[0] != '\0') {
    Print("Domainname  = %s\n", gDomainName);
  } else {
    Print("Domainname  = N/A\n");
  }
  if (gGmtTimeText[0] != '\0') {
    Print("Time        = GMT %s \n", gGmtTimeText);
  } else {
    Print("Time        = N/A\n");
  }
}

} // namespace

void GetHostName() {
  GetComputerNameText(ComputerNameDnsHostname, gHostName, std::size(gHostName));
}

void GetDomainName() {
  GetComputerNameText(ComputerNameDnsDomain, gDomainName, std::size(gDomainName));
}

void GetGmtTimeText() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  WCHAR time[kWideCapacity] = {};
  if (GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, TIME_FORCE24HOURFORMAT, &now, L" HH':'mm':'ss ", time, kWideCapacity) ==
      0) {
    PrintError("GetTimeFormat() error - 0x%x\n", static_cast<unsigned>(GetLastError()));
    return;
  }
  WCHAR date[kWideCapacity] = {};
  if (GetDateFormatW(LOCALE_SYSTEM_DEFAULT, 0, &now, L"ddd MMM dd", date, kWideCapacity) == 0) {
    PrintError("GetDateFormat() error - 0x%x\n", static_cast<unsigned>(GetLastError()));
    return;
  }
  WCHAR year[kWideCapacity] = {};
  if (GetDateFormatW(LOCALE_SYSTEM_DEFAULT, 0, &now, L"yyyy", year, kWideCapacity) == 0) {
    PrintError("GetDateFormat(Year) error - 0x%x\n", static_cast<unsigned>(GetLastError()));
    return;
  }
  WCHAR text[kWideCapacity] = {};
  BoundedCopy(text, kWideCapacity, date);
  BoundedAppend(text, kWideCapacity, time);
  BoundedAppend(text, kWideCapacity, year);
  BoundedFormat(gGmtTimeText, std::size(gGmtTimeText), "%-*.*s", 0, 256, NarrowText(text).c_str());
}

void PrintHostHeader() {
  RefreshHost();
  PrintHostLines();
  Print("\n");
}

void PrintHostHeaderV2() {
  RefreshHost();
  BoundedFormat(gDsmNameText, std::size(gDsmNameText), "%s", gRequestedDsm);
  if (gDsmVersion != nullptr) {
    FormatDsmVersion(*gDsmVersion);
  }
  Print("\n");
  PrintHostLines();
  if (gDsmNameText[0] != '\0') {
    Print("DSM Name    = %s\n", gDsmNameText);
  } else {
    Print("DSM Name    = N/A\n");
  }
  if (gDsmVersionText[0] != '\0') {
    Print("DSM Version = %s\n", gDsmVersionText);
  } else {
    Print("DSM Version = N/A\n");
  }
  Print("\n");
}

} // namespace korvex
