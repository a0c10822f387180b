#pragma once

namespace korvex {

/// Host name, domain and time on standard output: the head of every report in interface generation 1.
void PrintHostHeader();
/// The same for generation 2, with the DSM's name and driver version.
void PrintHostHeaderV2();

/// Refresh one text each; a failure is reported on standard error and leaves the text as it was.
void GetHostName();
void GetDomainName();
void GetGmtTimeText();

/// Texts of the header; empty until they could be had.
extern char gHostName[256];
extern char gDomainName[256];
extern char gGmtTimeText[256];
extern char gDsmNameText[11];
extern char gDsmVersionText[256];

} // namespace korvex
