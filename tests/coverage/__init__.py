"""Which messages the sources can print, and which of them the tests have printed."""
