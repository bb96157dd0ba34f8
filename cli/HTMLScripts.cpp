#include "cli/HTMLScripts.h"

#include <fmt/format.h>

namespace browsersweep::cli {

// Figures are compared by their values, which stand beside what people read, and the largest comes
// first; texts begin with the first of the alphabet.
const PageScript sortScript{R"js(
for (const table of document.querySelectorAll("table.sortable")) {
  const body = table.tBodies[0];
  [...table.tHead.rows[0].cells].forEach((head, column) => {
    const isFigure = head.classList.contains("figure");
    const valueOf = (row) => {
      const cell = row.cells[column];
      return isFigure ? Number(cell?.dataset.value ?? -1) : cell?.textContent ?? "";
    };
    const compare = (one, other) =>
      isFigure ? valueOf(one) - valueOf(other) : valueOf(one).localeCompare(valueOf(other));
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = head.textContent;
    button.addEventListener("click", () => {
      const order = head.getAttribute("aria-sort");
      const isUp = order ? order === "descending" : !isFigure;
      const rows = [...body.rows].sort((one, other) => (isUp ? 1 : -1) * compare(one, other));
      body.append(...rows);
      for (const each of head.parentElement.cells) each.removeAttribute("aria-sort");
      head.setAttribute("aria-sort", isUp ? "ascending" : "descending");
    });
    head.replaceChildren(button);
  });
}
)js",
                            "EILHDMeQMLWwcaYTBP3gcBbulziGd4heh6b5CZ61GhA="};

std::string elementOf(const PageScript& script) {
    return fmt::format("<script>{}</script>\n", script.text);
}

}  // namespace browsersweep::cli
