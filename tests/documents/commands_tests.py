"""Runs what the documents tell their readers to type, as it stands there, in order, in a fresh folder for each document: the command lines
of README.md and docs/*.md, and the examples that the program prints. Each must succeed, and the files that it names must be there
afterwards, and not be blank. The C++ and CMake lines of README.md
and the C program of docs/c.md are built as they are printed.

  commands_tests.py BUILD_FOLDER BRIX --with-hosts|--without-hosts     with: the build can be installed, and hosts linked to it
"""
import os
import pathlib
import re
import shlex
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[2]

# Command lines that are not run here, by their beginning, and what runs them instead.
RUN_ELSEWHERE = {
    "tools/demo": ".ci/run",
    "tools/test": ".ci/run, and whoever runs this",
    "tools/dev/release": ".ci/run",
    "tools/dev/pack-nuget": ".ci/run, and the test Package.ServesItsHosts",
    "tools/dev/benchmark-report": "measures for half an hour; the test Reports.WriteTheirTablesAlone looks at what it writes",
    "tools/dev/compare-benchmarks": "needs the results of benchmarks",
    "build/benchmark/": "the benchmarks; tools/dev/benchmark-report runs them",
    "valgrind": "the benchmarks, instruction by instruction",
    "cmake --preset native ": "tools/dev/pack-nuget builds the same target for each system",
    "cmake --workflow --preset ": "tools/demo and tools/test",
    "dotnet ": "tests/package/check uses the package as a fresh project does",
    "apt-get ": "tools/dev/set-up; tests/setup/check",
    "pip ": "bindings/python/tests/check installs the wheel",
}
FIRST_WORDS = re.compile(r"(brix|cmake|ctest|pip|g\+\+|clang\+\+|dotnet|apt-get|sudo|cat|man|source|valgrind|\.ci/\S+|(tools|tests|build)/\S+)( |$)")
FILE = re.compile(r"[^\s=<>|]+\.(stl|png|svg|pdf|json)$", re.IGNORECASE)


def without_comment(line):
    """A line without what is said about it: after ` #`, or, in the program's own help, after three spaces."""
    return re.split(r"\s+#\s|\s{3,}", line.strip(), maxsplit=1)[0]


def blocks_of(text):
    """The code of a Markdown document: (language, lines). An indented block has no language."""
    fenced = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
    found = [(match.start(), match[1], match[2].splitlines()) for match in fenced.finditer(text)]
    rest = fenced.sub(lambda match: re.sub("[^\n]", " ", match[0]).replace(" ", ""), text)
    indented = [(0, "", [line]) for line in rest.splitlines() if re.match(r" {4,}\S", line)]
    return [(language, lines) for _, language, lines in found] + [(language, lines) for _, language, lines in indented]


def joined(lines):
    """Lines that end with a backslash go on in the next."""
    return re.sub(r"\\\n\s*", "", "\n".join(lines)).splitlines()


def commands_of(text):
    """The command lines of a document in the order in which they stand there."""
    return [without_comment(line) for line in joined(line for language, lines in blocks_of(text) if language in ("", "sh", "bash")
                                                     for line in lines) if FIRST_WORDS.match(line.strip())]


def examples_of(help_text):
    return [without_comment(match[1]) for match in re.finditer(r"^(?:Examples?\b[^:]*:| ) +((?:\S+ .*\| )?brix .*)$", help_text, re.MULTILINE)]


