"""Tries small changes of the sources, one at a time, and tells those that no test of their unit notices.

It works in a copy of the checkout, build/mutants/tree, built without sanitizers. What came out of each mutation is
kept in build/mutants/results.jsonl: one that was noticed is not tried again before its source, or the test that
noticed it, changes. A survivor that cannot be noticed stands in tests/mutants.txt, a block each:

    src/dic/CANopen.cpp
    - the line as it is
    + the line as it was changed
    why nobody can notice the difference

Where the source has equal lines, "src/dic/CANopen.cpp #2" is the second of them.
"""
# SPDX-License-Identifier: MIT
import argparse
import functools
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import time
from collections import Counter

from mutations import Mutation, mutations

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build/mutants"
TREE, BUILD, RESULTS = WORK / "tree", WORK / "build", WORK / "results.jsonl"
SECONDS = WORK / "seconds.json"  # how long each test took, and the hash of the program that it was
LISTED = ROOT / "tests/mutants.txt"

# The tests, or folders of tests, that notice a change of a folder of sources, those of the unit itself first.
TESTS_OF = {
    "src/base": ["base", "cop", "tcp", "access", "dic", "values"],
    "src/cop": ["cop", "access", "faults/TestFailingCan"],
    "src/tcp": ["tcp", "access", "faults/TestFailingGateway"],
    "src/access": ["access", "values", "windows"],
    "src/dic": ["dic", "faults/TestFailingFiles"],
    "src/values": ["values"],
    "src/widgets": ["widgets", "windows", "faults/TestFailingSettings"],
    "src": ["windows", "access", "values", "e2e"],
}
LONGEST = 60  # seconds for a test that takes a few
MEMORY = 4 << 30  # bytes that a test may take


def output(*command: str, folder: pathlib.Path = ROOT) -> str:
    return subprocess.run(command, cwd=folder, check=True, capture_output=True, text=True).stdout


def belongs(test: dict, places: list[str]) -> bool:
    program = pathlib.Path(test.get("command", ["not built"])[0])
    return any(place in (program, program.parent) for place in (BUILD / "tests" / place for place in places))


