// What Objective-C, and Swift through the same module map, see of the library.
@import browsersweep;

int main(void) {
    browsersweep_browser chrome = 0;
    return browsersweep_browser_from_raw_value("googleChrome", &chrome) ? 0 : 1;
}
