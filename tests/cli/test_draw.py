#!/usr/bin/env python3
"""vexa draw and run --drawing: formats, options, refusals, and what other programs see."""

import os
import shutil
import stat
import struct
import unittest
from pathlib import Path

from command_line import CommandLineTest
from drawings import Drawing, every_class
from pictures import Picture, missing, through_reader
from runner import vexa_path

NOTE = ("d.drw: message: Note: Only the main menu-items are available for use with this drawing\n")
MODULE = Path(vexa_path()).parent / "vexa_render.so"
needs_module = unittest.skipUnless(MODULE.exists(), "built without Qt")


class DrawTest(CommandLineTest):
    def drawing(self, drawing):
        self.write("d.drw", drawing if isinstance(drawing, bytes) else drawing.bytes())

    def draw(self, out, *options, err=NOTE, status=0):
        self.check(self.vexa("draw", "d.drw", "-o", out, *options), err=err, status=status)
        return self.folder / out

    def refuse(self, reason, out="o.svg", *options):
        """Nothing is written, and a file that stood there stays."""
        self.write(out, "before")
        self.draw(out, *options, err=reason + "\n", status=2)
        self.assertEqual((self.folder / out).read_bytes(), b"before")

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())


class FormatsTest(DrawTest):
    def test_core_formats_need_no_module(self):
        lonely = self.folder / "bin" / "vexa"
        lonely.parent.mkdir()
        shutil.copy(vexa_path(), lonely)
        self.drawing(every_class())
        for out in ("o.svg", "o.emf", "o.DRW"):
            done = self.vexa("draw", "d.drw", "-o", out, executable=lonely)
            self.check(done, err=NOTE)
        self.assertEqual((self.folder / "o.DRW").read_bytes(), every_class().bytes())
        done = self.vexa("draw", "d.drw", "-o", "o.png", executable=lonely)
        self.check(done, err="vexa: o.png is not written: PNG and PDF need the module "
                   "vexa_render.so, which is neither beside vexa nor in its library folder; "
                   "install it; or write .svg or .emf, which need no module\n", status=2)
        (lonely.parent / "vexa_render.so").write_bytes(b"")
        done = self.vexa("draw", "d.drw", "-o", "o.pdf", executable=lonely)
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, b"^vexa: o.pdf is not written: the module for PNG and PDF "
                         b"cannot be used: .*; install Qt 6 [^\n]*\n$")
        self.assertEqual(self.files(), ["bin", "d.drw", "o.DRW", "o.emf", "o.svg"])

    def test_page_is_the_extent_on_white_or_on_its_own_background(self):
        self.drawing(Drawing(300, 200, background=0x402000))
        svg = self.draw("o.svg").read_text()
        self.assertIn('width="300" height="200" viewBox="0 0 300 200"', svg)
        self.assertIn('<g fill="#fff">\n<rect x="-0.5" y="-0.5" width="300" height="200"/>', svg)
        svg = self.draw("o.svg", "--screen", "--width=150").read_text()
        self.assertIn('width="150mm" height="100mm" viewBox="0 0 300 200"', svg)
        self.assertIn('<g fill="#002040">', svg)
        self.drawing(Drawing(0, -5))
        self.assertIn('viewBox="0 0 1390 1800"', self.draw("o.svg").read_text())

    @needs_module
    def test_density_and_width_give_the_pixels(self):
        self.drawing(Drawing(300, 200))
        for options, size, dots in (((), (300, 200), 3780),
                                    (("--density", "192"), (600, 400), 7559),
                                    (("--width", "50.8", "--density=100"), (200, 133), 3937)):
            picture = Picture(self.draw("o.png", *options).read_bytes())
            self.assertEqual((picture.width, picture.height), size, options)
            self.assertEqual(picture.chunks[b"pHYs"], struct.pack(">IIB", dots, dots, 1), options)
        pdf = self.draw("o.pdf", "--width", "254").read_bytes()
        self.assertRegex(pdf, rb"/MediaBox \[0 0 720\.?0* 480\.?0*\]")
        self.assertIn("Vexa".encode("utf-16-be"), pdf)
        self.refuse("vexa: o.png is not written: the picture would have more than 32767 pixels on "
                    "a side or 100 million in all; give a smaller --density or --width",
                    "o.png", "--width", "5000", "--density", "2400")
        self.drawing(Drawing(0x7FFFFFFF, 0x7FFFFFFF))
        self.refuse("vexa: o.pdf is not written: the page would be longer than the 5080 mm that "
                    "PDF allows; give a --width", "o.pdf")
        self.draw("o.svg")
        self.draw("o.emf")
        self.draw("o.pdf", "--width", "100")

    @needs_module
    def test_pictures_need_no_display_and_no_home(self):
        self.drawing(every_class())
        bare = {"DISPLAY": "", "WAYLAND_DISPLAY": "", "XDG_RUNTIME_DIR": "", "HOME": "/nonexistent",
                "QT_QPA_PLATFORM": "xcb", "QT_DEBUG_PLUGINS": "1"}
        for out in ("o.png", "o.pdf"):
            self.check(self.vexa("draw", "d.drw", "-o", out, environment=bare), err=NOTE)


