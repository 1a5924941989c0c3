#!/usr/bin/env python3
"""Inject simple faults into the product code, one at a time, and record which tests catch each.

The tree is copied to a work folder first (tracked files only), so the checkout is never
touched. Each mutant edits one line of one product .cpp file, rebuilds the test programs
incrementally, runs the programs the edit relinked and records the tests that failed.

    nice -n 19 tools/inject_faults.py --sample 150 --seed 1 --out /tmp/faults-before.jsonl
    tools/inject_faults.py --replay /tmp/faults-before.jsonl --out /tmp/faults-after.jsonl
    tools/inject_faults.py --report /tmp/faults-before.jsonl

A replay applies the same edits again (found by file, line text and operator), so the score
before and after a change of the tests is taken on the same faults.
"""

import argparse
import json
import os
import random
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

PRODUCT = ["base", "platform", "datatypes", "connections", "parameters", "app_object", "cli"]

# Each operator: name, pattern, and how one match becomes the fault.
SWAPS = {
    " == ": " != ", " != ": " == ", " < ": " <= ", " <= ": " < ", " > ": " >= ",
    " >= ": " > ", " && ": " || ", " || ": " && ",
}
BYTE_ORDER = {
    "EncodeIntelStream(": "EncodeStream(", "EncodeStream(": "EncodeIntelStream(",
    "WriteIntelStream(": "WriteStream(", "WriteStream(": "WriteIntelStream(",
    "ByteOrder::Intel": "ByteOrder::BigEndian", "ByteOrder::BigEndian": "ByteOrder::Intel",
}
STRING = re.compile(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'')
NUMBER = re.compile(r"(?<![\w.])(\d+)(?![\w.'])")
# A statement worth dropping: a call or an assignment on a line of its own, not a declaration.
DROPPABLE = re.compile(r"^\s*(?:[A-Za-z_][\w:]*(?:\.|->|::))*[A-Za-z_]\w*(?:\[[^\]]*\])?"
                       r"\s*(?:\(.*\)|[-+*/|&]?=\s.*|\+\+|--);\s*$")
NOT_DROPPABLE = re.compile(r"^\s*(return|throw|break|continue|const|auto|static|using|case)\b")


def code_spans(line):
    """The parts of a line outside string and character literals and after no comment."""
    cut = line.find("//")
    masked = STRING.sub(lambda m: " " * len(m.group(0)), line)
    cut = masked.find("//")
    if cut >= 0:
        masked = masked[:cut]
    return masked


def mutants_of(path, text):
    out = []
    for number, line in enumerate(text.split("\n"), 1):
        stripped = line.strip()
        if not stripped or stripped.startswith(("#", "//", "*", "/*")):
            continue
        code = code_spans(line)

        def at(op, start, old, new):
            out.append({"file": path, "line": number, "op": op, "text": line,
                        "start": start, "old": old, "new": new})

        for old, new in SWAPS.items():
            for m in re.finditer(re.escape(old), code):
                at("flip " + old.strip(), m.start(), old, new)
        for old, new in BYTE_ORDER.items():
            for m in re.finditer(r"(?<!\w)" + re.escape(old), code):
                at("byte order", m.start(), old, new)
        for m in NUMBER.finditer(code):
            value = int(m.group(1))
            at("off by one", m.start(), m.group(1), str(value + 1))
            if value > 0:
                at("off by one", m.start(), m.group(1), str(value - 1))
        for m in re.finditer(r"\b(true|false)\b", code):
            at("negate literal", m.start(), m.group(1), "false" if m.group(1) == "true" else "true")
        for m in re.finditer(r"(?<=[(\s])!(?=[\w(])", code):
            at("drop negation", m.start(), "!", "")
        if DROPPABLE.match(code) and not NOT_DROPPABLE.match(code):
            indent = len(line) - len(line.lstrip())
            at("drop statement", indent, line[indent:], ";")
    return out


def apply(text, mutant):
    lines = text.split("\n")
    line = lines[mutant["line"] - 1]
    if line != mutant["text"]:
        return None
    s = mutant["start"]
    if line[s:s + len(mutant["old"])] != mutant["old"]:
        return None
    lines[mutant["line"] - 1] = line[:s] + mutant["new"] + line[s + len(mutant["old"]):]
    return "\n".join(lines)


