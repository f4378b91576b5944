"""Makes drawing files for the tests of pictures, by the layout in docs/drawing-file-format.md."""

import struct

BLACK, WHITE = 0x000000, 0xFFFFFF
RED, GREEN, BLUE = 0x0000FF, 0x008000, 0xFF0000
SOLID, NO_FILL = 6, 7

TYPES = {"CLine": 1, "CLineArrow": 2, "CLineArrows": 3, "CArrowsUDL": 4, "CFontItem": 5,
         "CRectangle": 6, "CRectFill": 7, "CRectRound": 8, "CRectRoundFill": 9, "CCircle": 10,
         "CCircleFill": 11, "CPolygon": 12, "CBezier": 13, "CEllipse": 14, "CPie": 15, "CText": 16}


def words(*values):
    return b"".join(struct.pack("<I", value & 0xFFFFFFFF) for value in values)


class Drawing:
    """A drawing under way: each call adds a figure with the present pen and fill."""

    def __init__(self, width=1390, height=1800, background=BLACK, title=b""):
        self.head = (words(6501, 50, 50) + bytes(48) + words(1, 0x8080FF, 12, background, 0, WHITE,
                                                             15, 1, 7, 2, 0, width, height)
                     + bytes([len(title)]) + title + words(4))
        self.records, self.count = [], 0
        self.classes, self.next_number = {}, 1
        self.color, self.pen_width, self.visible = BLACK, 1, 1
        self.fill_style, self.fill_color = NO_FILL, WHITE

    def add(self, name, box, *rest):
        if name in self.classes:
            self.records.append(struct.pack("<H", 0x8000 | self.classes[name]))
        else:
            self.classes[name] = self.next_number
            self.next_number += 1
            self.records.append(struct.pack("<HHH", 0xFFFF, 3, len(name)) + name.encode())
        self.next_number += 1
        self.count += 1
        self.records.append(words(TYPES[name], *box, self.color, 16, self.pen_width, self.visible)
                            + b"".join(rest))

    def fill(self):
        return words(self.fill_style, self.fill_color)

    def line(self, *box):
        self.add("CLine", box)

    def filled(self, name, *box):
        self.add(name, box, self.fill())

    def curve(self, name, *points):
        xs, ys = points[::2], points[1::2]
        self.add(name, (min(xs), min(ys), max(xs), max(ys)),
                 words(self.fill_style, len(xs), self.fill_color, *points))

    def pie(self, box, rays, kind, arrow=0):
        self.add("CPie", box, self.fill(), words(*rays), bytes([arrow]), kind)

    def font(self, height=16, face=b"Times New Roman", escapement=0, weight=400, italic=0):
        self.add("CFontItem", (0, 0, 0, 0),
                 words(16, height, 0, escapement, escapement, weight),
                 bytes([italic, 0, 0, 0, 0, 0, 0, 0x30]), face.ljust(32, b"\0"))

    def text(self, x, y, text):
        self.add("CText", (x, y, x, y), bytes([len(text)]), text)

    def bytes(self):
        count = (struct.pack("<H", self.count) if self.count < 0xFFFF
                 else struct.pack("<HI", 0xFFFF, self.count))
        return self.head + count + b"".join(self.records)


def every_class():
    """A page of 600 x 800 that holds every class, hatch and some fonts, 100 units a cell."""
    drawing = Drawing(600, 800, background=0x402000, title=b"Every <class> & hatch")
    drawing.font()
    for style in range(8):
        drawing.fill_style, drawing.fill_color = style, RED if style < 6 else 0x80FF80
        drawing.filled("CRectFill", 10 + 73 * style, 10, 70 + 73 * style, 90)
    drawing.fill_style, drawing.fill_color = SOLID, 0xFF80FF
    drawing.pen_width, drawing.color = 6, BLUE
    drawing.line(10, 110, 90, 190)
    drawing.add("CLineArrow", (110, 190, 190, 110))
    drawing.add("CLineArrows", (210, 150, 290, 150), b"B")
    drawing.pen_width = 2
    drawing.add("CArrowsUDL", (310, 190, 390, 190), struct.pack("<f", 3))
    drawing.pen_width = 6
    drawing.add("CRectangle", (410, 110, 490, 190))
    drawing.add("CRectRound", (510, 110, 590, 190))
    drawing.filled("CRectRoundFill", 10, 210, 90, 290)
    drawing.add("CCircle", (110, 210, 190, 290))
    drawing.filled("CCircleFill", 210, 210, 290, 290)
    drawing.filled("CEllipse", 310, 230, 390, 270)
    drawing.curve("CPolygon", 410, 290, 450, 210, 490, 290)
    drawing.curve("CBezier", 510, 290, 520, 190, 580, 190, 590, 290)
    drawing.pie((10, 310, 90, 390), (90, 350, 50, 310), b"A", 1)
    drawing.pie((110, 310, 190, 390), (190, 350, 150, 310), b"P")
    drawing.pie((210, 310, 290, 390), (250, 310, 210, 350), b"C")
    drawing.fill_style = NO_FILL
    drawing.curve("CPolygon", 310, 310, 390, 330, 310, 350, 390, 390)
    drawing.curve("CBezier", 410, 390, 410, 310, 490, 310, 490, 390)
    drawing.visible = 0
    drawing.filled("CRectFill", 510, 310, 590, 390)
    drawing.visible, drawing.color = 1, BLACK
    drawing.text(10, 410, b"Times 16: 150 \xb5m")
    for height, y in ((40, 430), (100, 470)):
        drawing.font(height)
        drawing.text(10, y, b"Hgx 1.5")
    drawing.font(40, b"Arial", weight=700)
    drawing.text(10, 600, b"Arial bold")
    drawing.font(40, b"Courier New", italic=1)
    drawing.text(10, 650, "Courier \u2264 \u03b1".encode())
    drawing.font(40, escapement=900)
    drawing.text(400, 700, b"upwards")
    drawing.font(-30, b"Arial", escapement=-450)
    drawing.text(450, 500, b"down")
    return drawing
