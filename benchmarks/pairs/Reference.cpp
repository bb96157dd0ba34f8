#include "Reference.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

/** reference WORKLOAD PATH [ARGUMENT]: does the work once and prints its figure. */
int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: reference WORKLOAD PATH [ARGUMENT]\n", stderr);
        return 2;
    }
    const std::string path = argv[2];
    const std::string argument = argc > 3 ? argv[3] : "";
    // clang-format off
    const std::map<std::string, std::function<std::uint64_t()>> workloads{
        {"nothing",          [&] { return std::uint64_t{0}; }},
        {"tree-size",        [&] { return reference::sizeTree(path); }},
        {"tree-size-pattern", [&] { return reference::sizeTreeExcluding(path, argument); }},
        {"tree-size-date",   [&] { return reference::sizeTreeByBirth(path); }},
        {"tree-clean",       [&] { return reference::cleanTree(path); }},
        {"count-on-copy",    [&] { return reference::countOnCopy(path, argument); }},
        {"count",            [&] { return reference::count(path, argument); }},
        {"execute",          [&] { return reference::execute(path, argument); }},
        {"forget-site",      [&] { return reference::forgetSite(path, argument, false); }},
        {"forget-site-compact", [&] { return reference::forgetSite(path, argument, true); }},
        {"json",             [&] { return reference::parseJson(path); }},
        {"cookies-read",     [&] { return reference::readCookies(path); }},
        {"cookies-rewrite",  [&] { return reference::rewriteCookies(path, std::atof(argument.c_str())); }},
    };
    // clang-format on
    const auto found = workloads.find(argv[1]);
    if (found == workloads.end()) {
        std::fprintf(stderr, "unknown workload %s\n", argv[1]);
        return 2;
    }
    std::printf("%llu\n", static_cast<unsigned long long>(found->second()));
    return 0;
}
