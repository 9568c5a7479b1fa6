#!/usr/bin/env python3
"""Makes a roll of photographs, edits it by `tamlo project`, and kills the program again and again while it sets
a knob on all frames. After each kill the roll must open, all frames must agree on the knob, and nothing
temporary may be left once the next command has written.

    tools/torture_roll.py PROGRAM PHOTO... [--kills 60] [--frames 300] [--seed 1]
"""

import argparse
import json
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("photos", type=pathlib.Path, nargs="+")
    parser.add_argument("--kills", type=int, default=60)
    parser.add_argument("--frames", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tamlo-torture-") as folder:
        return Torture(options, pathlib.Path(folder)).run()


class Torture:
    def __init__(self, options, folder):
        self.options = options
        self.folder = folder
        self.random = random.Random(options.seed)
        self.roll = folder / "roll.tamlo"

    def command(self, *arguments):
        environment = {"PATH": "/usr/bin:/bin", "TAMLO_USER_DIR": str(self.folder / "user"),
                       "XDG_RUNTIME_DIR": str(self.folder / "run"), "LANG": "C.UTF-8"}
        return dict(args=[str(self.options.program.resolve()), "project", *map(str, arguments)],
                    env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def tamlo(self, *arguments):
        done = subprocess.run(**self.command(*arguments), timeout=600)
        if done.returncode != 0:
            raise SystemExit(f"tamlo project {' '.join(map(str, arguments))}: {done.stderr}")
        return done.stdout

    def make_roll(self):
        """Copies of the photographs, each with more bytes behind its end, so that no two are one picture."""
        pictures = self.folder / "pictures"
        pictures.mkdir()
        (self.folder / "run").mkdir(mode=0o700)
        for i in range(self.options.frames):
            photo = self.options.photos[i % len(self.options.photos)]
            copy = pictures / f"{i:04}{photo.suffix}"
            shutil.copyfile(photo, copy)
            with open(copy, "ab") as file:
                file.write(b"%08d" % i * (i + 1))
        print(self.tamlo("new", self.roll, pictures, "--pairs", "both").strip())
        self.tamlo("preset", self.roll, "all", "diary_slides")
        self.tamlo("mark", self.roll, f"1-{self.options.frames // 2}", "pick")
        self.tamlo("turn", self.roll, "1", "right")

    def grades(self):
        frames = json.loads(self.tamlo("show", self.roll, "--json"))["frames"]
        assert len(frames) == self.options.frames, f"{len(frames)} frames"
        return {frame["process"]["options"].get("grade", 2) for frame in frames}

    def set_and_kill(self, grade, within):
        child = subprocess.Popen(**self.command("set", self.roll, "all", f"grade={grade}"))
        try:
            child.communicate(timeout=self.random.uniform(0, within))
            return child.returncode == 0
        except subprocess.TimeoutExpired:
            child.kill()
            child.communicate()
            return False

    def run(self):
        self.make_roll()
        began = time.monotonic()
        self.tamlo("set", self.roll, "all", "grade=1")
        within = 1.1 * (time.monotonic() - began)
        before, kills, tries, kept = 1, 0, 0, 0
        while kills < self.options.kills:
            tries += 1
            after = round(0.1 * (tries % 50), 1)
            finished = self.set_and_kill(after, within)
            kills += not finished
            grades = self.grades()
            if grades not in ({before}, {after}) or (finished and grades != {after}):
                print(f"try {tries}: {sorted(grades)}, of {before} and {after}", file=sys.stderr)
                return 1
            kept += grades == {before} and before != after
            before = grades.pop()
        self.tamlo("set", self.roll, "all", "grade=2.5")
        left = [path.name for path in self.folder.iterdir() if path.name not in
                ("pictures", "run", "user", "roll.tamlo")]
        if left:
            print(f"left lying: {left}", file=sys.stderr)
            return 1
        print(f"{kills} kills in {tries} tries: all frames agree after each; {kept} times as before the command")
        return 0


if __name__ == "__main__":
    sys.exit(main())
