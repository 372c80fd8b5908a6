"""The overlay speaks the desktop's language."""

import unittest

from desktop import Desktop
from desktop_test import BANNER, DesktopTest


class Language(DesktopTest):
    def test_a_french_desktop_hears_french(self):
        with Desktop(language="fr") as french:
            # "Attend ta réponse" is a good deal longer than "Waiting for you".
            self.assertGreater(self.width_of_banner_text(french), self.width_of_banner_text(self.desktop) + 8)

    def width_of_banner_text(self, desktop):
        desktop.start_overlay()
        desktop.hook(hook_event_name="Notification", session_id="a", cwd="/src/bakery")
        desktop.wait_for_notch(*BANNER)
        picture = desktop.top()
        width, height, left = picture.notch()
        columns = [x for x in range(left, left + width)
                   if any(min(picture.pixel(x, y)) > 90 for y in range(height - 28, height - 2))]
        return columns[-1] - columns[0]


if __name__ == "__main__":
    unittest.main()
