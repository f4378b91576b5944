#!/usr/bin/env python3
"""vexa repl: lines through a pipe, and everything that a terminal adds."""

import os
import shutil
import signal
import subprocess
import time
import unittest

from command_line import CommandLineTest
from runner import vexa_path

DIVISION = 'Error #14*: Floating point error (division by zero or value out of range):'
PROMPT = b"vexa> "


class PipeTest(CommandLineTest):
    def test_lines_are_evaluated_without_prompt_or_banner(self):
        self.check(self.vexa("repl", stdin="1+1\r\nx = 3\n\n  \nx^2; print(7)\n8"),
                   "           2\n           3\n           9\n           7\n           8\n")
        self.check(self.vexa("repl"), "")

    def test_every_fault_is_told_and_the_next_line_is_ready(self):
        deep = "f() { return f(); }\nm(float x) { mat a[2,2]; return 1/x; }\n"
        self.write("p.vxp", deep)
        lines = ["f()", "m(0)", "!{1,2", "}", "exec({ while (1) { x = 1/0; } })", "@{1,2}*{1,2,3}",
                 "1+", '"open', "sin(1", ")", "(2", "+ 3)"]
        done = self.vexa("repl", "p.vxp", stdin="\n".join(lines) + "\n!v = {1,2}\n5\n")
        self.assertTrue(done.stdout.endswith(b"           5\n           1           2\n"
                                             b"           5\n"), done.stdout)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count(b"\n"), done.stderr.count(b" error: "))
        self.assertIn(b"p.vxp:1: error: Error #16*: Function nesting too deep:", done.stderr)
        self.assertIn(b"p.vxp:2: error: " + DIVISION.encode(), done.stderr)

    def test_a_text_goes_on_while_a_bracket_is_open(self):
        for text, shown in (
                ("(1 +\n\n2)", "           3\n"),
                ("!{1,2;\n3,4}", "           1           2\n           3           4\n"),
                ("exec({ x = 1;\n x = x + 1; },\n x)", "           2\n"),
                ("(1 // a )\n + 1)", "           2\n"),
                ('print("(")\n1', "           (           1\n".replace("           (", "(\n")),
                ("print('[')\n1", "          91\n           1\n"),
                ("1 /* ( \n */ + 1", "           2\n"),
                ("print(\"a\n)\", 1)", "a)           1")):
            with self.subTest(text):
                self.check(self.vexa("repl", stdin=text), shown)

    def test_an_unfinished_text_at_the_end_is_a_fault(self):
        done = self.vexa("repl", stdin="1\n(2 +")
        self.assertEqual((done.stdout, done.returncode), (b"           1\n", 1))
        self.assertEqual(done.stderr.count(b"\n"), 1)

    def test_load_makes_functions_callable_and_run_executes(self):
        self.write("a b.vxp", "float g = 5;\ntwice(float x) { return 2*x; }\n"
                              "main() { print(twice(g), ^); }\n")
        self.check(self.vexa("repl", stdin='load a b.vxp\ntwice(4)\nisvar(g)\nrun "a b.vxp"\n'
                                           "g + 1\ntwice(g)\n"),
                   "           8\n           0\n          10\n           6\n          10\n")
        self.write("f.vxp", "three() { return 3; }\n")
        self.check(self.vexa("repl", stdin="run f.vxp\nthree()\n"), "           3\n",
                   "f.vxp: message: Functions are activated.\n")
        self.check(self.vexa("repl", "a b.vxp", stdin="twice(1)\nload f.vxp\nthree() + twice(1)\n"),
                   "           2\n           5\n")

    def test_files_that_fail_leave_the_repl_as_it_was(self):
        self.write("p.vxp", "two() { return 2; }\n")
        self.write("bad.vxp", "main()\n{\n   x = 1/0;\n}\n")
        done = self.vexa("repl", "p.vxp", stdin="load none.vxp\nload .\nload\nrun none.vxp\n"
                                                "two()\nrun bad.vxp\n3\n")
        self.assertEqual(done.stdout, b"           2\n           3\n")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.decode().splitlines(), [
            "vexa: cannot read none.vxp: No such file or directory; check the path",
            "vexa: cannot read .: Is a directory; name a file in it",
            "vexa: load needs a file: load PROGRAM.vxp",
            "vexa: cannot read none.vxp: No such file or directory; check the path",
            f'bad.vxp:3: error: {DIVISION}   near "; " on line  3'])
        self.check(self.vexa("repl", "none.vxp", stdin="1\n"), "",
                   "vexa: cannot read none.vxp: No such file or directory; check the path\n", 2)

    def test_words_of_the_repl_are_names_in_expressions(self):
        self.check(self.vexa("repl", stdin="run = 3\nload=4\nrun*load\nrun + 1\nhelp = 1\n"
                                           "quit = 5\nquit*2\nexit\n6\n"),
                   "".join(f"{value:12d}\n" for value in (3, 4, 12, 4, 1, 5, 10)))
        self.check(self.vexa("repl", stdin="1\nquit;\n2\n"), "           1\n")

    def test_help_knows_every_built_in_and_statement(self):
        overview = self.vexa("repl", stdin="help\n").stdout.decode()
        self.assertLess(max(map(len, overview.splitlines())), 100)
        for word in ("load FILE", "while", "sin", "zoomoutpoint", "finance and dates"):
            self.assertIn(word, overview)
        lists = overview[overview.index("statements of programs"):].splitlines()
        names = " ".join(line for line in lists if line.startswith("  ")).split()
        self.assertEqual(len(set(names)), 21 + 240)
        answers = self.vexa("repl", stdin="".join(f"help {name}\n" for name in names)).stdout
        self.assertNotIn(b"No help", answers)
        self.assertGreater(answers.count(b"\n  "), len(names) - 1)
        self.check(self.vexa("repl", stdin="help sin\n"),
                   "sin(x), sin(!m)\n  Sine of an angle in the unit in force.\n")
        self.write("p.vxp", "area(float r, mat m) { return r; }\n")
        self.check(self.vexa("repl", "p.vxp", stdin="help area\nhelp nothing\n"),
                   "area(float r, mat m)\n  A function of the program, line 1.\n"
                   "No help on nothing; help alone lists all names.\n")

    def test_interrupted_it_ends(self):
        process = subprocess.Popen([vexa_path(), "repl"], cwd=self.folder, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.kill)
        process.stdin.write(b"1\nexec({ while (1) { x = 1; } })\n2\n")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), b"           1\n")
        time.sleep(0.3)
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        self.assertEqual((out, process.returncode), (b"", 130))
        self.assertRegex(err, rb"^CALC: error: Error #Program interrupted:[^\n]*\n$")


