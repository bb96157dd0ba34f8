// What a program in Swift does with the library: looks at what Chrome keeps, removes a part of it, and
// tells whether that is what the layer promises.

import BrowsersweepKit

#if canImport(Glibc)
import Glibc
#else
import Darwin
#endif

func require(_ condition: Bool, _ what: String) {
    if !condition {
        print("wrong: \(what)")
        exit(1)
    }
}

require(CommandLine.arguments.count == 2, "the arguments are a home")
let home = try Home(at: CommandLine.arguments[1])

let names = Browser.all.map(\.rawValue)
require(Set(names).count == names.count && names.contains("safari"), "every browser has a name of its own")
require(Browser(rawValue: "netscape") == nil, "an unknown name is no browser")
let chrome = Browser(rawValue: "googleChrome")!
require(chrome.description == "Google Chrome", "a browser has a name for people")

let data = try BrowserData(of: chrome, in: home)
let chosen: Categories = [.history, .httpCookies]
let size = try data.size(of: chosen)
require(size.items > 0 && !size.items_are_approximate, "history and cookies are there, and counted")

let plan = try data.plan(of: chosen)
require(plan.reduce(0) { $0 + $1.items } == size.items, "the plan has what was counted")
require(plan.allSatisfy { $0.category == .history || $0.category == .httpCookies }, "and nothing else")
require(plan.contains { $0.table == "urls" && $0.bytes == nil }, "rows have a table and no bytes")

let cache = try data.size(of: .cache)
let removed = try data.clean(chosen)
require(removed.items == size.items, "what was counted is gone")
require(try data.size(of: chosen).items == 0, "nothing of it is left")
require(try data.size(of: .cache).items == cache.items && cache.items > 0, "the cache was not chosen")

// What fails is thrown.
let database = plan.first { $0.table == "urls" }!.path
let file = fopen(database, "r+b")!
fputs("this is not a database", file)
fclose(file)
do {
    _ = try data.size(of: .history)
    require(false, "a damaged database is no empty one")
} catch let error as BrowsersweepError {
    require(error.kind == .database && !error.description.isEmpty, "an error has a kind and words")
}
