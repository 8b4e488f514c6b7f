// Linked into the test programs that run a browser. Under the sanitizers,
// Chromium inside Qt WebEngine frees one of its own objects with a
// mismatched size and keeps allocations until the process ends, its own and
// those it asked fontconfig for; both are passed over here, leaks only where
// the stack runs through those libraries. The options given in ASAN_OPTIONS
// and LSAN_OPTIONS still apply on top.

extern "C" const char* __asan_default_options() {
    return "new_delete_type_mismatch=0";
}

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt6WebEngineCore.so\n"
           "leak:libfontconfig.so\n";
}
