"""Checks that every link between the HTML pages of a folder leads to a page and a place in it.

    check_links.py FOLDER
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urldefrag


class Page(HTMLParser):
    def __init__(self, path: Path) -> None:
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(path.read_text(errors="replace"))

    def handle_starttag(self, tag: str, attributes: list) -> None:
        for name, value in attributes:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            if name in ("href", "src") and value and tag in ("a", "img", "link", "script"):
                self.links.append(value)


def main() -> None:
    folder = Path(sys.argv[1])
    pages = {path.name: Page(path) for path in folder.glob("*.html")}
    broken, count = [], 0
    for name, page in pages.items():
        for link in page.links:
            if "://" in link or link.startswith(("javascript:", "mailto:", "data:")):
                continue
            count += 1
            target, anchor = urldefrag(link)
            target = unquote(target) or name
            if not (folder / target).exists():
                broken.append(f"{name}: {link}: no such file")
            elif anchor and target in pages and unquote(anchor) not in pages[target].anchors:
                broken.append(f"{name}: {link}: no such place")
    print(f"{count} links on {len(pages)} pages, {len(broken)} broken")
    if broken or not count:
        sys.exit("\n".join(broken))


main()