def relocate(text, mutant):
    """The mutant moved to the line that now holds its text, or None."""
    for number, line in enumerate(text.split("\n"), 1):
        if line == mutant["text"]:
            return dict(mutant, line=number)
    return None


def test_index(src):
    """Suite name to test file, from the TEST macros of the test sources."""
    index = {}
    for path in sorted((src / "tests").rglob("*.cpp")):
        for m in re.finditer(r"\b(?:TEST|TEST_F|TEST_P|TYPED_TEST)\s*\(\s*(\w+)",
                             path.read_text(errors="replace")):
            index.setdefault(m.group(1), str(path.relative_to(src)))
    return index


def run(cmd, cwd=None, timeout=None):
    return subprocess.run(cmd, cwd=cwd, timeout=timeout, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace")


class Bench:
    def __init__(self, args):
        self.src = Path(args.src).resolve()
        self.work = Path(args.work).resolve()
        self.tree = self.work / "src"
        self.build = self.work / "build"
        self.jobs = str(args.jobs)
        self.timeout = args.timeout
        self.limits = {}
        self.exclude = args.exclude

    def extract(self, commit):
        """The tree of a commit, so that a run can score an earlier state of the tests."""
        self.tree.mkdir(parents=True, exist_ok=True)
        archive = subprocess.run(["git", "archive", commit], cwd=self.src, check=True,
                                 stdout=subprocess.PIPE).stdout
        subprocess.run(["tar", "-x", "-C", str(self.tree)], input=archive, check=True)
        self.extracted = True

    def prepare(self):
        if not getattr(self, "extracted", False):
            files = run(["git", "ls-files"], cwd=self.src).stdout.split("\n")
            for name in filter(None, files):
                source, target = self.src / name, self.tree / name
                if not source.is_file():
                    continue
                if target.exists() and target.read_bytes() == source.read_bytes():
                    continue
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(source, target)
        if not (self.build / "CMakeCache.txt").exists():
            result = run(["cmake", "-S", str(self.tree), "-B", str(self.build),
                          "-DCMAKE_BUILD_TYPE=Release", "-DZERBIN_TESTS=ON"])
            if result.returncode:
                sys.exit(result.stdout)
        self.targets = sorted(re.findall(r"zerbin_test\((\w+)",
                                         "\n".join(p.read_text() for p in
                                                   (self.tree / "tests").rglob("CMakeLists.txt"))))
        if not self.compile():
            sys.exit("the unchanged tree does not build")
        self.programs = {t: next(self.build.rglob(t)) for t in self.targets}
        self.limits = {}
        for name, program in self.programs.items():
            began = time.time()
            failed = self.test({name: program})
            if failed:
                sys.exit("tests fail on the unchanged tree: %s" % failed)
            # A fault that makes a program run far longer than it did unchanged has hung it.
            self.limits[name] = max(self.timeout, 5 * (time.time() - began))

    def compile(self):
        result = run(["cmake", "--build", str(self.build), "-j", self.jobs, "--target",
                      *self.targets, "zerbin"])
        return result.returncode == 0

    def test(self, programs):
        failed = []
        for name, program in programs.items():
            cmd = [str(program), "--gtest_brief=1"]
            if self.exclude:
                cmd.append("--gtest_filter=-" + self.exclude)
            try:
                result = run(cmd, cwd=program.parent, timeout=self.limits.get(name, 600))
            except subprocess.TimeoutExpired:
                failed.append(name + ":(timeout)")
                continue
            names = re.findall(r"^\[  FAILED  \] (\S+?)(?:,| \(|$)", result.stdout, re.M)
            names = sorted(set(n for n in names if "." in n))
            if result.returncode and not names:
                names = ["(crash %d)" % result.returncode]
            failed += [name + ":" + n for n in names]
        return failed

    def stamps(self):
        return {t: p.stat().st_mtime_ns for t, p in self.programs.items()}

    def trial(self, mutant):
        path = self.tree / mutant["file"]
        original = path.read_text()
        mutated = apply(original, mutant)
        if mutated is None:
            return dict(mutant, status="stale")
        before = self.stamps()
        path.write_text(mutated)
        try:
            began = time.time()
            if not self.compile():
                return dict(mutant, status="no build")
            now = self.stamps()
            relinked = {t: p for t, p in self.programs.items() if now[t] != before[t]}
            failed = self.test(relinked)
            return dict(mutant, status="caught" if failed else "missed", caught_by=failed,
                        ran=sorted(relinked), seconds=round(time.time() - began, 1))
        finally:
            path.write_text(original)


def report(path, src):
    rows = [json.loads(l) for l in Path(path).read_text().splitlines() if l.strip()]
    index = test_index(Path(src))
    judged = [r for r in rows if r["status"] in ("caught", "missed")]
    caught = [r for r in judged if r["status"] == "caught"]
    print("%s: %d mutants, %d built, %d caught, %d missed, score %.1f %%" % (
        path, len(rows), len(judged), len(caught), len(judged) - len(caught),
        100.0 * len(caught) / max(1, len(judged))))
    files_of = lambda r: sorted({index.get(t.split(":", 1)[1].split(".")[0].split("/")[-1],
                                           t.split(":")[0]) for t in r.get("caught_by", [])})
    alone, anywhere = {}, {}
    for r in caught:
        files = files_of(r)
        for f in files:
            anywhere[f] = anywhere.get(f, 0) + 1
        if len(files) == 1:
            alone[files[0]] = alone.get(files[0], 0) + 1
    print("\ntest file: faults caught / caught by it alone")
    for f in sorted(anywhere, key=lambda f: (-alone.get(f, 0), -anywhere[f])):
        print("  %-55s %4d %4d" % (f, anywhere[f], alone.get(f, 0)))
    print("\nmissed:")
    for r in judged:
        if r["status"] == "missed":
            print("  %s:%d %s: %s" % (r["file"], r["line"], r["op"], r["text"].strip()[:90]))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--src", default=str(Path(__file__).resolve().parent.parent))
    parser.add_argument("--work", default="/tmp/zerbin-faults")
    parser.add_argument("--sample", type=int, default=150)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folders", nargs="*", default=PRODUCT)
    parser.add_argument("--replay", help="apply the mutants of an earlier result file")
    parser.add_argument("--report", help="summarise a result file and stop")
    parser.add_argument("--out", default="faults.jsonl")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--timeout", type=int, default=20,
                        help="least seconds a test program may run before it counts as hung")
    parser.add_argument("--commit", help="score this commit's tree instead of the checkout")
    parser.add_argument("--exclude", default="", help="gtest filter of tests to leave out")
    parser.add_argument("--list", action="store_true", help="print the sample and stop")
    args = parser.parse_args()

    src = Path(args.src).resolve()
    if args.report:
        report(args.report, src)
        return
    bench = Bench(args)
    if args.commit:
        bench.extract(args.commit)
        src = bench.tree  # mutants are drawn from the commit's own files
    if args.replay:
        sample = []
        for row in Path(args.replay).read_text().splitlines():
            old = json.loads(row)
            moved = relocate((src / old["file"]).read_text(), old)
            if moved:
                sample.append({k: moved[k] for k in
                               ("file", "line", "op", "text", "start", "old", "new")})
    else:
        everything = []
        for folder in args.folders:
            for path in sorted((src / folder).glob("*.cpp")):
                name = str(path.relative_to(src))
                everything += mutants_of(name, path.read_text())
        random.Random(args.seed).shuffle(everything)
        sample = everything[:args.sample]
    # Mutants of one file in a row: the restored file is then compiled once per file.
    sample.sort(key=lambda m: (m["file"], m["line"], m["start"], m["new"]))
    if args.list:
        for m in sample:
            print("%s:%d %s: %s" % (m["file"], m["line"], m["op"], m["text"].strip()))
        return

    bench.prepare()
    with open(args.out, "w") as out:
        for number, mutant in enumerate(sample, 1):
            result = bench.trial(mutant)
            out.write(json.dumps(result) + "\n")
            out.flush()
            print("%3d/%d %-7s %s:%d %s" % (number, len(sample), result["status"],
                                            mutant["file"], mutant["line"], mutant["op"]),
                  flush=True)
    bench.compile()
    report(args.out, src)


if __name__ == "__main__":
    main()