class TerminalReplTest(CommandLineTest):
    """Through a pseudo-terminal; NO_COLOR keeps the prompts plain."""

    def repl(self, *arguments, environment=None, **options):
        terminal = self.terminal("repl", *arguments,
                                 environment={"NO_COLOR": "1", **(environment or {})}, **options)
        terminal.expect("Ctrl-D leaves.\n")
        terminal.expect(PROMPT)
        return terminal

    def calculate(self, terminal, line, shown, ending="\n"):
        terminal.send(line + ending)
        terminal.expect("\n")
        self.assertIn(shown.encode(), terminal.expect(PROMPT))

    def test_lines_are_edited_and_called_back(self):
        terminal = self.repl()
        self.calculate(terminal, "6*7", "          42\n")
        self.calculate(terminal, "6*\x1b[D8\x1b[C5", "         340\n")
        self.calculate(terminal, "\x1b[A\x1b[A", "          42\n")
        self.calculate(terminal, "11\x1b[D\x7f", "           1\n")
        terminal.send("\4")
        self.assertEqual(terminal.wait(), 0)

    def test_names_are_completed(self):
        self.write("p.vxp", "unusual_name(float x) { return 10*x; }\n")
        terminal = self.repl("p.vxp")
        self.calculate(terminal, "unus\t(4)", "          40\n")
        self.calculate(terminal, "my_variable = 3", "           3\n")
        self.calculate(terminal, "1 + my_v\t * 2", "           7\n")
        terminal.send("bes\t")
        terminal.send("\t")
        for name in ("bessi", "bessj", "bessk", "bessy"):
            terminal.expect(name)
        terminal.expect(PROMPT + b"bess")  # the line again, below the names
        terminal.send("\3")
        terminal.expect(PROMPT)
        terminal.send("\4")
        self.assertEqual(terminal.wait(), 0)

    def test_a_prompt_shows_that_a_text_goes_on(self):
        terminal = self.repl()
        terminal.send("(1 +\n")
        terminal.expect("  ... ")
        self.calculate(terminal, "2)", "           3\n")
        terminal.send("(1 +\n")
        terminal.expect("  ... ")
        terminal.send("\3")
        terminal.expect(PROMPT)
        self.calculate(terminal, "5", "           5\n")

    def test_interrupts_stop_the_evaluation_and_not_the_program(self):
        terminal = self.repl()
        for _ in range(2):
            terminal.send("exec({ while (1) { x = 1; } })\n")
            terminal.expect("\n")
            time.sleep(0.3)
            terminal.send("\3")
            terminal.expect("CALC: error: Error #Program interrupted:")
            terminal.expect(PROMPT)
            self.calculate(terminal, "x+1", "           2\n")
        terminal.send("12\3")
        terminal.expect(PROMPT)
        self.calculate(terminal, "7", "           7\n")
        self.calculate(terminal, "1/0", "CALC: error: " + DIVISION)
        terminal.send("quit\n")
        self.assertEqual(terminal.wait(), 0)

    def test_printed_text_does_not_run_into_the_prompt(self):
        terminal = self.repl()
        terminal.send("print(5)\n")
        terminal.expect("\n")
        self.assertTrue(terminal.expect(PROMPT).endswith(b"           5\n"))

    def test_values_go_to_stdout_and_the_conversation_to_the_terminal(self):
        terminal = self.repl(out=self.folder / "values")
        terminal.send("1+1\n")
        terminal.expect(PROMPT)
        terminal.send("print(3)\n")
        terminal.expect(PROMPT)
        terminal.send("\4")
        self.assertEqual(terminal.wait(), 0)
        self.assertEqual((self.folder / "values").read_bytes(), b"           2\n           3")

    def test_history_is_kept_from_session_to_session(self):
        kept = self.folder / ".local/state/vexa/history"
        first, second = self.repl(), self.repl()
        self.calculate(first, "1+2", "           3\n")
        self.calculate(first, "1+2", "           3\n")
        self.calculate(first, "   ", "")
        self.calculate(second, "3+4", "           7\n")
        for terminal in (first, second):
            terminal.send("\4")
            self.assertEqual(terminal.wait(), 0)
        self.assertEqual(kept.read_bytes(), b"1+2\n3+4\n")
        third = self.repl()
        self.calculate(third, "\x1b[A", "           7\n")
        third.send("\4")
        third.wait()

    def test_history_is_bounded_and_its_place_can_be_chosen(self):
        kept = self.folder / "state/vexa/history"
        self.write("state/vexa/history", "".join(f"{i}\n" for i in range(3000)))
        terminal = self.repl(environment={"XDG_STATE_HOME": str(self.folder / "state")})
        self.calculate(terminal, "9999", "        9999\n")
        terminal.send("\4")
        terminal.wait()
        lines = kept.read_text().splitlines()
        self.assertEqual((len(lines), lines[0], lines[-1]), (2000, "1001", "9999"))
        self.assertEqual([name for name in os.listdir(kept.parent)], ["history"])

    def test_no_place_for_a_history_is_no_error(self):
        self.write("file", "")
        os.makedirs(self.folder / "taken/vexa/history")
        for place in (self.folder / "file", self.folder / "taken", "/proc", "relative"):
            with self.subTest(place):
                terminal = self.repl(environment={"XDG_STATE_HOME": str(place),
                                                  "HOME": str(self.folder / "file")})
                self.calculate(terminal, "1", "           1\n")
                terminal.send("\4")
                self.assertEqual(terminal.wait(), 0)
                self.assertEqual(terminal.seen.strip(), b"^D")
        shutil.rmtree(self.folder / "taken")

    def test_a_simple_terminal_serves_without_editing(self):
        terminal = self.repl(environment={"TERM": "dumb"})
        self.calculate(terminal, "2*3", "           6\n")
        terminal.send("quit\n")
        self.assertEqual(terminal.wait(), 0)

    def test_the_prompt_is_coloured_unless_that_is_refused(self):
        terminal = self.terminal("repl")
        terminal.expect("\x1b[1;32mvexa>\x1b[0m ")
        terminal.send("\4")
        terminal.wait()

    def test_loaded_functions_are_listed(self):
        self.write("p.vxp", "one() { return 1; }\ntwo() { return 2; }\n")
        terminal = self.repl()
        self.calculate(terminal, "load p.vxp", "p.vxp: 2 functions: one, two\n")
        self.calculate(terminal, "one() + two()", "           3\n")


if __name__ == "__main__":
    unittest.main()
