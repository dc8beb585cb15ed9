#!/usr/bin/env python3
"""What inspect shows of hostile documents, and where in colour."""

import os
import pty
import subprocess
import unittest

import support


class Inspect(support.ToolTest):
    def test_bytes_that_are_no_text_are_told_and_control_characters_never_reach_the_terminal(self):
        document = support.as_text((support.SOURCE / "tests/data/documents/link_to_nothing.kts").read_bytes())
        for option, name, shown in [("--color=auto", "fr\udcffnt", r"'fr\xffnt'"),
                                    ("--json", "fr\udcffnt", '{"bytes": "6672ff6e74"}'),
                                    ("--color=auto", "\x1b[2J\r", r"'\x1b[2J\x0d'"),
                                    ("--json", "\x1b[2J\r", r'"\u001b[2J\r"'),
                                    ("--color=never", "\x1b[2J\r", r"'\x1b[2J\x0d'")]:
            result = support.run("inspect", "-", option, input=document.replace("front", name))  # the name of a view
            self.assertIn(shown, result.out)
            for control in support.CONTROLS:
                self.assertNotIn(control, result.out + result.error)

    def test_trees_stay_readable_to_the_deepest_level(self):
        for levels, code, told in (512, 0, ""), (513, 5, "512 levels"):
            text = '{"type":"text","children":[' * levels + "]}" * levels
            result = support.run("inspect", "-", input=f'{{"ver":"6.22","annotations":[{text}]}}')
            self.assertEqual(result.code, code)
            self.assertTrue(told in result.error if told else not result.error, result.error)
            self.assertIn("[level 512] ", result.out)
            self.assertLess(len(result.out), 512 * 400)

    def inspect_on_terminal(self, arguments, environment):
        ours, theirs = pty.openpty()
        with subprocess.Popen([support.TOOL, *arguments], stdout=theirs, env=environment) as tool:
            os.close(theirs)
            shown = b""
            try:
                while piece := os.read(ours, 4096):
                    shown += piece
            except OSError:
                pass  # hung up
            os.close(ours)
        return support.Result(tool.wait(), support.as_text(shown), "")

    def test_colour_is_for_terminals_unless_asked_for(self):
        for is_terminal, no_color, option, is_colored in [
                (False, "", "auto", False), (True, "", "auto", True), (True, "1", "auto", False),
                (True, "1", "always", True), (True, "", "never", False), (False, "", "always", True)]:
            arguments = ["inspect", f"--color={option}", support.SAMPLES / "symbols_from_617_v615.kts"]
            environment = os.environ | {"NO_COLOR": no_color, "TERM": "xterm"}
            result = (self.inspect_on_terminal(arguments, environment) if is_terminal
                      else support.run(*arguments, env=environment))
            self.assertEqual([result.code, "\x1b[" in result.out], [0, is_colored], (is_terminal, no_color, option))


if __name__ == "__main__":
    unittest.main()
