#!/usr/bin/env python3
"""vexa run: streams, options, dialogs and exit status."""

import os
import signal
import subprocess
import time
import unittest

from command_line import CommandLineTest
from runner import vexa_path

ASKING = """main()
{
   string s;
   print("open line");
   x = yesno("Go on?");
   x = ?;
   %s = ?;
   print("%g", x, "[", s, "]", ^);
}
"""


class StreamsTest(CommandLineTest):
    def test_output_is_stdout_and_messages_are_lines_of_stderr_in_order(self):
        self.write("p.vxp", 'main()\n{\n   print("a");\n   notice("one", ^, "two");\n'
                            '   print("b", ^);\n   view(pi#);\n   x = 1/0;\n}\n')
        self.check(self.vexa("run", "p.vxp"), "ab\n",
                   "p.vxp: message: one two\n"
                   "p.vxp: message: pi# = 3.14159\n"
                   "p.vxp:7: error: Error #14*: Floating point error (division by zero or value "
                   'out of range):   near "; " on line  7\n', 1)

    def test_both_streams_keep_their_order_in_one_file(self):
        self.write("p.vxp", 'main() { print("a", ^); notice("m"); print("b", ^); }')
        with open(self.folder / "both", "wb") as both:
            subprocess.run([vexa_path(), "run", "p.vxp"], stdout=both, stderr=both,
                           cwd=self.folder, timeout=60)
        self.assertEqual((self.folder / "both").read_bytes(), b"a\np.vxp: message: m\nb\n")

    def test_output_is_passed_through_whatever_its_bytes_and_length(self):
        text = bytes(set(range(1, 256)) - set(b'"\t\r\n'))
        self.write("p.vxp", b'main() { print("' + text + b'"); }')
        self.check(self.vexa("run", "p.vxp"), text)
        self.write("q.vxp", 'main() { for (i = 1; i <= 30000; i = i + 1) { print(i, ^); } }')
        lines = b"".join(b"%12d\n" % i for i in range(1, 30001))
        self.check(self.vexa("run", "q.vxp"), lines)

    def test_the_program_is_named_as_it_was_given(self):
        program = 'main() { notice("m"); x = (1; }'
        fault = ' error: Error #40. Parenthesis ( or ) expected:   near "; " on line  1\n'
        warning = ": message: Unbalanced parentheses ((..)\n"
        for name in ("p.vxp", "with blank.vxp", "Brücke.vxp", "./sub/p.vxp", "no ending"):
            with self.subTest(name):
                self.write(name, program)
                self.check(self.vexa("run", name), "",
                           f"{name}{warning}{name}: message: m\n{name}:1:{fault}", 1)
        self.write("-p.vxp", program)
        self.check(self.vexa("run", "--", "-p.vxp"), "",
                   f"-p.vxp{warning}-p.vxp: message: m\n-p.vxp:1:{fault}", 1)
        self.check(self.vexa("run", "-", stdin=program), "",
                   f"-{warning}-: message: m\n-:1:{fault}", 1)

    def test_programs_come_from_pipes_and_devices(self):
        os.mkfifo(self.folder / "fifo")
        writer = subprocess.Popen(["sh", "-c", "echo 'main() { print(1); }' > fifo"],
                                  cwd=self.folder)
        self.check(self.vexa("run", "fifo"), "           1")
        writer.wait()
        done = self.vexa("run", "/dev/null")
        self.assertEqual((done.stdout, done.returncode), (b"", 1))
        self.assertRegex(done.stderr, rb"^/dev/null:1: error: Error #19\. .*\n$")

    def test_a_reader_that_goes_away_ends_the_run_quietly(self):
        self.write("p.vxp", 'main() { while (1) { print("line", ^); } }')
        done = subprocess.run(f"'{vexa_path()}' run p.vxp | head -n 2; echo ${{PIPESTATUS[0]}}",
                              shell=True, executable="/bin/bash", cwd=self.folder, timeout=60,
                              capture_output=True)
        self.assertEqual((done.stdout, done.stderr), (b"line\nline\n141\n", b""))

    @unittest.skipUnless(os.path.exists("/dev/full"), "needs /dev/full")
    def test_output_that_cannot_be_written_is_told_once(self):
        for count in (1, 100000):
            self.write("p.vxp", f"main() {{ for (i = 1; i <= {count}; i = i + 1)"
                                " { print(i); } }")
            with open("/dev/full", "wb") as full:
                done = self.vexa("run", "p.vxp", stdout=full)
            self.assertEqual(done.stderr, b"vexa: cannot write the output: No space left on "
                                          b"device; make room or print elsewhere\n")
            self.assertEqual(done.returncode, 2)

    def test_closed_streams_are_not_taken_by_files(self):
        self.write("p.vxp", "main() { print(1); notice(2); }")
        done = subprocess.run(f"'{vexa_path()}' run p.vxp >&-", shell=True, cwd=self.folder,
                              stderr=subprocess.PIPE, timeout=60)
        self.assertRegex(done.stderr, rb"^(p\.vxp: message:  +2\n)?vexa: cannot write the output: ")
        self.assertEqual(done.returncode, 2)
        done = subprocess.run(f"'{vexa_path()}' run - <&- 2>&-", shell=True, cwd=self.folder,
                              stdout=subprocess.PIPE, timeout=60)
        self.assertEqual((done.stdout, done.returncode), (b"", 2))

    def test_output_appears_while_the_run_goes_on(self):
        self.write("p.vxp", 'main() { print("early", ^); sleep(0.3);'
                            ' print("late", ^); while (1) { x = 1; } }')
        with subprocess.Popen([vexa_path(), "run", "p.vxp"], cwd=self.folder,
                              stdout=subprocess.PIPE) as process:
            self.assertEqual(process.stdout.readline(), b"early\n")
            self.assertEqual(process.stdout.readline(), b"late\n")
            process.kill()


