"""Drive a report in a headless browser: TOOL and BROWSER are environment variables."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from browser import Browser

TOOL, BROWSER = os.environ["TOOL"], os.environ["BROWSER"]
PROJECT = pathlib.Path(__file__).resolve().parents[2]
PICTURE = PROJECT / "docs/pictures/chart.png"
PALETTE = PROJECT / "tests/data/palettes/tab10.gpl"
PHONE, DESK = 400, 1400
HEIGHT = 900
RIGHT, HOME, END, DOWN = (("ArrowRight", 39), ("Home", 36), ("End", 35),
                          ("ArrowDown", 40))


def write_report(folder, *arguments):
    page = pathlib.Path(folder) / "report.html"
    subprocess.run([TOOL, "report", *map(str, arguments), "-o", str(page)],
                   check=True)
    return page


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.page = write_report(cls.folder.name, PICTURE, PALETTE)
        cls.browser = Browser(BROWSER)

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()
        cls.folder.cleanup()

    def setUp(self):
        self.show(DESK)

    def show(self, width):
        self.browser.resize(width, HEIGHT)
        self.browser.open(self.page)

    def value(self, expression):
        return self.browser.value(expression)

    def position(self):
        return float(self.value(
            "getComputedStyle(document.querySelector('.wipe'))"
            ".getPropertyValue('--at')").rstrip("%"))

    def colour_at(self, x, y):
        """Red, green and blue on the screen."""
        shot = self.browser.call(
            "Page.captureScreenshot", format="png",
            clip={"x": x, "y": y + self.value("scrollY"), "width": 1,
                  "height": 1, "scale": 1})["data"]
        return self.value(f"""(async () => {{
            const picture = new Image();
            picture.src = "data:image/png;base64,{shot}";
            await picture.decode();
            const canvas = document.createElement("canvas");
            canvas.width = canvas.height = 1;
            const context = canvas.getContext("2d");
            context.drawImage(picture, 0, 0);
            return [...context.getImageData(0, 0, 1, 1).data].slice(0, 3);
        }})()""")

    def wipe_box(self):
        self.browser.centre_of(".wipe")
        return self.value("""(() => {
            const box = document.querySelector(".wipe").getBoundingClientRect();
            return [box.left, box.top, box.width, box.height];
        })()""")

    def test_nothing_is_fetched_and_nothing_complained_about(self):
        addresses = [event["params"]["request"]["url"]
                     for event in self.browser.events
                     if event.get("method") == "Network.requestWillBeSent"]
        self.assertTrue(addresses)
        for address in addresses:
            self.assertRegex(address, "^(file:|data:)")
        complaints = [event for event in self.browser.events
                      if event.get("method") in
                      ("Log.entryAdded", "Runtime.exceptionThrown")]
        self.assertEqual(complaints, [])
        # The favicon of a file is never asked for; all else must be inside.
        self.assertEqual(self.value(
            "performance.getEntriesByType('resource').filter("
            "e => !e.name.startsWith('data:')).length"), 0)

    def test_all_pictures_are_shown(self):
        sizes = self.value(
            "[...document.images].map(i => [i.naturalWidth, i.alt])")
        # The viewer's two, 1 + 6, and for three types 1 + 5 and 1 + 6.
        self.assertEqual(len(sizes), 2 + 7 + 3 * (6 + 7))
        for width, _ in sizes:
            self.assertGreater(width, 0)
        self.assertEqual([alt for _, alt in sizes[1:] if not alt], [""])
        labels = self.value("[...document.querySelectorAll('.grid img')]"
                            ".map(i => i.dataset.label)")
        self.assertEqual(labels, ["original", "protan 60%", "protan 100%",
                                  "deutan 60%", "deutan 100%", "tritan 60%",
                                  "tritan 100%"])

    def test_a_drag_on_the_picture_wipes(self):
        left, top, width, height = self.wipe_box()
        middle = top + height / 2
        self.assertEqual(self.position(), 50)
        self.browser.mouse("mousePressed", left + width * 0.75, middle)
        self.assertAlmostEqual(self.position(), 75, delta=1)
        self.browser.mouse("mouseMoved", left + width * 0.25, middle)
        self.assertAlmostEqual(self.position(), 25, delta=1)
        self.browser.mouse("mouseMoved", left - 50, middle)
        self.assertEqual(self.position(), 0)
        self.browser.mouse("mouseReleased", left - 50, middle)
        self.browser.mouse("mouseMoved", left + width * 0.5, middle)
        self.assertEqual(self.position(), 0)
        self.assertEqual(self.value(
            "document.querySelector('input[type=range]').value"), "0")

    def test_the_original_is_left_of_the_edge_and_the_simulation_right(self):
        left, top, width, height = self.wipe_box()
        # The first bar of the chart, red for those who see it.
        x, y = left + width * 0.14, top + height * 0.7
        self.browser.click(left + width * 0.9, y)
        original = self.colour_at(x, y)
        self.browser.click(left + width * 0.02, y)
        seen = self.colour_at(x, y)
        self.assertGreater(original[0], original[1] + 100)
        self.assertLess(abs(seen[0] - seen[1]), 10)

    def test_keys_wipe_and_choose(self):
        self.value("document.querySelector('input[type=range]').focus()")
        self.browser.press(*RIGHT)
        self.assertEqual(self.position(), 51)
        self.browser.press(*HOME)
        self.assertEqual(self.position(), 0)
        self.browser.press(*END)
        self.assertEqual(self.position(), 100)
        self.assertEqual(self.value(
            "document.querySelector('input[type=range]')"
            ".getAttribute('aria-valuetext')"),
            "100% original, 0% deutan 100%")
        before = self.value("document.querySelector('.under').src")
        self.value("document.querySelector('input[type=radio]:checked')"
                   ".focus()")
        self.browser.press(*DOWN)
        self.assertEqual(self.value(
            "document.querySelector('.seen-label').textContent"),
            "tritan 60%")
        self.assertNotEqual(self.value("document.querySelector('.under').src"),
                            before)

    def test_a_click_on_a_choice_shows_it(self):
        self.browser.click(*self.browser.centre_of(
            ".viewer label:nth-of-type(1)"))
        self.assertEqual(self.value(
            "document.querySelector('.seen-label').textContent"),
            "protan 60%")
        self.assertEqual(self.value("document.querySelector('.under').src"),
                         self.value("document.querySelector("
                                    "'[data-label=\"protan 60%\"]').src"))

    def test_all_controls_can_be_reached_by_the_tab_key(self):
        reached = []
        for _ in range(12):
            self.browser.press("Tab", 9)
            reached.append(self.value(
                "document.activeElement.tagName + ' ' + "
                "(document.activeElement.type ?? '')").strip())
        for kind in ("A", "INPUT radio", "INPUT range", "DIV", "SUMMARY"):
            self.assertIn(kind, reached)

    def test_the_accessibility_tree_names_pictures_and_controls(self):
        nodes = self.browser.call("Accessibility.getFullAXTree")["nodes"]
        named = {}
        for node in nodes:
            role = node.get("role", {}).get("value")
            name = node.get("name", {}).get("value", "")
            named.setdefault(role, []).append(name)
        self.assertEqual(named["slider"],
                         ["Wipe between the original and the simulation"])
        self.assertEqual(named["radio"][:2], ["protan 60%", "protan 100%"])
        self.assertIn("chart.png as seen with deutan 100%",
                      named.get("image", []) + named.get("img", []))
        self.assertIn("Contents", named["navigation"])
        self.assertTrue(all(named["region"]))

    def test_findings_are_those_of_check(self):
        run = subprocess.run([TOOL, "check", str(PALETTE), "--format",
                              "json"], capture_output=True, check=False)
        answer = json.loads(run.stdout)
        colours = answer["colours"]
        expected = [
            [colours[place]["hex"] for place in finding["colours"]]
            + [f"{entry['deficiency']} {entry['severity']:g}%"
               for entry in finding["lost_to"]]
            + [finding["suggestion"]["to"]]
            for finding in answer["findings"]]
        shown = self.value("""
            [...document.querySelectorAll("#input-2 .finding")].map((item) => [
              ...[...item.querySelectorAll("h4 code")].map((c) => c.textContent),
              ...[...item.querySelectorAll("li strong")].map((s) =>
                s.parentElement.textContent.replace("lost to ", "")),
              [...item.querySelectorAll("li code")].at(-1).textContent])""")
        self.assertEqual(shown, expected)
        self.assertTrue(shown)

    def test_nothing_is_wider_than_a_phone_or_a_screen(self):
        for width in (320, PHONE, DESK):
            self.show(width)
            self.assertLessEqual(self.value(
                "document.documentElement.scrollWidth"), width)

    def test_the_figures_of_a_finding_stand_below_each_other(self):
        self.show(700)
        places = self.value("""[...document.querySelectorAll(".finding")].map(
            (item) => [...item.querySelectorAll("li > :nth-child(3)")].map(
                (text) => text.getBoundingClientRect().left))""")
        self.assertTrue(places)
        for finding in places:
            self.assertGreater(len(finding), 1)
            self.assertEqual(len(set(finding)), 1, finding)

    def test_on_paper_the_pictures_stand_and_the_controls_do_not(self):
        self.browser.call("Emulation.setEmulatedMedia", media="print")
        try:
            display = self.value(
                "getComputedStyle(document.querySelector('.viewer')).display")
            grid = self.value("document.querySelectorAll('.grid img').length")
            rows = self.value("""[...document.querySelectorAll(".strip")].map(
                (strip) => new Set([...strip.children].map(
                    (figure) => figure.getBoundingClientRect().top)).size)""")
        finally:
            self.browser.call("Emulation.setEmulatedMedia", media="")
        self.assertEqual(display, "none")
        self.assertEqual(grid, 7)
        self.assertEqual(set(rows), {1})
        self.assertTrue(self.browser.pdf().startswith(b"%PDF-"))

    def test_without_scripts_everything_but_the_wipe_is_there(self):
        self.browser.call("Emulation.setScriptExecutionDisabled", value=True)
        try:
            self.show(DESK)
            document = self.browser.call("DOM.getDocument", depth=-1)["root"]
            nodes = [self.browser.call(
                "DOM.querySelectorAll", nodeId=document["nodeId"],
                selector=selector)["nodeIds"] for selector in
                (".grid img[src^='data:']", ".viewer[hidden]", ".finding")]
        finally:
            self.browser.call("Emulation.setScriptExecutionDisabled",
                              value=False)
        self.assertEqual([len(found) for found in nodes[:2]], [7, 1])
        self.assertTrue(nodes[2])


class Names(unittest.TestCase):
    def test_names_are_text_and_no_markup(self):
        with tempfile.TemporaryDirectory() as folder, \
                Browser(BROWSER) as browser:
            name = '<img src=x onerror=document.title=1>&amp;"\'.gpl'
            palette = pathlib.Path(folder) / name
            palette.write_text("GIMP Palette\n255 0 0 <b>red</b>\n"
                               "0 128 0 </table><script>document.title = 2"
                               "</script>\n", encoding="utf-8")
            page = write_report(folder, palette, "--title", "</title><i>")
            browser.resize(DESK, HEIGHT)
            browser.open(page)
            self.assertEqual(browser.value("document.title"), "</title><i>")
            self.assertEqual(browser.value(
                "document.querySelector('h2').textContent"), name)
            self.assertEqual(browser.value(
                "document.querySelectorAll('b, i, img, table script')"
                ".length"), 0)


if __name__ == "__main__":
    sys.exit(unittest.main())
