#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/cleanable/CleanableDataSize.h"

#include "cli/HTMLScripts.h"

namespace browsersweep::cli {

/** A text as it stands between tags, or in an attribute within quotes. */
std::string escaped(std::string_view text);

/** A name from a browser's file, whose writing direction must not affect the text around it. */
std::string isolated(std::string_view name);

/** The items and the bytes, as two cells of a table, with the values by which it is sorted. */
std::string figureCells(const CleanableDataSize& size);

/**
 * A page from its first line to the beginning of its body. Its policy forbids it to load anything,
 * and to run anything but these scripts.
 */
std::string pageStart(std::string_view title, const std::vector<PageScript>& scripts = {});

/** What was asked for where that is not all, as a paragraph; nothing where it is. */
std::string limitsParagraph(const std::vector<std::string>& limits);

/** The end of a page. */
std::string_view pageEnd() noexcept;

}  // namespace browsersweep::cli
