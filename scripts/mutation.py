#!/usr/bin/env python3
"""Measures the unit tests: changes one thing at a time in plugin/ and util/ and looks whether a test fails.

Usage: scripts/mutation.py [--only PATH…] [--every N] [--jobs N]

Works in copies of the tree below build/mutation. A mutant that does not compile does not count; one that fails a
test, crashes or runs into the time limit is killed. Survivors are listed in build/mutation/survivors.txt; those that
scripts/mutation-equivalents.txt names, with the reason why no test can tell them apart, are told separately.
"""
import argparse
import concurrent.futures
import os
import queue
import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutation"
EQUIVALENTS = ROOT / "scripts" / "mutation-equivalents.txt"
TEST_PROGRAM = "unit_tests"
TIME_LIMIT = 60  # seconds for one run of the tests


class Mutant:
    """One change: the text between two offsets of a file, replaced."""

    def __init__(self, path, text, begin, end, replacement, kind):
        self.path, self.begin, self.end, self.replacement, self.kind = path, begin, end, replacement, kind
        self.line = text.count("\n", 0, begin) + 1
        self.before = text[begin:end]

    def apply(self, text):
        return text[:self.begin] + self.replacement + text[self.end:]

    def title(self):
        squeeze = lambda part: " ".join(part.split())
        return f"{self.path}: {self.kind}: {squeeze(self.before)} -> {squeeze(self.replacement) or 'nothing'}"

    def __str__(self):
        return f"{self.path}:{self.line}: {self.title().split(': ', 1)[1]}"


def blank(match):
    return re.sub(r"[^\n]", " ", match.group(0))


def code_only(text):
    """The text with comments and preprocessor lines blanked out, offsets kept."""
    text = re.sub(r"//[^\n]*", blank, text)
    return re.sub(r"^#[^\n]*(?:\\\n[^\n]*)*", blank, text, flags=re.M)


def without_strings(code):
    return re.sub(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'', blank, code)


def closing(code, opening):
    """The offset of the parenthesis that closes the one at `opening`."""
    depth = 0
    for offset in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[offset], 0)
        if depth == 0:
            return offset
    return None


def arguments(code, opening, end):
    """The spans of the arguments of a call."""
    spans, depth, begin = [], 0, opening + 1
    for offset in range(opening + 1, end):
        depth += {"(": 1, "{": 1, "[": 1, ")": -1, "}": -1, "]": -1}.get(code[offset], 0)
        if code[offset] == "," and depth == 0:
            spans.append((begin, offset))
            begin = offset + 1
    spans.append((begin, end))
    return spans


def constant_mutants(code, bare):
    for match in re.finditer(r'"((?:\\.|[^"\\])*)"', code):
        changed = '""' if len(match.group(1)) == 1 else f'"{match.group(1)}X"'
        yield match.start(), match.end(), changed, "text"
    for match in re.finditer(r"'((?:\\.|[^'\\])+)'", code):
        yield match.start(), match.end(), "'~'", "character"
    for match in re.finditer(r"(?<![\w.])\d+(?![\w.])", bare):
        yield match.start(), match.end(), str(int(match.group(0)) + 1), "off by one"
        if match.group(0) != "0":
            yield match.start(), match.end(), str(int(match.group(0)) - 1), "off by one"
    for match in re.finditer(r"\b(true|false)\b", bare):
        yield match.start(), match.end(), {"true": "false", "false": "true"}[match.group(0)], "constant"
    for match in re.finditer(r"\bO_\w+\b", bare):
        yield match.start(), match.end(), "0", "flag"


def operator_mutants(bare):
    swaps = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", "&&": "||", "||": "&&", " < ": " <= ", " > ": " >= ",
             " + ": " - ", " - ": " + ", "+=": "=", " | ": " & "}
    for operator, replacement in swaps.items():
        for match in re.finditer(re.escape(operator), bare):
            yield match.start(), match.end(), replacement, "operator"
    for match in re.finditer(r"(?<=[(\s])!(?=[\w(])", bare):
        yield match.start(), match.end(), "", "negation"


def condition_mutants(code, bare):
    for match in re.finditer(r"\b(if|while)\s*\(", bare):
        opening = match.end() - 1
        end = closing(bare, opening)
        condition = code[opening + 1:end]
        yield opening + 1, end, f"!({condition})", "negated condition"
        yield opening + 1, end, "false", "dropped condition"
        if match.group(1) == "if":
            yield opening + 1, end, "true", "dropped condition"
    for match in re.finditer(r"\breturn\s+([^;]*(?:&&|\|\||==|!=|[<>]=?|!)[^;]*);", bare):
        yield match.start(1), match.end(1), f"!({code[match.start(1):match.end(1)]})", "negated result"
    for match in re.finditer(r"\?([^?:;]*(?:::[^?:;]*)*):(?!:)([^;,)]*)", bare):
        first, second = code[match.start(1):match.end(1)], code[match.start(2):match.end(2)]
        yield match.start(1), match.end(2), f"{second} :{first} ", "swapped alternatives"


