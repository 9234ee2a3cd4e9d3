"""Save pictures of a page: look.py BROWSER PAGE FOLDER [WIDTH...]"""

import pathlib
import sys

from browser import Browser

HEIGHT = 900


def main():
    program, page, folder, *widths = sys.argv[1:]
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    with Browser(program) as browser:
        for width in map(int, widths or ("400", "1400")):
            browser.resize(width, HEIGHT)
            browser.open(pathlib.Path(page).resolve())
            (folder / f"{width}.png").write_bytes(
                browser.screenshot(whole=True))
        (folder / "print.pdf").write_bytes(browser.pdf())


if __name__ == "__main__":
    main()
