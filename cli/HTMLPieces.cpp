#include "cli/HTMLPieces.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Figures.h"
#include "cli/HTMLStyle.h"
#include "cli/Text.h"

namespace browsersweep::cli {

std::string escaped(std::string_view text) {
    std::string html;
    for (const char c : printable(text)) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

/** A name from a browser's file, whose writing direction must not affect the text around it. */
std::string isolated(std::string_view name) {
    return fmt::format("<bdi>{}</bdi>", escaped(name));
}

std::string figureCells(const CleanableDataSize& size) {
    return fmt::format(
        R"(<td class="figure" data-value="{}">{}</td><td class="figure" data-value="{}">{}</td>)",
        size.itemCount.value, countText(size.itemCount), size.byteCount.value,
        bytesText(size.byteCount));
}

std::string pageStart(std::string_view title, const std::vector<PageScript>& scripts) {
    std::string policy = scripts.empty() ? "" : "; script-src";
    for (const auto& script : scripts) {
        policy += fmt::format(" 'sha256-{}'", script.digest);
    }
    return fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'sha256-{}'{}; base-uri 'none'; form-action 'none'\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"referrer\" content=\"no-referrer\">\n"
        "<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n",
        pageStyleDigest, policy, escaped(title), pageStyle);
}

std::string limitsParagraph(const std::vector<std::string>& limits) {
    return limits.empty() ? ""
                          : fmt::format("<p class=\"quiet\">Limited to: {}.</p>\n",
                                        isolated(fmt::format("{}", fmt::join(limits, "; "))));
}

std::string_view pageEnd() noexcept {
    return "</body>\n</html>\n";
}

}  // namespace browsersweep::cli
