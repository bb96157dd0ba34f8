// swift-tools-version:5.7
// The library for Swift's package manager: a module over the interface for C, compiled from the
// sources here. SQLite and expat come with macOS; nlohmann-json, of which only headers are used, comes
// from Homebrew, as scripts/setup build installs it. CMakeLists.txt is what everything else is built by.

import PackageDescription

#if os(macOS)
let otherSystems = ["platform/internal/linux", "platform/internal/portable"]
let systemLibraries: [LinkerSetting] = [.linkedFramework("Foundation")]
#else
let otherSystems = ["platform/internal/darwin", "platform/internal/foundation"]
let systemLibraries: [LinkerSetting] = [.linkedLibrary("icuuc"), .linkedLibrary("icui18n")]
#endif

// What sites left needs libraries that such a package cannot bring along.
let rooms = ["sites", "hosting/sites", "traces"]

let package = Package(
    name: "browsersweep",
    platforms: [.macOS(.v12)],
    products: [
        .library(name: "browsersweep", targets: ["browsersweep"]),
        .library(name: "BrowsersweepKit", targets: ["BrowsersweepKit"]),
    ],
    targets: [
        .systemLibrary(
            name: "nlohmann_json",
            path: "packaging/swift/nlohmann_json",
            pkgConfig: "nlohmann_json",
            providers: [.brew(["nlohmann-json"]), .apt(["nlohmann-json3-dev"])]
        ),
        .target(
            name: "browsersweep",
            dependencies: ["nlohmann_json"],
            path: "browsersweep",
            exclude: ["CMakeLists.txt"] + rooms + otherSystems,
            publicHeadersPath: "c",
            cxxSettings: [
                .headerSearchPath(".."),
                .define("BROWSERSWEEP_STATIC_DEFINE"),
                .define("BROWSERSWEEP_VERSION", to: "\"0.1.0\""),
            ],
            linkerSettings: [.linkedLibrary("sqlite3"), .linkedLibrary("expat")] + systemLibraries
        ),
        .target(
            name: "BrowsersweepKit",
            dependencies: ["browsersweep"],
            path: "packaging/swift/BrowsersweepKit"
        ),
    ],
    cxxLanguageStandard: .cxx20
)