class OptionsTest(CommandLineTest):
    def test_answers_are_taken_in_order_and_then_the_defaults(self):
        self.write("p.vxp", ASKING)
        self.check(self.vexa("run", "p.vxp", "--answer", "n", "--answer=2*3", "--answer", "a b"),
                   "open line6[a b]\n", "p.vxp: question: Go on? -> No\n")
        self.check(self.vexa("run", "p.vxp"), "open line0[]\n",
                   "p.vxp: question: Go on? -> Yes\n")
        # An expression that fails is asked for again.
        fault = 'CALC: error: Error #14*: Floating point error (division by zero or value out of ' \
                'range):   near "; " on line CALC\n'
        self.check(self.vexa("run", "--answer", "maybe", "--answer", "1/0", "--answer", "5",
                             "--answer", "t", "p.vxp"),
                   "open line5[t]\n", "p.vxp: question: Go on? -> Yes\n" + fault)

    def test_forms_take_one_answer_a_field_and_ask_again_for_a_bad_one(self):
        self.write("p.vxp", 'main() { x = 1; string s = "old"; !m = {1,2};\n'
                            '  r = inform("Form", "X", x, s, m);\n'
                            '  print("%g", r, "%g", x, s, "%g", m); }')
        self.check(self.vexa("run", "p.vxp"), "11old\n1 2\n")
        done = self.vexa("run", "p.vxp", "--answer=bad+", "--answer=new", "--answer={3;4}",
                         "--answer=7")
        self.assertEqual((done.stdout, done.returncode), (b"17new\n3\n4\n", 0))
        self.assertRegex(done.stderr, rb"^CALC: error: [^\n]*\n$")

    def test_elements_are_picked_by_answers(self):
        self.write("p.vxp", 'main() { !m = {1,2;3,4}; !v = {5,6,7};\n'
                            '  print("%g", select(m), " ", "%g", select(v), " ",\n'
                            '        "%g", select(m), "%g", row#, "%g", select(v)); }')
        self.check(self.vexa("run", "p.vxp", "--answer=2,1", "--answer=3", "--answer=9,9"),
                   "3 7 000")

    def test_trace_and_values_follow_the_calls(self):
        self.write("p.vxp", "f(float x)\n{ }\nmain()\n{\n   f(pi#);\n}")
        self.check(self.vexa("run", "p.vxp", "--trace"),
                   ">>    main()\n>>       f()\n<<**    main()\n")
        done = self.vexa("run", "--show-values", "p.vxp")
        self.assertEqual(done.stdout, b"")
        self.assertIn(b"p.vxp:5: call: f(3.1416)\n", done.stderr)

    def test_a_seed_starts_the_random_numbers(self):
        self.write("given.vxp", 'main() { print("%.15g ", rand(), "%.15g", randnorm(), ^); }')
        self.write("own.vxp", 'main() { print("%.15g ", rand(42), "%.15g", randnorm(), ^); }')
        expected = self.vexa("run", "own.vxp").stdout
        self.assertEqual(self.vexa("run", "given.vxp", "--seed", "42").stdout, expected)
        self.assertNotEqual(self.vexa("run", "given.vxp").stdout, expected)

    def test_own_kernels_give_the_same_answer(self):
        self.write("p.vxp", 'main() { mat x[300]; for (i = 1; i <= 300; i = i + 1) { x[i] = i; }'
                            ' !A = sin(!x~*x); !B = A*A; print("%.9g", B[7,9]); }')
        self.check(self.vexa("run", "p.vxp", "--own-kernels"),
                   self.vexa("run", "p.vxp").stdout)

    def test_missing_libraries_are_named_with_what_to_do(self):
        cases = {"libClp.so.1": ("simplx(L, !{1}, !{1}, !{5}, !{1}, x)", "simplx", "Clp",
                                 "coinor-libclp1"),
                 "libnlopt.so.0": ("minzs(v, v[1]^2)", "minzs", "NLopt", "libnlopt0")}
        (self.folder / "broken").mkdir()
        for file, (call, name, library, package) in cases.items():
            (self.folder / "broken" / file).write_bytes(b"")
            self.write("p.vxp", "main() { !v = {3,4}; " + call + "; }")
            done = self.vexa("run", "p.vxp",
                             environment={"LD_LIBRARY_PATH": str(self.folder / "broken")})
            self.check(done, status=1, err=(
                f"p.vxp: message: {name}> {file} of the library {library} cannot be opened: "
                f"install it (Debian: {package})\np.vxp:1: error: Error #19. Invalid data or "
                'option or missing delimiter to separate items:   near ") " on line  1\n'))

    def test_other_messages_are_lines_too(self):
        self.write("p.vxp", 'main() { postmessage("wait"); hidemessage();\n'
                            '  print("%g", gotourl("https://example.org/")); }')
        self.check(self.vexa("run", "p.vxp"), "0",
                   "p.vxp: message: wait\np.vxp: message:  https://example.org/\n")

    def test_wrong_usage_is_one_line_that_says_what_to_do(self):
        self.write("p.vxp", "main() { }")
        for arguments in ([], ["p.vxp"], ["draw", "x.drw"], ["--bad"],
                          ["run"], ["run", "p.vxp", "q.vxp"], ["run", "p.vxp", "--bad"],
                          ["run", "p.vxp", "--answer"], ["run", ""], ["run", "p.vxp", "--trace=1"],
                          ["run", "p.vxp", "--drawing", "x.gif"], ["run", "--program", "p.vxp"],
                          ["run", "p.vxp", "--bad\nline"], ["run", "p.vxp", "--seed"],
                          ["run", "p.vxp", "--seed", "0"], ["run", "p.vxp", "--seed=1.5"],
                          ["run", "p.vxp", "--seed", "2147483648"],
                          ["eval"], ["eval", ""], ["eval", "1", "2"], ["eval", "--program"],
                          ["eval", "--program=", "1"], ["eval", "--trace", "1"],
                          ["repl", "--answer", "1"], ["repl", "p.vxp", "q.vxp"]):
            with self.subTest(arguments):
                done = self.vexa(*arguments)
                self.assertEqual((done.stdout, done.returncode), (b"", 2))
                self.assertRegex(done.stderr, rb"^vexa[^\n]*(--help|vexa run PROGRAM\.vxp)\n$")

    def test_help_and_version(self):
        self.check(self.vexa("--version"), "vexa 0.1.0\n")
        self.assertEqual(self.vexa("-h").stdout, self.vexa("--help").stdout)
        for command in ("run", "eval", "repl"):
            done = self.vexa(command, "--help")
            self.assertRegex(done.stdout, rb"^Usage: vexa " + command.encode())
            self.assertEqual((done.stderr, done.returncode), (b"", 0))
            self.assertIn(b"vexa " + command.encode(), self.vexa("--help").stdout)
        help_text = self.vexa("run", "--help").stdout
        for option in (b"--open", b"--save", b"--answer", b"--seed", b"--trace", b"--show-values"):
            self.assertIn(option, help_text)


