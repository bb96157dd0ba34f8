"""The page of `size --html`: what it holds, how it is written, and that everybody can read it."""

import base64
import hashlib
import html.parser
import json
import os
import re
import shutil
import stat
import subprocess
import sys

from fixture import HANGS, PROGRAM, HostProgramTest, exact, write

VOID = {"meta", "rect", "br", "link"}  # rect closes itself


class Page(html.parser.HTMLParser):
    """Every element as [tag, attributes, text], and what is wrong with the nesting."""

    def __init__(self, text):
        super().__init__()
        self.elements, self.open, self.problems = [], [], []
        self.feed(text)
        self.close()
        self.problems += [f"<{element[0]}> is not closed" for element in self.open]

    def handle_starttag(self, tag, attrs):
        element = [tag, dict(attrs), ""]
        self.elements.append(element)
        if tag not in VOID:
            self.open.append(element)

    def handle_startendtag(self, tag, attrs):
        self.elements.append([tag, dict(attrs), ""])

    def handle_endtag(self, tag):
        if not self.open or self.open.pop()[0] != tag:
            self.problems.append(f"</{tag}> closes another element")

    def handle_data(self, data):
        for element in self.open:
            element[2] += data

    def all(self, *tags):
        return [element for element in self.elements if element[0] in tags]

    def texts(self, *tags):
        return [" ".join(element[2].split()) for element in self.all(*tags)]

    def rows(self):
        rows = []
        for tag, _, text in self.elements:
            if tag == "tr":
                rows.append([])
            elif tag in ("th", "td"):
                rows[-1].append(text)
        return rows


def luminance(colour):
    parts = [value / 255 for value in colour]
    linear = [v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4 for v in parts]
    return sum(weight * v for weight, v in zip((0.2126, 0.7152, 0.0722), linear))


def contrast(one, other):
    brighter, darker = sorted((luminance(one), luminance(other)), reverse=True)
    return (brighter + 0.05) / (darker + 0.05)


class PageTest(HostProgramTest):
    def setUp(self):
        super().setUp()
        self.file = self.root / "page.html"

    def page_text(self, *arguments, status=0):
        result = self.run_program("size", "--html", self.file, *arguments)
        self.assertEqual(result.status, status, result.error)
        return self.file.read_text(encoding="utf-8")

    def page(self, *arguments, status=0):
        return Page(self.page_text(*arguments, status=status))


