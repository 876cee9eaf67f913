// A plug-in for the tests that exports neither entry point.
extern "C" int bareValue() { return 7; }