class RefusalsTest(DrawTest):
    def test_damaged_files_write_nothing(self):
        whole = every_class().bytes()
        for data, reason in (
                (b"", "The file ends before its drawing is complete."),
                (whole[:-1], "The file ends before its drawing is complete."),
                (b"\x64\x19\0\0" + whole[4:], "File format corrupted"),
                (whole.replace(b"CBezier", b"CBozier"),
                 "The file holds a figure of an unknown kind.")):
            self.drawing(data)
            self.refuse("d.drw: error: " + reason)
        os.remove(self.folder / "d.drw")
        self.refuse("vexa: cannot read d.drw: No such file or directory; check the path")

    def test_wrong_usage_is_told_in_one_line(self):
        self.drawing(Drawing())
        see = "; see vexa draw --help\n"
        ends = "needs a file that ends in .drw, .svg, .png, .pdf or .emf, not "
        for arguments, problem in (
                (("d.drw",), "-o with the file to write is missing"),
                (("-o", "o.svg"), "a drawing is missing"),
                (("d.drw", "-o"), "option -o needs a value"),
                (("d.drw", "-o", "o.jpg"), '-o ' + ends + '"o.jpg"'),
                (("d.drw", "--output=svg"), '--output ' + ends + '"svg"'),
                (("d.drw", "-o", "a.svg", "-o", "b.svg"), 'one picture only, "b.svg" is too many'),
                (("d.drw", "e.drw", "-o", "o.svg"), 'one drawing only, "e.drw" is too many'),
                (("d.drw", "-o", "o.png", "--density", "9"),
                 '--density needs a number from 10 to 2400, not "9"'),
                (("d.drw", "-o", "o.png", "--density", "nan"),
                 '--density needs a number from 10 to 2400, not "nan"'),
                (("d.drw", "-o", "o.png", "--width", "9x"),
                 '--width needs a number from 1 to 5000, not "9x"'),
                (("d.drw", "-o", "o.png", "--seed", "1"), 'unknown option "--seed"')):
            self.check(self.vexa("draw", *arguments), err=f"vexa draw: {problem}{see}", status=2)
        self.check(self.vexa("d.drw"), status=2,
                   err='vexa: unknown command "d.drw"; to convert it: vexa draw FILE.drw -o OUT\n')
        self.assertEqual(self.files(), ["d.drw"])
        self.assertIn(b"--density DPI", self.vexa("draw", "--help").stdout)

    def test_unwritable_targets_are_named_with_the_reason(self):
        self.drawing(Drawing())
        (self.folder / "folder.svg").mkdir()
        os.symlink("/dev/full", self.folder / "full.svg")
        for out, reason in (
                ("none/o.svg",
                 "No such file or directory; make the folder first or check the path"),
                ("d.drw/o.svg", "Not a directory; make the folder first or check the path"),
                ("folder.svg", "Is a directory; name a file in it"),
                ("full.svg", "No space left on device; make room or write elsewhere")):
            self.draw(out, err=f"vexa: cannot write {out}: {reason}\n", status=2)
        self.assertEqual(self.files(), ["d.drw", "folder.svg", "full.svg"])

    @unittest.skipIf(os.geteuid() == 0, "the superuser may write everywhere")
    def test_protected_targets_stay(self):
        self.drawing(Drawing())
        os.chmod(self.folder / self.write("o.svg", "before"), 0o444)
        self.draw("o.svg", status=2, err="vexa: cannot write o.svg: Permission denied; choose a "
                  "place where you may write\n")
        self.assertEqual((self.folder / "o.svg").read_bytes(), b"before")

    def test_replaced_files_keep_links_and_permissions(self):
        self.drawing(Drawing())
        self.write("real.svg", "before")
        os.chmod(self.folder / "real.svg", 0o640)
        os.symlink("real.svg", self.folder / "o.svg")
        self.draw("o.svg")
        self.assertTrue((self.folder / "o.svg").is_symlink())
        self.assertTrue((self.folder / "real.svg").read_bytes().startswith(b"<svg"))
        self.assertEqual(stat.S_IMODE((self.folder / "real.svg").stat().st_mode), 0o640)
        self.assertEqual(self.files(), ["d.drw", "o.svg", "real.svg"])