class Contents(PageTest):
    def test_a_profile_has_its_figures_where_another_fails(self):
        shutil.copy(self.history, self.second / "History")
        write(self.history, b"no database" * 100)
        page = self.root / "page.html"
        found = self.document("size", "--browser=chromium", "--category=history", "--html", page, status=1)
        browser = found["browsers"][0]
        self.assertIsNone(browser["categories"][0]["size"])
        first, second = [profile["categories"][0] for profile in browser["profiles"]]
        self.assertEqual((first["error"], first["size"]),
                         ("not understood: file is not a database", None))
        self.assertEqual((second["error"], second["size"]["itemCount"]), (None, exact(3)))
        self.assertEqual(page.read_text("utf-8").count("failed: not understood"), 1)

    def test_the_table_holds_every_browser_profile_and_category_the_largest_first(self):
        def text(path):
            return f"~{path.stat().st_size / 1000:.1f} KB"
        all_bytes = 2000 + self.history.stat().st_size + self.cookies.stat().st_size
        figures = [["History", "Zoë 日本", "3", text(self.history)],
                   ["Cookies", "Work", "2", text(self.cookies)],
                   ["Cache", "Zoë 日本", "2", "2.0 KB"]]
        figures.sort(key=lambda row: -float(row[3].strip("~ KB")))
        rows = self.page("--browser=chromium").rows()
        self.assertEqual(rows[:4], [
            ["Browser", "Profile", "Category", "Items", "Size"],
            *(["Chromium", profile, category, *values]
              for category, profile, *values in figures)])
        self.assertEqual(len(rows), 1 + 2 * 6 + 1)
        self.assertEqual({tuple(row[3:]) for row in rows[4:-1]}, {("0", "0 B")})
        self.assertEqual(rows[-1], ["Total", "7", f"~{all_bytes / 1000:.1f} KB"])

    def test_the_charts_say_every_value_as_text(self):
        items = self.page("--browser=chromium", "--category=cache").texts("li")
        self.assertEqual(items, ["Chromium 2.0 KB", "Cache 2.0 KB", "Zoë 日本 2.0 KB", "Work 0 B"])

    def test_a_dash_writes_the_page_to_standard_output_in_place_of_the_report(self):
        folder = self.root / "here"
        folder.mkdir()
        result = self.run_program("size", "--browser=chromium", "--html", "-", cwd=folder)
        self.assertEqual((result.status, result.error), (0, ""))
        self.assertTrue(result.text.startswith("<!DOCTYPE html>"))
        self.assertTrue(result.text.endswith("</html>\n"))
        self.assertEqual(list(folder.iterdir()), [])

    def test_filters_and_selection_hold_for_the_page_too(self):
        page = self.page("--browser=chromium", "--category=history", "--profile=Zoë 日本",
                         "--include=example")
        self.assertEqual([row[:4] for row in page.rows()[1:]], [
            ["Chromium", "Zoë 日本", "History", "2"], ["Total", "2", page.rows()[-1][2]]])
        self.assertIn("Limited to: Chromium; profiles called \"Zoë 日本\"; History; "
                      "only what contains \"example\".", page.texts("p"))
        self.assertNotIn("Limited to", self.page_text())

    def test_names_cannot_break_out_of_the_page(self):
        name = "</td><script>alert(1)</script>\"'&<img src=x>"
        write(self.support / "Chromium" / "Local State", json.dumps({"profile": {
            "last_used": "Default", "last_active_profiles": ["Default"],
            "info_cache": {"Default": {
                "name": name, "is_consented_primary_account": False}}}}))
        page = self.page("--browser=chromium", "--category=cache")
        self.assertEqual(page.rows()[1][1], name)
        self.assertEqual(page.all("img"), [])
        self.assertNotIn("alert", "".join(page.texts("script")))

    def test_what_failed_is_on_the_page_and_the_status_says_so(self):
        write(self.history, b"no database" * 100)
        write(self.support / "Google" / "Chrome" / "Local State", "no JSON")
        text = " ".join(text for row in self.page(status=1).rows() for text in row if text)
        self.assertIn("Zoë 日本 History failed: not understood: file is not a database", text)
        self.assertIn("Google Chrome failed: not understood: ", text)

    def test_the_report_on_standard_output_is_the_same_with_and_without_the_page(self):
        for json_option in ([], ["--json"]):
            without = self.run_program("size", *json_option)
            result = self.run_program("size", "--html", self.file, *json_option)
            self.assertEqual((result.status, result.output, result.error),
                             (without.status, without.output, without.error))

    def test_nothing_found_is_a_page_too(self):
        page = self.page("--browser=vivaldi")
        self.assertIn("No data was found.", page.texts("p"))


class Writing(PageTest):
    def refused(self, place, says):
        before = self.snapshot()
        result = self.run_program("size", "--html", place)
        self.assertEqual((result.status, result.output), (1, b""))
        self.assertEqual(result.error, f"browsersweep: cannot write the page {place}: {says}\n")
        self.assertEqual(self.snapshot(), before)

    def test_a_wrong_place_is_said_in_a_sentence_before_anything_is_measured(self):
        self.refused(self.root / "missing" / "page.html", "No such file or directory")
        self.refused(self.root, "Is a directory")
        self.refused("/dev/null", "it is not a regular file")
        self.refused(self.history / "page.html", "Not a directory")
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))

    def test_the_page_is_alone_in_its_folder_and_replaces_the_one_before(self):
        folder = self.root / "pages"
        folder.mkdir()
        self.file = folder / "page.html"
        self.file.write_text("old", encoding="utf-8")
        self.assertTrue(self.page_text().startswith("<!DOCTYPE html>\n"))
        self.assertEqual(list(folder.iterdir()), [self.file])

    def test_a_relative_place_is_below_the_current_folder(self):
        result = self.run_program("size", "--html=here.html", cwd=self.root)
        self.assertEqual(result.status, 0)
        self.assertTrue((self.root / "here.html").is_file())

    def test_a_disk_that_is_full_leaves_the_report_and_no_half_page(self):
        with_limit = ["/bin/sh", "-c", 'ulimit -f 1; exec "$@"', "sh", PROGRAM, "--home", self.home,
                      "size", "--browser=safari", "--html", self.file]
        completed = subprocess.run(with_limit, env={**self.environment}, capture_output=True,
                                   check=False, preexec_fn=ignore_file_size_signal)
        self.assertEqual(completed.returncode, 1)
        self.assertIn(b"Total", completed.stdout)
        self.assertIn(b"cannot write the page", completed.stderr)
        self.assertEqual([p.name for p in self.root.iterdir() if "page" in p.name], [])


def ignore_file_size_signal():
    import signal
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)


