// swift-tools-version:5.7
// A program in Swift that takes the package from its folder, as an application takes it from its address.

import PackageDescription

let package = Package(
    name: "consumer",
    platforms: [.macOS(.v12)],
    dependencies: [.package(name: "browsersweep", path: "../../..")],
    targets: [
        .executableTarget(
            name: "consumer",
            dependencies: [.product(name: "BrowsersweepKit", package: "browsersweep")]
        )
    ]
)