class RunTest(DrawTest):
    DRAWS = "main()\n{\n   plotline(0,0,100,100);\n   print(\"drawn\", ^);\n%s}\n"

    def test_run_writes_what_was_drawn(self):
        self.write("p.vxp", self.DRAWS % "")
        for out in ("d.drw", "run.svg", "run.emf"):
            done = self.vexa("run", "p.vxp", "--drawing", out, "--width", "100")
            self.check(done, out="drawn\n")
        for out in ("run.svg", "run.emf"):
            drawn = self.draw("o" + out, "--width", "100").read_bytes()
            self.assertEqual((self.folder / out).read_bytes(), drawn)
        self.assertIn(b'<path d="M50 850L850 50"/>', (self.folder / "run.svg").read_bytes())

    @needs_module
    def test_rendered_formats_come_from_a_run_too(self):
        self.write("p.vxp", self.DRAWS % "")
        for out, head in (("o.png", b"\x89PNG"), ("o.PDF", b"%PDF-")):
            self.check(self.vexa("run", "p.vxp", "--drawing=" + out), out="drawn\n")
            self.assertTrue((self.folder / out).read_bytes().startswith(head), out)

    def test_drawing_of_a_faulty_run_is_kept(self):
        self.write("p.vxp", self.DRAWS % "   x = 1/0;\n")
        done = self.vexa("run", "p.vxp", "--drawing", "o.svg")
        self.assertEqual((done.stdout, done.returncode), (b"drawn\n", 1))
        self.assertIn(b"L850 50", (self.folder / "o.svg").read_bytes())

    def test_obstacles_are_told_before_the_run(self):
        self.write("p.vxp", self.DRAWS % "")
        self.check(self.vexa("run", "p.vxp", "--drawing", "none/o.svg"), status=2,
                   err="vexa: cannot write none/o.svg: No such file or directory; make the folder "
                       "first or check the path\n")
        self.check(self.vexa("run", "p.vxp", "--drawing", "o.gif"), status=2,
                   err='vexa run: --drawing needs a file that ends in .drw, .svg, .png, .pdf or '
                       '.emf, not "o.gif"; see vexa run --help\n')
        self.write("q.vxp", 'main()\n{\n   print("plain", ^);\n}\n')
        self.check(self.vexa("run", "q.vxp", "--drawing", "o.svg"), out="plain\n",
                   err="vexa: nothing was drawn, so o.svg is not written\n")
        self.assertEqual(self.files(), ["p.vxp", "q.vxp"])


WHITE, BLACK, RED = (255, 255, 255), (0, 0, 0), (255, 0, 0)
PEN, PINK, LIGHT_GREEN = (0, 0, 255), (255, 128, 255), (128, 255, 128)
# Pixels of every_class: on lines and in gaps of the hatches, on outlines, inside fills, outside
# and in the stems of letters.
HATCHES = [(40, 10, BLACK), (40, 12, RED), (40, 16, WHITE), (100, 50, RED), (104, 50, WHITE),
           (188, 52, RED), (188, 48, WHITE), (250, 54, RED), (250, 50, WHITE), (330, 60, RED),
           (332, 40, RED), (335, 56, WHITE), (400, 40, RED), (404, 40, WHITE)]
PENS = [(88, 188, PEN), (152, 148, PEN), (250, 150, PEN), (320, 150, WHITE), (412, 150, PEN),
        (487, 150, PEN), (550, 112, PEN), (550, 187, PEN), (513, 113, WHITE), (12, 250, PEN),
        (112, 250, PEN), (350, 232, PEN), (450, 290, PEN), (87, 340, PEN), (348, 320, PEN),
        (450, 330, PEN)]
SHAPES = [(480, 50, LIGHT_GREEN), (550, 50, WHITE), (178, 119, PEN),
          (450, 150, WHITE), (550, 150, WHITE), (50, 250, PINK), (150, 250, WHITE),
          (250, 250, PINK), (350, 250, PINK), (450, 265, PINK), (550, 250, PINK), (50, 350, WHITE),
          (77, 310, PEN), (165, 335, PINK), (175, 375, WHITE), (228, 328, PINK),
          (245, 345, WHITE), (360, 352, WHITE), (550, 350, WHITE), (5, 5, WHITE)]
TEXTS = [(27, 520, BLACK), (45, 510, WHITE), (16, 450, BLACK), (54, 608, BLACK),
         (107, 662, BLACK), (429, 646, BLACK), (300, 590, WHITE)]


@unittest.skipIf(missing("rsvg-convert", "pdftoppm", "emf2svg-conv"),
                 f"{missing('rsvg-convert', 'pdftoppm', 'emf2svg-conv')} is not installed")
class ForeignReadersTest(DrawTest):
    def probe(self, name, picture, probes):
        for x, y, color in probes:
            seen = picture.pixel(x, y)
            self.assertLess(max(abs(a - b) for a, b in zip(seen, color)), 100,
                            f"{name} at {x}, {y}: {seen}, not {color}")

    @needs_module
    def test_all_formats_show_the_same(self):
        self.drawing(every_class())
        everything = HATCHES + PENS + SHAPES + TEXTS
        png = Picture(self.draw("o.png").read_bytes())
        self.probe("PNG", png, everything)
        for out in ("o.svg", "o.pdf"):
            other = through_reader(self.draw(out))
            self.probe(out, other, everything)
            apart = sum(max(abs(a - b) for a, b in zip(png.pixel(x, y), other.pixel(x, y))) > 128
                        for x in range(0, 600, 3) for y in range(0, 800, 3))
            self.assertLess(apart, 500, f"{out}, of 53 400 pixels")
        # This reader fills hatches, takes every pen as thin and a cell's height as the em's.
        self.probe("EMF", through_reader(self.draw("o.emf")), SHAPES)


if __name__ == "__main__":
    unittest.main()