class Access(PageTest):
    """What a page owes to every reader, as far as its text shows it."""

    def test_language_title_and_headings(self):
        page = self.page()
        self.assertEqual(page.problems, [])
        self.assertEqual(page.all("html")[0][1], {"lang": "en"})
        self.assertEqual(page.texts("title"), ["What web browsers keep"])
        self.assertEqual(len(page.all("main")), 1)
        levels = [int(tag[1]) for tag, _, _ in page.all("h1", "h2", "h3", "h4")]
        self.assertEqual(levels.count(1), 1)
        self.assertEqual(levels[0], 1)
        for before, after in zip(levels, levels[1:]):
            self.assertLessEqual(after, before + 1, "a level of headings is skipped")

    def test_tables_have_a_caption_and_every_header_its_scope(self):
        page = self.page()
        self.assertEqual(len(page.all("caption")), len(page.all("table")))
        headers = page.all("th")
        self.assertGreater(len(headers), 5)
        for _, attributes, text in headers:
            self.assertIn(attributes.get("scope"), ("col", "row"), text)

    def test_bars_are_only_an_addition_to_text(self):
        page = self.page()
        self.assertGreater(len(page.all("svg")), 5)
        for _, attributes, _ in page.all("svg"):
            self.assertEqual(attributes["aria-hidden"], "true")
        for text in page.texts("li"):
            self.assertRegex(text, r"\S ~?[\d.,]+ [KMG]?B$")

    def test_ids_are_unique_and_labels_refer_to_them(self):
        page = self.page()
        ids = [attributes["id"] for _, attributes, _ in page.elements if "id" in attributes]
        self.assertEqual(len(ids), len(set(ids)))
        for _, attributes, _ in page.elements:
            if "aria-labelledby" in attributes:
                self.assertIn(attributes["aria-labelledby"], ids)

    def test_text_and_bars_stand_out_in_the_light_and_in_the_dark(self):
        style = self.page().all("style")[0][2]
        schemes = [dict(re.findall(r"--(\w+): (#[0-9a-f]{6})", block))
                   for block in re.findall(r":root \{[^}]*\}", style)]
        self.assertEqual(len(schemes), 2)
        for names in schemes:
            colour = {name: bytes.fromhex(value[1:]) for name, value in names.items()}
            for ground in ("page", "card"):
                for text in ("text", "quiet", "failed"):
                    with self.subTest(text=text, ground=ground):
                        self.assertGreaterEqual(contrast(colour[text], colour[ground]), 4.5)
                self.assertGreaterEqual(contrast(colour["bar"], colour[ground]), 3)
            self.assertGreaterEqual(contrast(colour["bar"], colour["track"]), 3)

    def test_the_page_loads_nothing_runs_what_sorts_it_and_forbids_all_else(self):
        text = self.page_text()
        page = Page(text)
        self.assertEqual(page.all("link", "img", "iframe", "object", "form", "a"), [])
        self.assertEqual([attributes for _, attributes, _ in page.all("script")], [{}])
        for _, attributes, _ in page.elements:
            self.assertEqual({name for name in attributes
                              if name.startswith("on") or name in ("src", "href", "style")}, set())
        self.assertNotRegex(text, r"https?:|//|@import|url\(|fetch|import\(|XMLHttp|eval")
        digest, script = (
            base64.b64encode(hashlib.sha256(page.all(tag)[0][2].encode()).digest()).decode()
            for tag in ("style", "script"))
        policy = [a["content"] for _, a, _ in page.all("meta")
                  if a.get("http-equiv") == "Content-Security-Policy"]
        self.assertEqual(policy, [f"default-src 'none'; style-src 'sha256-{digest}'; script-src "
                                  f"'sha256-{script}'; base-uri 'none'; form-action 'none'"])


PROBE = """
const violations = [];
document.addEventListener("securitypolicyviolation", e => violations.push(e.violatedDirective));
addEventListener("load", () => {
  const seen = element => {
    for (; element; element = element.parentElement) {
      const colour = getComputedStyle(element).backgroundColor;
      if (!colour.startsWith("rgba(0, 0, 0, 0")) return colour;
    }
    return "rgb(255, 255, 255)";
  };
  const texts = [...document.querySelectorAll("main *")].filter(e => !e.closest("svg") &&
    [...e.childNodes].some(n => n.nodeType === 3 && n.data.trim()));
  const sortedBy = column => {
    const table = document.querySelector("table.sortable");
    const head = table.tHead.rows[0].cells[column];
    head.firstChild.click();
    const cells = [...table.tBodies[0].rows].map(row => row.cells[column]);
    return [[head.textContent, head.getAttribute("aria-sort"),
             cells.map(cell => cell.dataset.value ?? cell.textContent)]];
  };
  const found = {
    violations,
    texts: texts.map(e => [e.textContent, getComputedStyle(e).color, seen(e)]),
    bars: [...document.querySelectorAll(".bar")].map(e => [
      e.getBoundingClientRect().width / e.closest("svg").getBoundingClientRect().width,
      getComputedStyle(e).fill]),
    sorted: sortedBy(0).concat(sortedBy(4), sortedBy(4), sortedBy(3)),
    overflow: document.documentElement.scrollWidth - document.documentElement.clientWidth,
    resources: performance.getEntriesByType("resource").map(e => e.name),
  };
  const result = document.createElement("pre");
  result.id = "result";
  result.textContent = JSON.stringify(found);
  document.body.append(result);
});
"""


