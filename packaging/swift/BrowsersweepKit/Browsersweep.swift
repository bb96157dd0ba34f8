// The interface for C as Swift would have it: values, option sets, and errors that are thrown.

import browsersweep

/// What went wrong, in the library's own words.
public struct BrowsersweepError: Error, CustomStringConvertible {
    public let kind: BrowsersweepErrorKind
    public let description: String
}

/// Calls a function that can fail, and throws the error that it makes.
func checked<Result>(_ call: (UnsafeMutablePointer<OpaquePointer?>) -> Result?) throws -> Result {
    var error: OpaquePointer?
    if let result = call(&error) {
        return result
    }
    defer { browsersweep_error_free(error) }
    throw BrowsersweepError(kind: browsersweep_error_get_kind(error),
                            description: String(cString: browsersweep_error_text(error)))
}

/// One of the browsers that the library knows.
public struct Browser: Hashable, CustomStringConvertible {
    let index: Int

    /// Every browser, in an order that is kept.
    public static var all: [Browser] {
        (0..<browsersweep_browser_count()).map(Browser.init(index:))
    }

    /// The browser of this raw value, such as "googleChrome".
    public init?(rawValue: String) {
        var index = 0
        guard browsersweep_browser_from_raw_value(rawValue, &index) else { return nil }
        self.index = index
    }

    init(index: Int) { self.index = index }

    /// Its name in files and options.
    public var rawValue: String { String(cString: browsersweep_browser_raw_value(index)) }
    /// Its name for people.
    public var description: String { String(cString: browsersweep_browser_display_name(index)) }
}

/// Kinds of data.
public struct Categories: OptionSet {
    public let rawValue: UInt32
    public init(rawValue: UInt32) { self.rawValue = rawValue }

    public static let cache = Categories(of: .cache)
    public static let history = Categories(of: .history)
    public static let httpCookies = Categories(of: .httpCookies)
    public static let flashCookies = Categories(of: .flashCookies)
    public static let formData = Categories(of: .formData)
    public static let localStorage = Categories(of: .localStorage)
    /// All of them, those of later versions included.
    public static let all = Categories(rawValue: .max)

    init(of category: BrowsersweepCategory) { rawValue = 1 << UInt32(category.rawValue) }
}

/// A home folder whose Library folder is examined.
public final class Home {
    let handle: OpaquePointer

    /// The current user's own.
    public init() throws { handle = try checked { browsersweep_home_current($0) } }

    /// Another one. Nothing of the current user's is touched.
    public init(at path: String) throws { handle = try checked { browsersweep_home_at(path, $0) } }

    deinit { browsersweep_home_free(handle) }
}

/// A file, rows of a table, or the cookies of a file, that a clean would take.
public struct PlanEntry {
    public let category: BrowsersweepCategory
    /// The name of its profile, where the browser records one.
    public let profile: String?
    public let path: String
    /// The table of the rows; nil for what is no rows.
    public let table: String?
    /// Rows, the cookies of a file, or 1 for another file.
    public let items: Int64
    /// The size of a file; nil for rows, of which nobody can tell how many bytes they take.
    public let bytes: Int64?

    init(_ entry: BrowsersweepEntry) {
        category = entry.category
        profile = entry.profile.map { String(cString: $0) }
        path = String(cString: entry.path)
        table = entry.table.map { String(cString: $0) }
        items = entry.items
        bytes = entry.has_bytes ? entry.bytes : nil
    }
}

/// The data of all profiles of a browser.
public final class BrowserData {
    private let handle: OpaquePointer

    public init(of browser: Browser, in home: Home) throws {
        handle = try checked { browsersweep_data_of_browser(home.handle, browser.index, $0) }
    }

    deinit { browsersweep_data_free(handle) }

    /// What the data of these categories comes to. Only reads.
    public func size(of categories: Categories = .all) throws -> BrowsersweepSize {
        var size = BrowsersweepSize()
        size.struct_size = MemoryLayout<BrowsersweepSize>.size
        let chosen = BrowsersweepCategories(rawValue: categories.rawValue)
        _ = try checked { error -> Bool? in
            browsersweep_data_size(handle, chosen, nil, 0, nil, nil, &size, error) ? true : nil
        }
        return size
    }

    /// What a clean of these categories would take, one by one. Only reads.
    public func plan(of categories: Categories = .all) throws -> [PlanEntry] {
        let chosen = BrowsersweepCategories(rawValue: categories.rawValue)
        let plan = try checked {
            browsersweep_plan_of_data(handle, chosen, nil, 0, nil, nil, $0)
        }
        defer { browsersweep_plan_free(plan) }
        return (0..<browsersweep_plan_count(plan)).map { index in
            var entry = BrowsersweepEntry()
            entry.struct_size = MemoryLayout<BrowsersweepEntry>.size
            _ = browsersweep_plan_entry(plan, index, &entry)
            return PlanEntry(entry)
        }
    }

    /// Deletes the data of these categories, and tells what is really gone.
    public func clean(_ categories: Categories) throws -> BrowsersweepSize {
        var removed = BrowsersweepSize()
        removed.struct_size = MemoryLayout<BrowsersweepSize>.size
        let chosen = BrowsersweepCategories(rawValue: categories.rawValue)
        _ = try checked { error -> Bool? in
            browsersweep_data_clean(handle, chosen, nil, 0, nil, nil, &removed, error) ? true : nil
        }
        return removed
    }
}
