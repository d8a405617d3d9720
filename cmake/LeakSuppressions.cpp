// What other libraries keep until the process ends, which the leak check of sanitized builds would
// tell of at every run. None of it grows with what a book holds.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

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
