"""Looks at the finished site: every link leads somewhere, nothing comes from another host, the browser complains about
nothing, and the search finds every class.

    tools/site/check.py HTML CLASSES

CLASSES is a JSON file of names and the pages that they are on. Prints each fault; exit status 1 if there is one.
"""

import html.parser
import json
import pathlib
import re
import sys
import urllib.parse

from selenium import webdriver
from selenium.webdriver.common.by import By

FOREIGN = re.compile(r"^(?:https?:)?//")
LISTED = 5  # a name must be among so many results
NARROW = 400
SECONDS = 20  # for one name


class page(html.parser.HTMLParser):
    """What a page refers to, and what can be referred to in it."""

    def __init__(self, text):
        super().__init__()
        self.links, self.loads, self.ids, self.twice = [], [], set(), []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        if attributes.get("id"):
            self.twice += [attributes["id"]] * (attributes["id"] in self.ids)
            self.ids.add(attributes["id"])
        if tag == "a" and "href" in attributes:
            self.links.append(attributes["href"] or "")
        elif tag == "link" and attributes.get("href"):
            self.loads.append(attributes["href"])
        for name in ("src", "poster", "data", "srcset"):
            if attributes.get(name):
                self.loads.append(attributes[name])


def target(path, link, root):
    """The file and the anchor that a link on a page means."""
    address, _, anchor = link.partition("#")
    address = urllib.parse.unquote(address.partition("?")[0])
    if not address:
        return path, anchor
    return ((root / address.lstrip("/")) if address.startswith("/") else (path.parent / address)).resolve(), anchor


def check_links(root, faults):
    pages = {path: page(path.read_text()) for path in sorted(root.rglob("*.html"))}
    checked = 0
    for path, content in pages.items():
        faults += [f"{path.relative_to(root)}: the anchor {each} is there twice" for each in content.twice]
        for link in content.links + content.loads:
            if FOREIGN.match(link):
                if link in content.loads:
                    faults.append(f"{path.relative_to(root)} loads {link}")
                continue
            if re.match(r"[a-z]+:", link):
                continue
            checked += 1
            file, anchor = target(path, link, root)
            file = file / "index.html" if file.is_dir() else file
            if not file.is_file():
                faults.append(f"{path.relative_to(root)}: nothing is at {link}")
            elif anchor and file in pages and urllib.parse.unquote(anchor) not in pages[file].ids:
                faults.append(f"{path.relative_to(root)}: no anchor {link}")
    for path in root.rglob("*.css"):
        for address in re.findall(r"url\(\s*[\"']?([^\"')]+)", path.read_text()):
            if FOREIGN.match(address):
                faults.append(f"{path.relative_to(root)} loads {address}")
    return pages, checked


def browser():
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--window-size=1400,1000",
                     "--disable-background-networking", "--no-first-run", "--hide-scrollbars"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(options=options)


def requests(driver):
    """The addresses that pages asked for since the last call."""
    for entry in driver.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] == "Network.requestWillBeSent":
            yield message["params"]["request"]["url"]


def look(driver, root, path, faults):
    """Opens a page; with scripts, unless they are switched off."""
    driver.get(path.as_uri())
    name = path.relative_to(root)
    for entry in driver.get_log("browser"):
        faults.append(f"{name}: {entry['level']} {entry['message']}")
    faults += [f"{name} asks for {url}" for url in requests(driver) if not url.startswith(("file:", "data:", "blob:"))]
    metrics = driver.execute_cdp_cmd("Page.getLayoutMetrics", {})
    width, window = metrics["cssContentSize"]["width"], metrics["cssLayoutViewport"]["clientWidth"]
    if width > window:
        faults.append(f"{name} is {width} pixels wide in a window of {window}")


SEARCH = """
const [names, listed, milliseconds, done] = arguments;
const field = document.querySelector(".md-search__input");
const missing = [];
const pages = () => [...new Set([...document.querySelectorAll(".md-search-result__link")].map(
    (link) => decodeURIComponent(new URL(link.href).pathname)))].slice(0, listed);
(async () => {
    for (const [name, page] of names) {
        field.value = name;
        field.dispatchEvent(new KeyboardEvent("keyup"));
        const end = performance.now() + milliseconds;
        while (!pages().includes(page) && performance.now() < end) {
            await new Promise((later) => setTimeout(later, 5));
        }
        if (!pages().includes(page)) {
            missing.push(name);
        }
    }
    done(missing);
})();
"""


def check_search(driver, root, classes, faults):
    """Types each name into the search, and waits until its page is among the first that are listed."""
    look(driver, root, root / "index.html", faults)
    driver.find_element(By.CSS_SELECTOR, ".md-search__input").click()
    driver.set_script_timeout(SECONDS * len(classes))
    names = [(name, str(root / address)) for name, address in classes]
    for name in driver.execute_async_script(SEARCH, names, LISTED, 1000 * SECONDS):
        faults.append(f"the search for {name} does not list its page")


def check_in_browser(root, pages, classes, faults):
    """All pages as they are on a narrow screen. Scripts are the same everywhere: they run on the pages of the root and on
    the first of each folder, on a wide screen."""
    driver = browser()
    try:
        first = {path.parent: path for path in reversed(pages)}
        for path in pages:
            if path.parent == root or path in first.values():
                look(driver, root, path, faults)
        check_search(driver, root, classes, faults)
        driver.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                               {"width": NARROW, "height": 1000, "deviceScaleFactor": 1, "mobile": False})
        for path in pages:
            look(driver, root, path, faults)
    finally:
        driver.quit()


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    root, faults = pathlib.Path(sys.argv[1]).resolve(), []
    classes = json.loads(pathlib.Path(sys.argv[2]).read_text())
    pages, links = check_links(root, faults)
    check_in_browser(root, list(pages), classes, faults)
    print(*faults, sep="\n", end="\n" if faults else "")
    print(f"{len(pages)} pages looked at, {links} links followed, {len(classes)} names searched, {len(faults)} faults")
    return 1 if faults or not classes or not links else 0


sys.exit(main())
