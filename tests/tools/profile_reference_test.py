"""Holds docs/profiles.md to what tools/profile_reference writes, and spoils copies of it to see them found.

    profile_reference_test.py PROGRAM DOCUMENT
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM, DOCUMENT = (pathlib.Path(argument) for argument in sys.argv[1:3])
TEXT = DOCUMENT.read_text(encoding="utf-8")
END = "<!-- end -->"


def line_with(start):
    return next(line for line in TEXT.splitlines(keepends=True) if line.startswith(start))


# What a careless hand does inside a table; each is found and mended.
MENDED = {
    "a row is gone": (line_with("| `halation.radius_um`"), ""),
    "a row is doubled": (line_with("| `grade`"), line_with("| `grade`") * 2),
    "a value is edited": ("| `grade` | number | | 0 to 5 |", "| `grade` | number | | 0 to 6 |"),
    "a table is empty": (TEXT[TEXT.index("<!-- fields: lens -->"):TEXT.index(END, TEXT.index("<!-- fields: lens -->"))],
                         "<!-- fields: lens -->\n"),
}

# What leaves the program without a place for a table; it names the marker and writes nothing.
REFUSED = {
    "a table has no place": ("<!-- fields: paper -->", "", "<!-- fields: paper -->"),
    "a table has two places": ("<!-- options: light -->", f"<!-- options: light -->\n{END}\n<!-- options: light -->",
                               "<!-- options: light -->"),
    "a marker names no table": ("## Filter\n", f"## Filter\n<!-- fields: camera -->\n{END}\n", "names no table"),
    "an end is missing": (END, "", "<!-- fields: film -->"),
}


class ProfileReference(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.copy = pathlib.Path(scratch.name, "profiles.md")

    def run_on(self, text, *options):
        """Status, what was said, and what the file is afterwards."""
        self.copy.write_text(text, encoding="utf-8")
        run = subprocess.run([PROGRAM, *options, self.copy], capture_output=True, text=True)
        return run.returncode, run.stderr, self.copy.read_text(encoding="utf-8")

    def spoiled(self, old, new):
        self.assertIn(old, TEXT)
        return TEXT.replace(old, new, 1)

    def test_the_document_is_what_the_program_writes(self):
        self.assertEqual(self.run_on(TEXT, "--check"), (0, "", TEXT))
        self.assertEqual(self.run_on(TEXT), (0, "", TEXT))

    def test_a_spoiled_table_is_found_and_mended(self):
        for name, (old, new) in MENDED.items():
            with self.subTest(name):
                spoiled = self.spoiled(old, new)
                status, said, after = self.run_on(spoiled, "--check")
                self.assertEqual((status, after), (1, spoiled))
                at = next(i for i, (a, b) in enumerate(zip(spoiled, TEXT)) if a != b)
                self.assertIn(f":{1 + spoiled[:at].count(chr(10))}: ", said)
                self.assertEqual(self.run_on(spoiled), (0, "", TEXT))

    def test_a_table_without_its_place_is_refused(self):
        for name, (old, new, told) in REFUSED.items():
            with self.subTest(name):
                spoiled = self.spoiled(old, new)
                for options in [(), ("--check",)]:
                    status, said, after = self.run_on(spoiled, *options)
                    self.assertEqual((status, after), (1, spoiled))
                    self.assertIn(told, said)

    def test_text_around_the_tables_is_left_alone(self):
        text = TEXT.replace("## Lens\n", "## Lens\n\nA word more.\n", 1)
        self.assertEqual(self.run_on(text), (0, "", text))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
