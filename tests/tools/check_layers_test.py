"""Plants includes in a scratch tree and holds tools/check_layers to its verdict on each."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check_layers"

# File, what it includes, and what the message must name (None: allowed).
CASES = [
    ("core/film/print/curve.cpp", '"core/image/plane.h"', None),
    ("core/film/print/curve.cpp", '"core/film/grain/grain.h"', None),
    ("core/film/grain/grain.cpp", '"core/film/print/curve.h"', "core/film/print stands above core/film/grain"),
    ("core/film/loose.cpp", "<vector>", "no layer"),
    ("core/film/print/curve.cpp", '"core/pipeline/pipeline.h"', "core/pipeline stands above core/film/print"),
    ("core/text/loc.h", '"core/profiles/catalogue/profile_store.h"', "core/profiles/catalogue stands above core/text"),
    ("platform/memory.cpp", '"core/image/plane.h"', "core/image stands above platform"),
    ("core/pipeline/pipeline.cpp", '"cli/develop.h"', "cli stands above core/pipeline"),
    ("core/io/jpeg.cpp", "<jpeglib.h>", "platform/ alone"),
    ("core/io/jpeg.cpp", "<unistd.h>", "platform/ alone"),
    ("platform/icc.cpp", "<lcms2.h>", None),
    ("core/profiles/formats/json.cpp", "<nlohmann/json.hpp>", None),
    ("core/image/gaussian.cpp", '"hwy/highway.h"', None),
    ("core/image/gaussian.cpp", '  #  include <CLI/CLI.hpp>', "CLI/ is for cli"),
    ("platform/jpeg.cpp", "<jpeglib.h>", None),
    ("platform/pool.cpp", "<oneapi/tbb/parallel_for.h>", None),
    ("core/io/jpeg.cpp", "<vector>", None),
    ("core/io/jpeg.cpp", '"tests/support.h"', "tests/ is not for others"),
    ("tests/io/jpeg_test.cpp", "<gtest/gtest.h>", None),
    ("tests/io/jpeg_test.cpp", '"core/io/jpeg.h"', None),
    ("tests/io/jpeg_test.cpp", "<jpeglib.h>", "platform/ alone"),
    ("tests/support/jpeg_reference.cpp", "<jpeglib.h>", None),
    ("bench/io_bench.cpp", '"tests/support/jpeg_reference.h"', None),
    ("bench/io_bench.cpp", '"tests/io/jpeg_cases.h"', "tests/ is not for others"),
    ("core/odd/thing.cpp", "<vector>", "no layer"),
]


class CheckLayers(unittest.TestCase):
    def test_every_case(self):
        for path, header, expected in CASES:
            with self.subTest(path=path, header=header), tempfile.TemporaryDirectory() as scratch:
                source = pathlib.Path(scratch, path)
                source.parent.mkdir(parents=True)
                line = header if header.lstrip().startswith("#") else f"#include {header}"
                source.write_text(f"// a comment\n{line}\n")
                run = subprocess.run([sys.executable, CHECK, "--root", scratch], capture_output=True, text=True)
                self.assertEqual(run.stdout, "")
                if expected is None:
                    self.assertEqual((run.returncode, run.stderr), (0, ""))
                else:
                    self.assertEqual(run.returncode, 1)
                    self.assertIn(f"{path}", run.stderr)
                    self.assertIn(expected, run.stderr)


if __name__ == "__main__":
    unittest.main()
