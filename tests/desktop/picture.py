"""What the X server shows, as pixels that can be asked questions and saved as a PNG file."""

import struct
import zlib

# The wallpaper of the tests: no view of the notch has this hue, and a shadow on it keeps it.
WALLPAPER = (0, 208, 208)

ORANGE = (217, 120, 87)
YELLOW = (255, 214, 10)
GREEN = (48, 209, 88)


def is_wallpaper(pixel):
    red, green, blue = pixel
    return red < 0.2 * green and abs(green - blue) < 12 and green > 30


def is_near(pixel, colour, tolerance=24):
    return all(abs(value - wanted) <= tolerance for value, wanted in zip(pixel, colour))


def dusk(height):
    """A wallpaper for pictures that people look at: the colour of each row."""
    def colour(row):
        share = min(row / height, 1)
        return tuple(round(top + (bottom - top) * share) for top, bottom in ((88, 236), (112, 190), (164, 150)))
    return colour


class Picture:
    """A rectangle of the screen; `x` and `y` are where it was taken. All coordinates are the screen's."""

    def __init__(self, x, y, width, height, data):
        self.x, self.y, self.width, self.height, self.data = x, y, width, height, data

    def pixel(self, x, y):
        start = ((y - self.y) * self.width + (x - self.x)) * 4
        blue, green, red = self.data[start:start + 3]
        return red, green, blue

    def count(self, colour, left, top, right, bottom, tolerance=24):
        """How many pixels of the area have about that colour."""
        return sum(is_near(self.pixel(x, y), colour, tolerance)
                   for y in range(top, bottom) for x in range(left, right))

    def notch(self):
        """Width and height of what is not wallpaper below the ears, around the middle of the top edge, with the
        x where it begins; (0, 0, middle) when there is nothing."""
        middle = self.x + self.width // 2
        row = self.y + 9  # below the ears, above every rounded corner
        columns = [x for x in range(self.x, self.x + self.width) if not is_wallpaper(self.pixel(x, row))]
        rows = [y for y in range(self.y, self.y + self.height) if not is_wallpaper(self.pixel(middle, y))]
        if not columns or not rows:
            return 0, 0, middle
        return columns[-1] - columns[0] + 1, rows[-1] - self.y + 1, columns[0]

    def above(self, other):
        """This picture with another one of the same width below it."""
        return Picture(self.x, self.y, self.width, self.height + other.height, self.data + other.data)

    def save(self, path):
        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

        rgb = bytearray(self.width * self.height * 3)
        rgb[0::3], rgb[1::3], rgb[2::3] = self.data[2::4], self.data[1::4], self.data[0::4]
        stride = self.width * 3
        rows = b"".join(b"\0" + rgb[y * stride:(y + 1) * stride] for y in range(self.height))
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                       + chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))
