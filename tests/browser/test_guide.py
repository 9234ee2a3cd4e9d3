"""Look at the guide in a headless browser: GUIDE and BROWSER are environment variables."""

import os
import pathlib
import sys
import unittest

from browser import Browser

GUIDE, BROWSER = pathlib.Path(os.environ["GUIDE"]), os.environ["BROWSER"]
PHONE, DESK = 400, 1400
HEIGHT = 900


class Guide(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser(BROWSER)

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()

    def show(self, width):
        self.browser.resize(width, HEIGHT)
        self.browser.open(GUIDE)

    def test_pictures_keep_their_proportions_and_fit(self):
        for width in (320, PHONE, DESK):
            self.show(width)
            pictures = self.browser.value(
                "[...document.images].map(i => [i.alt, i.naturalWidth,"
                "i.naturalHeight, i.width, i.height])")
            self.assertGreater(len(pictures), 10)
            for alt, wide, high, shown_wide, shown_high in pictures:
                with self.subTest(alt=alt, width=width):
                    self.assertTrue(alt)
                    self.assertAlmostEqual(shown_wide / wide,
                                           shown_high / high, delta=0.01)
                    self.assertLessEqual(shown_wide, wide)
                    self.assertGreater(shown_wide, 200)
            self.assertEqual(self.browser.value(
                "document.documentElement.scrollWidth"), width)

    def test_commands_are_seen_whole_on_a_screen(self):
        self.show(DESK)
        self.assertEqual(self.browser.value(
            "[...document.querySelectorAll('pre')].filter("
            "p => p.scrollWidth > p.clientWidth).map(p => p.textContent)"), [])

    def test_all_links_have_their_places(self):
        self.show(DESK)
        self.assertEqual(self.browser.value(
            "[...document.querySelectorAll('a')].filter("
            "a => !document.getElementById(a.hash.slice(1)))"
            ".map(a => a.getAttribute('href'))"), [])


if __name__ == "__main__":
    sys.exit(unittest.main())
