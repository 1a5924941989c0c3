#!/usr/bin/env python3
"""Inject simple faults into the product code, one at a time, and record which tests catch each.

The tree is copied to a work folder first (tracked files only), so the checkout is never
touched. Each mutant edits one line of one product .cpp file, rebuilds the test programs
incrementally in an unoptimised build, runs the programs the edit reaches (the tests of the
edited file's own folder first) and stops at the first program that fails.

    nice -n 19 tools/inject_faults.py --sample 150 --seed 2026 --out /tmp/faults-2026.jsonl
    nice -n 19 tools/inject_faults.py --replay tools/faults/seed7.jsonl --out /tmp/seed7.jsonl
    tools/inject_faults.py --report /tmp/faults-2026.jsonl

A replay applies the same edits again (found by file, line text and operator), so the score
before and after a change of the tests is taken on the same faults. A fault listed in
tools/equivalent_faults.json changes nothing a user or host can observe; it is not built, and
the report counts it apart, with its reason.
"""

import argparse
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
# Folders that hold no product code: every other top-level folder with a .cpp file is mutated.
NOT_PRODUCT = {"tests", "bench", "fuzz", "tools", "examples", "build", "cmake", "data", "docs"}
EQUIVALENTS = ROOT / "tools" / "equivalent_faults.json"
KEYS = ("file", "line", "op", "text", "start", "old", "new")


def product_folders(src):
    return sorted(p.name for p in src.iterdir()
                  if p.is_dir() and not p.name.startswith(".") and p.name not in NOT_PRODUCT
                  and not p.name.startswith("build") and any(p.rglob("*.cpp")))


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
    """The mutant moved to the line that now holds its text, the nearest such line when the
    text stands on several (two "outputs_.reset();" in one file), or None."""
    found = [n for n, line in enumerate(text.split("\n"), 1) if line == mutant["text"]]
    if not found:
        return None
    return dict(mutant, line=min(found, key=lambda n: abs(n - mutant["line"])))


def equivalence_key(m):
    indent = len(m["text"]) - len(m["text"].lstrip())
    return (m["file"], m["text"].strip(), m["op"], m["start"] - indent, m["old"], m["new"])


def load_equivalents(path=EQUIVALENTS):
    """Faults that change nothing observable, keyed so that a replay finds them again."""
    if not Path(path).exists():
        return {}
    return {(e["file"], e["text"], e["op"], e["column"], e["old"], e["new"]): e["reason"]
            for e in json.loads(Path(path).read_text())}


def test_index(src):
    """Suite name to test file, from the TEST macros and the QTest slots of the test sources."""
    index = {}
    for path in sorted((src / "tests").rglob("*.cpp")):
        text = path.read_text(errors="replace")
        for m in re.finditer(r"\b(?:TEST|TEST_F|TEST_P|TYPED_TEST)\s*\(\s*(\w+)", text):
            index.setdefault(m.group(1), str(path.relative_to(src)))
        for m in re.finditer(r"^class (\w+) : public QObject", text, re.M):
            index.setdefault(m.group(1), str(path.relative_to(src)))
    return index