class Workshop:
    """The copy of the checkout, its build and its tests."""

    def __init__(self) -> None:
        files = output("git", "ls-files", "--cached", "--others", "--exclude-standard").split("\n")
        for name in filter(lambda name: (ROOT / name).is_file(), files):
            self.restore(name)
        sheets = WORK / "shared"
        if not sheets.is_symlink():
            sheets.symlink_to(ROOT.parent / "shared")
        compiler = os.environ.get("CXX", "g++")
        output("cmake", "-S", str(TREE), "-B", str(BUILD), "-G", "Ninja", "-D", f"CMAKE_CXX_COMPILER={compiler}",
               "-D", "CMAKE_BUILD_TYPE=None", "-D", "CMAKE_CXX_FLAGS=-O0",
               "-D", "CMAKE_EXE_LINKER_FLAGS=-fuse-ld=mold")  # fmt: skip
        self.tests: dict[str, dict] = {}
        self.seconds: dict[str, float] = {}
        self.killers: dict[str, Counter] = {}

    @staticmethod
    def restore(name: str) -> None:
        """Makes the copy of a file as it is in the checkout. One that is equal keeps its time, so is not built."""
        place = TREE / name
        content = (ROOT / name).read_bytes()
        if not place.is_file() or place.read_bytes() != content:
            place.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, place)
            place.touch()

    def build(self, tests: list[str]) -> bool:
        return subprocess.run(["ninja", "-C", BUILD, *tests], capture_output=True).returncode == 0

    def passes(self, name: str) -> bool:
        test = self.tests[name]
        properties = {each["name"]: each["value"] for each in test["properties"]}
        environment = dict(entry.split("=", 1) for entry in properties["ENVIRONMENT"])
        process = subprocess.Popen(
            test["command"], cwd=properties["WORKING_DIRECTORY"], env=os.environ | environment,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY)))  # fmt: skip
        try:
            return process.wait(min(LONGEST, 10 + 10 * self.seconds.get(name, LONGEST))) == 0
        except subprocess.TimeoutExpired:  # a loop that has lost its end
            return False
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()

    def tests_for(self, path: str) -> list[str]:
        """The tests of the file's unit: those that noticed most so far first, then those that take least."""
        names = [name for name, test in self.tests.items() if belongs(test, TESTS_OF[os.path.dirname(path)])]
        killers = self.killers.setdefault(path, Counter())
        return sorted(names, key=lambda name: (-killers[name], self.seconds[name]))

    def prepare(self, paths: list[str]) -> None:
        """Builds the tests of these files, and runs those that have changed, without any change of the files."""
        places = sorted({place for path in paths for place in TESTS_OF[os.path.dirname(path)]})
        if not self.build([f"tests/{place}" if "/" in place else f"tests/{place}/all" for place in places]):
            sys.exit("mutants: the tests do not build")
        for test in json.loads(output("ctest", "--show-only=json-v1", folder=BUILD))["tests"]:
            if belongs(test, places):
                self.tests[test["name"]] = test
        known = json.loads(SECONDS.read_text()) if SECONDS.exists() else {}
        failed = []
        for name, test in self.tests.items():
            program = hashlib.sha256(pathlib.Path(test["command"][0]).read_bytes()).hexdigest()
            if known.get(name, [""])[0] != program:
                started = time.monotonic()
                if not self.passes(name):
                    failed.append(name)
                    continue
                known[name] = [program, time.monotonic() - started]
            self.seconds[name] = known[name][1]
        SECONDS.write_text(json.dumps(known))
        if failed:
            sys.exit("mutants: these fail without any change: " + " ".join(failed))

    def outcome(self, mutation: Mutation) -> str:
        """ "survived", "does not compile", or "noticed by TEST"."""
        source = (ROOT / mutation.path).read_text()
        (TREE / mutation.path).write_text(source[: mutation.start] + mutation.text + source[mutation.end :])
        try:
            names = self.tests_for(mutation.path)
            # The first tests notice most: the others are only linked when they did not.
            for group in (names[:1], names[1:4], names[4:]):
                if group and not self.build(group):
                    return "does not compile"
                for name in group:
                    if not self.passes(name):
                        self.killers[mutation.path][name] += 1
                        return "noticed by " + name
            return "survived"
        finally:
            self.restore(mutation.path)


def key(mutation: Mutation) -> tuple[str, str, str, int]:
    return mutation.path, mutation.before, mutation.after, mutation.number


def state(path: str, result: str) -> str:
    """The hash of what the result rests on: the source, and the test that noticed."""
    test = result.removeprefix("noticed by ") if result.startswith("noticed by ") else ""
    places = [ROOT / path, sources_of_tests().get(test)]
    return hashlib.sha256(b"".join(place.read_bytes() for place in places if place and place.is_file())).hexdigest()


@functools.cache
def sources_of_tests() -> dict[str, pathlib.Path]:
    return {place.stem: place for place in (ROOT / "tests").rglob("Test*.cpp")}


def known_results() -> dict[tuple, str]:
    known = {}
    for line in RESULTS.read_text().splitlines() if RESULTS.exists() else []:
        *place, result, rests_on = json.loads(line)
        known.pop(tuple(place), None)
        if state(place[0], result) == rests_on:
            known[tuple(place)] = result
    return known


def is_listed(mutation: Mutation) -> bool:
    return key(mutation) in listed()


def place_in_sample(mutation: Mutation, seed: int) -> bytes:
    """A random place, which stays when other lines change."""
    return hashlib.sha256(repr((seed, *key(mutation))).encode()).digest()