def statement_mutants(bare):
    for match in re.finditer(r"(?<=[;{})])(\s*)([A-Za-z_:][^;{}]*;)", bare):
        statement = match.group(2)
        if re.match(r"(return|using|namespace|constexpr|const|struct|class|static_assert|extern|else|case|default)\b",
                    statement):
            continue
        yield match.start(2), match.end(2), ";", "dropped statement"


def argument_mutants(code, bare):
    for match in re.finditer(r"\b([A-Za-z_]\w*)\(", bare):
        if match.group(1) in ("if", "while", "for", "switch", "return", "sizeof"):
            continue
        end = closing(bare, match.end() - 1)
        if end is None:
            continue
        spans = arguments(bare, match.end() - 1, end)
        for (b1, e1), (b2, e2) in zip(spans, spans[1:]):
            first, second = code[b1:e1].strip(), code[b2:e2].strip()
            if first and second and first != second:
                yield b1, e2, f"{second}, {first}", "swapped arguments"


def mutants_of(path):
    text = (ROOT / path).read_text()
    code = code_only(text)
    bare = without_strings(code)
    found = [*constant_mutants(code, bare), *operator_mutants(bare), *condition_mutants(code, bare),
             *statement_mutants(bare), *argument_mutants(code, bare)]
    return [Mutant(path, text, *change) for change in sorted(set(found))]


def run(command, cwd, **options):
    return subprocess.run(command, cwd=cwd, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)


class Worker:
    """A copy of the tree with a build of the unit tests."""

    def __init__(self, number):
        self.tree = WORK / f"worker-{number}"
        self.build = self.tree / "build"
        shutil.rmtree(self.tree, ignore_errors=True)
        files = subprocess.check_output(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, text=True)
        for name in files.splitlines():
            if (ROOT / name).is_file():
                (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(ROOT / name, self.tree / name)
        subprocess.run(["cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug"],
                       cwd=self.tree, check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["ninja", "-C", "build", TEST_PROGRAM], cwd=self.tree, check=True, stdout=subprocess.DEVNULL)
        if not self.tests_pass():
            sys.exit("the unit tests fail before anything is changed")

    def tests_pass(self):
        program = next(self.build.glob(f"tests/**/{TEST_PROGRAM}"))
        environment = dict(os.environ, GTEST_BRIEF="1", GTEST_FAIL_FAST="1")
        try:
            result = run([program], self.build, timeout=TIME_LIMIT, env=environment, stdin=subprocess.DEVNULL)
        except subprocess.TimeoutExpired:
            return False
        return result.returncode == 0

    def judge(self, mutant):
        """'invalid', 'killed' or 'survived'."""
        file = self.tree / mutant.path
        text = file.read_text()
        file.write_text(mutant.apply(text))
        try:
            if run(["ninja", "-C", "build", TEST_PROGRAM], self.tree).returncode != 0:
                return "invalid"
            return "survived" if self.tests_pass() else "killed"
        finally:
            file.write_text(text)


def equivalents():
    """Titles of mutants that no test can tell apart, each under a comment that says why."""
    if not EQUIVALENTS.exists():
        return set()
    return {line.strip() for line in EQUIVALENTS.read_text().splitlines() if line.strip() and line[0] != "#"}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--only", nargs="+", default=["plugin", "util"], help="files or directories to mutate")
    parser.add_argument("--every", type=int, default=1, help="take every Nth mutant only")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()

    sources = subprocess.check_output(["git", "ls-files", "-co", "--exclude-standard", *options.only], cwd=ROOT,
                                      text=True)
    mutants = [mutant for name in sources.splitlines() if name.endswith(".cc") for mutant in mutants_of(name)]
    mutants = mutants[::options.every]
    workers = queue.Queue()
    for number in range(options.jobs):
        workers.put(Worker(number))

    def judge(mutant):
        worker = workers.get()
        try:
            return worker.judge(mutant)
        finally:
            workers.put(worker)

    known = equivalents()
    counts = {"killed": 0, "survived": 0, "equivalent": 0, "invalid": 0}
    survivors = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for done, (mutant, verdict) in enumerate(zip(mutants, pool.map(judge, mutants)), 1):
            if verdict == "survived" and mutant.title() in known:
                verdict = "equivalent"
            counts[verdict] += 1
            if verdict == "survived":
                survivors.append(str(mutant))
                print(f"survived  {mutant}", flush=True)
            if done % 50 == 0:
                print(f"{done} of {len(mutants)}: {counts}", flush=True)

    (WORK / "survivors.txt").write_text("".join(f"{line}\n" for line in survivors))
    valid = counts["killed"] + counts["survived"]
    share = 100 * counts["killed"] / valid if valid else 0
    print(f"{counts['killed']} of {valid} mutants killed ({share:.1f} %), {counts['equivalent']} known to be equivalent, "
          f"{counts['invalid']} that do not compile")
    return 0 if share >= 95 else 1


if __name__ == "__main__":
    sys.exit(main())
