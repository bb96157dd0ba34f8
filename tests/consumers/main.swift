// What a program in Swift does with the interface for C: counts what Chrome keeps, and removes it.

import browsersweep

#if canImport(Glibc)
import Glibc
#else
import Darwin
#endif

var chrome: browsersweep_browser = 0
guard CommandLine.arguments.count == 2, browsersweep_browser_from_raw_value("googleChrome", &chrome) else { exit(2) }
var error: OpaquePointer?
var removed = BrowsersweepSize()
removed.struct_size = MemoryLayout<BrowsersweepSize>.size
guard let home = browsersweep_home_at(CommandLine.arguments[1], &error),
      let data = browsersweep_data_of_browser(home, chrome, &error),
      browsersweep_data_clean(data, BrowsersweepCategories(rawValue: .max), nil, 0, nil, nil, &removed, &error)
else {
    print(String(cString: browsersweep_error_text(error)))
    exit(1)
}
browsersweep_data_free(data)
browsersweep_home_free(home)
exit(removed.items > 0 ? 0 : 1)
