// What other libraries keep until the process ends, which the leak check of sanitized builds would
// tell of at every run. None of it grows with what a book holds.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_options();       // NOLINT(bugprone-reserved-identifier)

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n"
         "leak:libpango\n"
         "leak:librsvg\n"
         "leak:libglib\n"
         "leak:libQt5\n"
         "leak:libKF5SyntaxHighlighting\n"
         "leak:libcurl\n"
         "leak:libpoppler\n";
}

// A list of what was passed over would stand in the tool's own words.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() {
  return "print_suppressions=0";
}