class InterruptTest(CommandLineTest):
    ENDLESS = 'main()\n{\n   print("on", ^);\n   while (1) { x = 1; }\n}\n'

    def test_without_a_terminal_the_run_stops(self):
        self.write("p.vxp", self.ENDLESS)
        process = subprocess.Popen([vexa_path(), "run", "p.vxp"], cwd=self.folder,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(process.kill)
        self.assertEqual(process.stdout.readline(), b"on\n")
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        self.assertEqual((out, process.returncode), (b"", 130))
        self.assertRegex(err, rb'^p\.vxp:4: error: Error #Program interrupted:   near "[^\n]*\n$')

    def test_a_waiting_program_hears_it_at_once(self):
        self.write("p.vxp", 'main() { print("on", ^); sleep(1000); }')
        process = subprocess.Popen([vexa_path(), "run", "p.vxp"], cwd=self.folder,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(process.kill)
        process.stdout.readline()
        start = time.monotonic()
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=60)
        self.assertEqual(process.returncode, 130)
        self.assertLess(time.monotonic() - start, 5)

    def test_on_a_terminal_it_asks(self):
        self.write("p.vxp", self.ENDLESS)
        terminal = self.terminal("run", "p.vxp", environment={"NO_COLOR": "1"})
        terminal.expect("on\n")
        question = "p.vxp: question:  You have pressed key Esc: [Continue/Terminate] -> "
        terminal.send("\3")
        terminal.expect(question)
        terminal.send("c\n")
        time.sleep(0.2)
        terminal.send("\3")
        terminal.expect(question)
        terminal.send("t\n")
        self.assertEqual(terminal.wait(), 130)
        self.assertNotIn(b"error", terminal.seen)

    def test_pressed_at_the_question_it_terminates(self):
        self.write("p.vxp", self.ENDLESS)
        terminal = self.terminal("run", "p.vxp")
        terminal.expect("on\n")
        terminal.send("\3")
        terminal.expect("-> ")
        terminal.send("\3")
        self.assertEqual(terminal.wait(), 130)


class TerminalTest(CommandLineTest):
    def test_dialogs_ask_the_user_and_output_comes_before_the_question(self):
        self.write("p.vxp", ASKING)
        terminal = self.terminal("run", "p.vxp", environment={"NO_COLOR": "1"})
        self.assertEqual(terminal.expect("p.vxp: question: Go on? [Yes/No] -> "), b"open line")
        terminal.send("no\n")
        terminal.expect("[0]: ")
        terminal.send("1/0\n")
        terminal.expect("CALC: error: Error #14*")
        terminal.expect("[0]: ")
        terminal.send("4\n")
        terminal.expect("s = ")
        terminal.send("hello\n")
        terminal.expect("4[hello]\n")
        self.assertEqual(terminal.wait(), 0)

    def test_answers_of_the_command_line_come_first(self):
        self.write("p.vxp", ASKING)
        terminal = self.terminal("run", "p.vxp", "--answer=no", "--answer=8", "--answer=t",
                                 environment={"NO_COLOR": "1"})
        self.assertEqual(terminal.wait(), 0)
        self.assertEqual(terminal.seen, b"open linep.vxp: question: Go on? -> No\n8[t]\n")

    def test_the_end_of_the_input_takes_defaults(self):
        self.write("p.vxp", ASKING)
        terminal = self.terminal("run", "p.vxp")
        for prompt in ("-> ", "[0]: ", "s = "):
            terminal.expect(prompt)
            terminal.send("\4")
        terminal.expect("0[]\n")
        self.assertEqual(terminal.wait(), 0)

    def test_messages_are_coloured_unless_that_is_refused(self):
        self.write("p.vxp", "main() { x = 1/0; }")
        terminal = self.terminal("run", "p.vxp")
        terminal.wait()
        self.assertTrue(terminal.seen.startswith(b"\x1b[1;31mp.vxp:1: error:\x1b[0m Error #14*"))
        for environment in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            terminal = self.terminal("run", "p.vxp", environment=environment)
            terminal.wait()
            self.assertTrue(terminal.seen.startswith(b"p.vxp:1: error: Error #14*"), terminal.seen)
        self.assertNotIn(b"\x1b", self.vexa("run", "p.vxp").stderr)


if __name__ == "__main__":
    unittest.main()
