/// @file
/// Part of every program of a sanitizer build: what the checkers are to overlook, so that no run needs settings from
/// outside. The names are the checkers'.

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options();
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();

/// The font configuration keeps a few blocks that no caller can free.
const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

/// A list of what was overlooked would mix with what the tested program prints.
const char* __lsan_default_options() { return "print_suppressions=0"; }

/// Workers that signals end are part of the tests; ThreadSanitizer looks for races only.
const char* __tsan_default_options() { return "handle_segv=0:handle_abort=0"; }
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