def run(cmd, cwd=None, timeout=None, env=None):
    return subprocess.run(cmd, cwd=cwd, timeout=timeout, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", env=env)


def test_programs(tree):
    """Every test program the tests' CMake files declare: zerbin_test( and add_executable(."""
    names = {}
    for path in sorted((tree / "tests").rglob("CMakeLists.txt")):
        folder = path.parent.name
        for m in re.finditer(r"(?:zerbin_test|add_executable)\((\w+)", path.read_text()):
            names[m.group(1)] = folder
    return names


class Build:
    """One build folder of the work tree and the test programs it holds."""

    def __init__(self, bench, name, options):
        self.bench, self.dir, self.options = bench, bench.work / name, options
        self.label = name

    def configure(self):
        # Unoptimised and without debug information: a mutant recompiles one file quickly. A
        # fault in the engine relinks every program; lld links them several times faster.
        linker = ["-D%s=-fuse-ld=lld" % v for v in ("CMAKE_EXE_LINKER_FLAGS",
                                                     "CMAKE_SHARED_LINKER_FLAGS",
                                                     "CMAKE_MODULE_LINKER_FLAGS")]
        result = run(["cmake", "-S", str(self.bench.tree), "-B", str(self.dir),
                      "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                      "-DCMAKE_C_FLAGS_DEBUG=-O0", "-DZERBIN_HARDENING=OFF",
                      "-DZERBIN_TESTS=ON", *(linker if shutil.which("ld.lld") else []),
                      *self.options])
        if result.returncode:
            sys.exit(result.stdout)

    def compile(self, targets=None):
        result = run(["cmake", "--build", str(self.dir), "-j", self.bench.jobs, "--target",
                      *(targets or self.targets)])
        return result.returncode == 0

    def map_dependents(self):
        """Which test programs each source file reaches: the targets that compile it, and the
        programs that link them or need them to run (add_dependencies). A fault then builds
        only those: a no-op build of every program costs seconds of make's own work."""
        self.owners = {}
        for obj in self.dir.rglob("*.o"):
            parts = obj.relative_to(self.dir).parts
            if "CMakeFiles" not in parts:
                continue
            at = parts.index("CMakeFiles")
            if at + 1 >= len(parts) or not parts[at + 1].endswith(".dir"):
                continue
            target = parts[at + 1][:-4]
            inner = [".." if p == "__" else p for p in parts[at + 2:]]
            source = os.path.normpath(os.path.join(*parts[:at], *inner))[:-2]
            self.owners.setdefault(source, set()).add(target)
        dot = self.dir / "targets.dot"
        run(["cmake", "--graphviz=" + str(dot), "."], cwd=self.dir)
        text = dot.read_text() if dot.exists() else ""
        label = dict(re.findall(r'"(node\d+)" \[ label = "([^"]+)"', text))
        needs = {}
        for a, b in re.findall(r'"(node\d+)" -> "(node\d+)"', text):
            needs.setdefault(label.get(a, a), set()).add(label.get(b, b))
        for path in self.bench.tree.rglob("CMakeLists.txt"):
            for m in re.finditer(r"add_dependencies\((\w+)([^)]*)\)", path.read_text()):
                needs.setdefault(m.group(1), set()).update(m.group(2).split())
        self.closure = {}
        for program in self.targets:
            seen, todo = set(), [program]
            while todo:
                t = todo.pop()
                if t not in seen:
                    seen.add(t)
                    todo += needs.get(t, ())
            self.closure[program] = seen

    def programs_reaching(self, source):
        owners = self.owners.get(source, set())
        return [t for t in self.targets if self.closure[t] & owners]

    def start(self):
        self.configure()
        declared = test_programs(self.bench.tree)
        # Only the programs this configuration makes (the sanitizer build has no Qt).
        listed = run(["cmake", "--build", str(self.dir), "--target", "help"]).stdout
        made = set(re.findall(r"^\.\.\. (\w+)", listed, re.M))
        self.targets = [t for t in declared if t in made]
        if not self.compile():
            sys.exit("the unchanged tree does not build in " + str(self.dir))
        files = {p.name: p for p in self.dir.rglob("*") if p.is_file() and os.access(p, os.X_OK)}
        self.programs = {t: files[t] for t in self.targets}
        self.folder = {t: declared[t] for t in self.targets}
        self.gtest = {t: b"--gtest_" in p.read_bytes() for t, p in self.programs.items()}
        self.map_dependents()
        self.limits, self.seconds = {}, {}
        for name in self.targets:
            began = time.time()
            failed = self.test([name])
            if failed:
                sys.exit("tests fail on the unchanged tree (%s): %s" % (self.label, failed))
            self.seconds[name] = time.time() - began
            print("%s: %s runs in %.1f s unchanged" % (self.label, name, self.seconds[name]),
                  flush=True)
            # A fault that makes a program run far longer than it did unchanged has hung it.
            self.limits[name] = max(self.bench.timeout, 5 * self.seconds[name])

    def test(self, names, stop_early=True):
        failed = []
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        for name in names:
            program = self.programs[name]
            if self.gtest[name]:
                cmd = [str(program), "--gtest_brief=1"]
                if self.bench.exclude:
                    cmd.append("--gtest_filter=-" + self.bench.exclude)
            else:
                cmd = [str(program), "-silent"]
            try:
                result = run(cmd, cwd=program.parent, timeout=self.limits.get(name, 600), env=env)
            except subprocess.TimeoutExpired:
                failed.append(name + ":(timeout)")
            else:
                if self.gtest[name]:
                    found = re.findall(r"^\[  FAILED  \] (\S+?)(?:,| \(|$)", result.stdout, re.M)
                else:
                    found = re.findall(r"^FAIL!  : (\S+?)\(", result.stdout, re.M)
                found = sorted(set(n for n in found if "." in n or "::" in n))
                if result.returncode and not found:
                    found = ["(crash %d)" % result.returncode]
                failed += [name + ":" + n for n in found]
            if failed and stop_early:
                break
        return failed

    def trial(self, mutant, mutated, original):
        """Builds the mutant here and runs what it reaches, its own folder's tests first. With
        the stop at the first failure, each program is built just before it runs: a fault its
        own folder's tests catch costs one link, not one for every program of the engine."""
        path = self.bench.tree / mutant["file"]
        home = mutant["file"].split("/")[0]
        reaching = sorted(self.programs_reaching(mutant["file"]),
                          key=lambda t: (self.folder[t] != home, self.seconds[t]))
        if not reaching:
            return [], []  # this build does not compile the file (the windows without Qt)
        path.write_text(mutated)
        try:
            groups = [[t] for t in reaching] if self.bench.stop_early else [reaching]
            failed, ran = [], []
            for group in groups:
                if not self.compile(group):
                    return None, ran
                # Relinked or not: a program that loads the plug-in (and through it the shared
                # engine) at run time meets the fault without its own file changing.
                ran += group
                failed += self.test(group, self.bench.stop_early)
                if failed and self.bench.stop_early:
                    break
            return failed, ran
        finally:
            path.write_text(original)


class Bench:
    def __init__(self, args):
        self.src = Path(args.src).resolve()
        self.work = Path(args.work).resolve()
        self.tree = self.work / "src"
        self.jobs = str(args.jobs)
        self.timeout = args.timeout
        self.exclude = args.exclude
        self.stop_early = not args.all_tests
        self.builds = [Build(self, "build", [])]
        if args.sanitize:
            # The checks only AddressSanitizer makes (leaks, use after free) on the engine and
            # the command; the windows have no such checks and would double the build.
            self.builds.append(Build(self, "build-sanitize",
                                     ["-DZERBIN_SANITIZE=ON", "-DZERBIN_WITH_QT=OFF"]))

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
                # A fresh time, so that make rebuilds what an interrupted run left mutated.
                shutil.copyfile(source, target)
                shutil.copymode(source, target)
        for build in self.builds:
            build.start()

    def trial(self, mutant):
        path = self.tree / mutant["file"]
        original = path.read_text()
        mutated = apply(original, mutant)
        if mutated is None:
            return dict(mutant, status="stale")
        began = time.time()
        ran = []
        for build in self.builds:
            failed, reached = build.trial(mutant, mutated, original)
            if failed is None:
                return dict(mutant, status="no build", seconds=round(time.time() - began, 1))
            ran += [build.label + "/" + t for t in reached]
            if failed:
                if build is not self.builds[0]:
                    failed = [build.label + "/" + f for f in failed]
                return dict(mutant, status="caught", caught_by=failed, ran=ran,
                            seconds=round(time.time() - began, 1))
        return dict(mutant, status="missed", caught_by=[], ran=ran,
                    seconds=round(time.time() - began, 1))


def report(paths, src):
    rows = []
    for path in paths:
        rows += [json.loads(l) for l in Path(path).read_text().splitlines() if l.strip()]
    # A later row of the same fault (a replay of the survivors) replaces the earlier one.
    latest = {}
    for r in rows:
        latest[equivalence_key(r)] = r
    rows = list(latest.values())
    equivalents = load_equivalents()
    index = test_index(Path(src))
    for r in rows:
        if r["status"] in ("missed", "equivalent") and equivalence_key(r) in equivalents:
            r["status"], r["reason"] = "equivalent", equivalents[equivalence_key(r)]
        elif r["status"] == "equivalent":
            r["status"] = "missed"  # no longer listed: it counts as missed until judged again
    count = lambda s: sum(1 for r in rows if r["status"] == s)
    caught, missed = count("caught"), count("missed")
    print("%s: %d faults: %d caught, %d missed, %d equivalent, %d do not build, %d stale" % (
        ", ".join(paths), len(rows), caught, missed, count("equivalent"), count("no build"),
        count("stale")))
    print("score: %d of %d observable faults caught, %.1f %%" % (
        caught, caught + missed, 100.0 * caught / max(1, caught + missed)))

    def files_of(r):
        out = set()
        for t in r.get("caught_by", []):
            program, _, test = t.rpartition(":")
            suite = re.split(r"[./]|::", test)[0] if test else ""
            out.add(index.get(suite, program.split("/")[-1]))
        return sorted(out)

    alone, anywhere = {}, {}
    for r in rows:
        if r["status"] != "caught":
            continue
        files = files_of(r)
        for f in files:
            anywhere[f] = anywhere.get(f, 0) + 1
        if len(files) == 1:
            alone[files[0]] = alone.get(files[0], 0) + 1
    print("\ntest file (first failing program only, unless run with --all-tests):"
          " faults caught / caught by it alone")
    for f in sorted(anywhere, key=lambda f: (-alone.get(f, 0), -anywhere[f])):
        print("  %-55s %4d %4d" % (f, anywhere[f], alone.get(f, 0)))
    for status in ("missed", "equivalent"):
        print("\n%s:" % status)
        for r in sorted(rows, key=lambda r: (r["file"], r["line"])):
            if r["status"] == status:
                print("  %s:%d %s %r -> %r: %s" % (r["file"], r["line"], r["op"], r["old"],
                                                   r["new"], r["text"].strip()[:80]))
                if status == "equivalent":
                    print("      " + r["reason"])


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--src", default=str(ROOT))
    parser.add_argument("--work", default="/tmp/faults-work")
    parser.add_argument("--sample", type=int, default=150)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folders", nargs="*", help="product folders to draw from (default: all)")
    parser.add_argument("--replay", help="apply the faults of an earlier result or sample file")
    parser.add_argument("--only-missed", action="store_true",
                        help="with --replay: only the faults that file records as missed")
    parser.add_argument("--report", nargs="+", help="summarise result files (later rows win)")
    parser.add_argument("--out", default="faults.jsonl")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--timeout", type=int, default=30,
                        help="least seconds a test program may run before it counts as hung")
    parser.add_argument("--commit", help="score this commit's tree instead of the checkout")
    parser.add_argument("--exclude", default="", help="gtest filter of tests to leave out")
    parser.add_argument("--sanitize", action="store_true",
                        help="try a fault the plain build misses again under ASan and UBSan")
    parser.add_argument("--all-tests", action="store_true",
                        help="run every program the fault reaches, to learn every test that catches it")
    parser.add_argument("--check-equivalents", action="store_true",
                        help="build and run the faults listed as equivalent too")
    parser.add_argument("--resume", action="store_true",
                        help="keep the rows already in --out and run only the faults not there")
    parser.add_argument("--list", action="store_true", help="print the sample and stop")
    parser.add_argument("--save-sample", help="write the sample (faults only) to this file")
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
            if args.only_missed and old.get("status") not in ("missed", "equivalent"):
                continue
            moved = relocate((src / old["file"]).read_text(), old)
            if moved:
                sample.append({k: moved[k] for k in KEYS})
            else:
                print("stale, its line is gone: %s:%d %s" % (old["file"], old["line"], old["op"]))
    else:
        everything = []
        for folder in args.folders or product_folders(src):
            for path in sorted((src / folder).rglob("*.cpp")):
                name = str(path.relative_to(src))
                everything += mutants_of(name, path.read_text())
        random.Random(args.seed).shuffle(everything)
        sample = everything[:args.sample]
    # Mutants of one file in a row: the restored file is then compiled once per file.
    sample.sort(key=lambda m: (m["file"], m["line"], m["start"], m["new"]))
    if args.save_sample:
        Path(args.save_sample).write_text("".join(json.dumps({k: m[k] for k in KEYS}) + "\n"
                                                  for m in sample))
    if args.list:
        for m in sample:
            print("%s:%d %s: %s" % (m["file"], m["line"], m["op"], m["text"].strip()))
        return

    equivalents = {} if args.check_equivalents else load_equivalents()
    done = set()
    if args.resume and Path(args.out).exists():
        done = {equivalence_key(json.loads(l)) for l in Path(args.out).read_text().splitlines()
                if l.strip()}
    # A stop (kill, Ctrl+C) unwinds, so that the mutated file is put back.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("stopped"))
    bench.prepare()
    with open(args.out, "a" if args.resume else "w") as out:
        for number, mutant in enumerate(sample, 1):
            if equivalence_key(mutant) in done:
                continue
            if equivalence_key(mutant) in equivalents:
                result = dict(mutant, status="equivalent")
            else:
                result = bench.trial(mutant)
            out.write(json.dumps(result) + "\n")
            out.flush()
            print("%3d/%d %-10s %5.1fs %s:%d %s %s" % (
                number, len(sample), result["status"], result.get("seconds", 0),
                mutant["file"], mutant["line"], mutant["op"], " ".join(result.get("caught_by", [])[:1])),
                  flush=True)
    for build in bench.builds:
        build.compile()  # leave the work builds as the tree stands
    report([args.out], src)


if __name__ == "__main__":
    main()