@functools.cache
def listed() -> set[tuple[str, str, str, int]]:
    blocks = re.split(r"\n\n+", LISTED.read_text()) if LISTED.exists() else []
    found = set()
    for block in blocks:
        lines = [line for line in block.splitlines() if not line.startswith("#")]
        if len(lines) >= 4 and lines[1].startswith("- ") and lines[2].startswith("+ "):
            path, _, number = lines[0].partition(" #")
            found.add((path, lines[1][2:], lines[2][2:], int(number or 1)))
        elif lines:
            sys.exit(f"mutants: {LISTED.name} has a block without path, -, + and reason: {lines[0]}")
    return found


def changed_lines(revision: str, path: str) -> set[int]:
    difference = output("git", "diff", "-U0", revision, "--", path)
    lines: set[int] = set()
    for first, count in re.findall(r"^@@ .*\+(\d+)(?:,(\d+))? @@", difference, re.MULTILINE):
        lines |= set(range(int(first), int(first) + int(count or 1)))
    return lines


def chosen(arguments: argparse.Namespace) -> list[Mutation]:
    """The mutations to try, in chunks that are sorted by file: a file that changes twice is built twice."""
    paths = arguments.files or output("git", "ls-files", "src/*.cpp", "src/*.h").split()
    found = []
    for path in paths:
        in_file = mutations(path, (ROOT / path).read_text())
        if arguments.since:
            lines = changed_lines(arguments.since, path)
            in_file = [mutation for mutation in in_file if mutation.line in lines]
        found += in_file
    if arguments.sample:
        found.sort(key=lambda mutation: place_in_sample(mutation, arguments.seed))
    return found


def main() -> int:
    parser = argparse.ArgumentParser(prog="mutants.sh", description=__doc__.split("\n")[0])
    parser.add_argument("files", nargs="*", metavar="FILE", help="sources below src/; all of them without any")
    parser.add_argument("--since", metavar="REVISION", help="only lines that have changed since then")
    parser.add_argument("--sample", type=int, metavar="N", help="so many mutations that compile, chosen at random")
    parser.add_argument("--seed", type=int, default=1, help="which sample (default 1)")
    arguments = parser.parse_args()
    if not (arguments.files or arguments.since or arguments.sample):
        parser.error("name files, --since or --sample")
    for path in arguments.files:
        if os.path.dirname(path) not in TESTS_OF or not (ROOT / path).is_file():
            parser.error(f"{path} is no source below src/")

    WORK.mkdir(parents=True, exist_ok=True)
    known = known_results()
    todo = chosen(arguments)
    workshop = Workshop()
    if todo:
        workshop.prepare(sorted({mutation.path for mutation in todo}))
    for (path, *_), result in known.items():
        if result.startswith("noticed by "):
            workshop.killers.setdefault(path, Counter())[result.removeprefix("noticed by ")] += 1

    counts, survivors = Counter(), []
    wanted = arguments.sample or len(todo)
    while todo and counts.total() < wanted:
        size = min(wanted - counts.total(), 100)
        chunk, todo = sorted(todo[:size]), todo[size:]
        for mutation in chunk:
            started = time.monotonic()
            result = known.get(key(mutation), "survived")
            if result == "survived" and not (is_listed(mutation) and key(mutation) in known):
                result = workshop.outcome(mutation)
                with RESULTS.open("a") as results:
                    print(json.dumps([*key(mutation), result, state(mutation.path, result)]), file=results)
            if result == "does not compile":
                continue
            counts["survived" if result == "survived" else "noticed"] += 1
            if result == "survived" and not is_listed(mutation):
                survivors.append(mutation)
                equal = f" #{mutation.number}" if mutation.number > 1 else ""
                print(f"{mutation.path}{equal} (line {mutation.line})")
                print(f"- {mutation.before}\n+ {mutation.after}\n", flush=True)
            elif time.monotonic() - started > 1 and counts.total() % 50 == 0:
                print(f"({counts.total()} of {wanted})", file=sys.stderr, flush=True)
    share = 100 * counts["noticed"] / max(1, counts.total())
    print(f"{counts.total()} mutants: {counts['noticed']} noticed ({share:.1f} %), {counts['survived']} survived, "
          f"{len(survivors)} of them not listed in tests/{LISTED.name}")  # fmt: skip
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