def colours_of(png):
    """How often each colour appears in a PNG picture of 8 bits for each channel, without interlacing."""
    data, position, header = b"", 8, None
    while position < len(png):
        length, kind = struct.unpack(">I4s", png[position:position + 8])
        content = png[position + 8:position + 8 + length]
        header = struct.unpack(">IIBBBBB", content) if kind == b"IHDR" else header
        data += content if kind == b"IDAT" else b""
        position += 12 + length
    width, height, depth, colour_type, _, _, interlace = header
    assert depth == 8 and interlace == 0, "a picture of another kind"
    channels = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[colour_type]
    raw, stride, above, colours = zlib.decompress(data), width * channels, bytearray(width * channels), {}
    for y in range(height):
        kind, row = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride if kind else 0):
            left, corner = (row[i - channels], above[i - channels]) if i >= channels else (0, 0)
            if kind == 4:
                guess = left + above[i] - corner
                add = min((abs(guess - left), 0, left), (abs(guess - above[i]), 1, above[i]), (abs(guess - corner), 2, corner))[2]
            else:
                add = (0, left, above[i], (left + above[i]) // 2)[kind]
            row[i] = row[i] + add & 255
        for i in range(0, stride, channels):
            colour = bytes(row[i:i + channels])
            colours[colour] = colours.get(colour, 0) + 1
        above = row
    return colours


class Commands(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.folder = pathlib.Path(place.name)
        self.environment = {**os.environ, "PATH": f"{BRIX.parent}:{os.environ['PATH']}"}

    def call(self, line, **options):
        result = subprocess.run(["bash", "-o", "pipefail", "-c", line], cwd=self.folder, env=self.environment, capture_output=True, text=True,
                                stdin=subprocess.DEVNULL, errors="replace", **options)
        done = (0, 1) if line.startswith("brix check") else (0,) # 1: the file that it checked is not sound
        self.assertIn(result.returncode, done, f"{line}\n{result.stdout[-2000:]}{result.stderr[-2000:]}")
        return result.stdout

    def assert_is_not_blank(self, path, line):
        self.assertTrue(path.is_file(), f"{line}\ndid not write {path.name}")
        content = path.read_bytes()
        if path.suffix == ".stl":
            self.assertRegex(self.call(f"brix info {shlex.quote(path.name)}"), r"[1-9]\d*", f"{line}\n{path.name} holds no triangles")
            self.assertGreater(len(content), 84 + 12 * 50, f"{line}\n{path.name}: not even a box")
        elif path.suffix == ".png":
            if len(content) > 30_000: # nothing blank is that large
                return
            colours = colours_of(content)
            self.assertGreater(len(colours), 1, f"{line}\n{path.name} is blank")
            self.assertLess(max(colours.values()) / sum(colours.values()), 0.99, f"{line}\n{path.name} is almost blank")
        else:
            self.assertGreater(len(content), 300, f"{line}\n{path.name} is almost empty")

    def run_all(self, lines):
        if not any(line.startswith("brix scene") for line in lines):
            self.call("brix scene building -o house.stl && cp house.stl building.stl")
        for line in lines:
            with self.subTest(line):
                self.call(line)
                words = [part for word in line.split() for part in word.split("=")]
                for name in (word for word in words if FILE.match(word)):
                    self.assert_is_not_blank(self.folder / name, line)

    def test_of_the_documents(self):
        for path in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
            with self.subTest(path.name):
                self.setUp()
                lines = commands_of(path.read_text(encoding="utf-8"))
                run = [line for line in lines if not any(line.startswith(beginning) for beginning in RUN_ELSEWHERE)]
                here = [line for line in run if line.startswith(("brix ", "cat "))]
                self.assertEqual([line for line in run if line not in here], [], "run these, or say above what does")
                if path.name == "README.md":
                    self.assertGreater(len(here), 5, "the commands of README.md were not found")
                self.run_all(here)

    def test_of_the_programs_help(self):
        commands = re.findall(r"^  ([a-z]+) ", self.call("brix --help").split("Subcommands:")[1], re.MULTILINE)
        self.assertGreater(len(commands), 5)
        for command in ["", *commands]:
            with self.subTest(command):
                self.setUp()
                lines = examples_of(self.call(f"brix {command} --help"))
                self.assertTrue(lines or command in ("", "completion"), f"brix {command} --help has no example")
                self.run_all(lines)

    def test_of_what_is_named_in_passing(self):
        for path in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
            for line in re.findall(r"`(brix [^`]*--(?:help|version))`", path.read_text(encoding="utf-8")):
                with self.subTest(line):
                    self.assertGreater(len(self.call(line)), 10)

    def test_of_hosts_in_cpp(self):
        if not WITH_HOSTS:
            self.skipTest("this build is not for hosts")
        text = (ROOT / "README.md").read_text(encoding="utf-8")
        code = {language: "\n".join(lines) + "\n" for language, lines in blocks_of(text)}
        self.assertIn(code["cpp"], (ROOT / "examples/cpp/FirstModel.cpp").read_text(encoding="utf-8"), "the sample is the example")
        (self.folder / "host.cpp").write_text(code["cpp"], encoding="utf-8")
        (self.folder / "CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.25)\nproject(host CXX)\nadd_executable(host host.cpp)\n"
                                                    + code["cmake"], encoding="utf-8")
        self.assertIn("cmake --install build/test --prefix PLACE", text)
        self.call(f"cmake --install {shlex.quote(str(BUILD))} --prefix PLACE && brix scene building -o house.stl")

        self.call("cmake -B by-cmake -DCMAKE_PREFIX_PATH=PLACE && cmake --build by-cmake && by-cmake/host")
        self.assert_is_not_blank(self.folder / "voxels.stl", "the host built by CMake")

        (self.folder / "voxels.stl").unlink()
        line = re.search(r"`(g\+\+ [^`]*)`", text)[1]
        self.environment["PKG_CONFIG_PATH"] = str(next((self.folder / "PLACE").rglob("brix.pc")).parent)
        self.environment["LD_LIBRARY_PATH"] = str(next((self.folder / "PLACE").rglob("brix.pc")).parents[1])
        self.call(f"{line} && ./a.out")
        self.assert_is_not_blank(self.folder / "voxels.stl", line)

        text = (ROOT / "docs/c.md").read_text(encoding="utf-8")
        (self.folder / "host.c").write_text({language: "\n".join(lines) + "\n" for language, lines in blocks_of(text)}["c"], encoding="utf-8")
        line = re.search(r"`(gcc [^`]*)`", text)[1]
        self.assertRegex(self.call(f"{line} && ./a.out"), r"^[1-9]\d+ voxels\n$")


BUILD, BRIX = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
WITH_HOSTS = "--with-hosts" in sys.argv
unittest.main(argv=sys.argv[:1])