def colour_of(text):
    return [float(number) for number in re.findall(r"[\d.]+", text)][:3]


class InABrowser(PageTest):
    """The page as a real browser lays it out, under the page's own policy."""

    def chromium(self, *arguments):
        program = shutil.which("chromium") or shutil.which("google-chrome")
        if program is None:
            self.skipTest("no Chromium is installed")
        profile = self.root / "browser"
        sandbox = ["--no-sandbox"] if os.geteuid() == 0 else []
        completed = subprocess.run(
            [program, *sandbox, "--headless=new", "--disable-gpu", "--disable-dev-shm-usage",
             f"--user-data-dir={profile}", *arguments],
            env={"PATH": os.environ["PATH"], "HOME": str(self.root),
                 "CFFIXED_USER_HOME": str(self.root)}, timeout=HANGS,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        self.assertEqual(completed.returncode, 0, completed.stderr.decode())
        return completed.stdout.decode("utf-8")

    def probed(self, width):
        """The page with a script that looks at it; its policy allows that script besides."""
        text = self.page_text()
        digest = base64.b64encode(hashlib.sha256(PROBE.encode()).digest()).decode()
        text = text.replace("script-src ", f"script-src 'sha256-{digest}' ")
        copy = self.root / "probed.html"
        write(copy, text.replace("</head>", f"<script>{PROBE}</script></head>"))
        dom = self.chromium(f"--window-size={width},900", "--dump-dom", copy.as_uri())
        result = [e for e in Page(dom).all("pre") if e[1].get("id") == "result"]
        self.assertEqual(len(result), 1, dom[-500:])
        return json.loads(result[0][2])

    def test_it_is_laid_out_readable_and_alone(self):
        found = self.probed(500)
        self.assertEqual(found["violations"], [])
        self.assertEqual(found["resources"], [])
        self.assertLessEqual(found["overflow"], 0, "the page is wider than the window")
        self.assertGreater(len(found["texts"]), 20)
        for text, colour, ground in found["texts"]:
            self.assertGreaterEqual(contrast(colour_of(colour), colour_of(ground)), 4.5, text)
        self.assertEqual({fill for _, fill in found["bars"]}, {"rgb(29, 95, 168)"})
        expected = [float(width) / 100 for width in
                    re.findall(r'class="bar" width="([\d.]+)%"', self.page_text())]
        self.assertEqual(len(expected), len(found["bars"]))
        for (share, _), wanted in zip(found["bars"], expected):
            self.assertAlmostEqual(share, wanted, places=2)

    def test_a_click_on_a_header_sorts_the_table(self):
        write(self.caches / "Vivaldi" / "Default" / "Cache" / "data_0", b"x" * 70000)
        write(self.support / "Vivaldi" / "Local State", json.dumps({"profile": {
            "last_used": "Default", "last_active_profiles": ["Default"],
            "info_cache": {"Default": {"name": "V", "is_consented_primary_account": False}}}}))
        by_browser, largest_first, smallest_first, by_items = self.probed(900)["sorted"]
        self.assertEqual(by_browser[:2], ["Browser", "ascending"])
        self.assertEqual(by_browser[2], sorted(by_browser[2]))
        self.assertEqual(largest_first[:2], ["Size", "descending"])
        self.assertEqual(smallest_first[:2], ["Size", "ascending"])
        sizes = [int(value) for value in largest_first[2]]
        self.assertEqual(sizes, sorted(sizes, reverse=True))
        self.assertEqual([int(value) for value in smallest_first[2]], sorted(sizes))
        items = [int(value) for value in by_items[2]]
        self.assertEqual((by_items[0], items), ("Items", sorted(items, reverse=True)))

    def test_a_screenshot_can_be_taken_of_it(self):
        self.page_text()
        picture = self.root / "picture.png"
        self.chromium("--window-size=1000,1400", f"--screenshot={picture}", self.file.as_uri())
        self.assertEqual(picture.read_bytes()[:8], b"\x89PNG\r\n\x1a\n")
        if keep := os.environ.get("BROWSERSWEEP_SCREENSHOT"):
            shutil.copyfile(picture, keep)
            print(f"the screenshot is {keep}", file=sys.stderr)
