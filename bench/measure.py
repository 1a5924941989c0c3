#!/usr/bin/env python3
"""Whole-process load of the bench projects against a process that only parses the same file.

Generates the default, random and compact projects (MakeBenchProjects), then for each runs
`zerbin load` and ParseOnly alternately and prints the medians of the CPU time (user + sys),
the wall time and the peak RSS of each, their ratios, and the peak RSS against the file's
size. With --instructions it counts both processes' instructions under callgrind (the hardware
counters are not available on every virtual machine); with --scale it loads 1,000, 10,000 and
100,000 blocks of each project to show how the time grows; with --alive it runs
ProjectLoadBench on each project for the peak RSS with every block alive.

With --baseline ZERBIN another build's command (say, of the commit before a change) runs in
the same rounds, so that both are measured under the same load of the machine.

Usage: bench/measure.py [--build DIR] [--runs N] [--blocks N] [--instructions] [--scale]
                        [--alive] [--kinds default,random,compact] [--baseline ZERBIN]
"""
import argparse
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time


def run_once(command):
    """Wall seconds, CPU seconds (user + sys) and peak RSS in KiB of one run of command.

    The command is started by GNU time, whose small image is what the child's peak counts
    before its exec: a child forked from this interpreter would count the interpreter's.
    """
    with tempfile.NamedTemporaryFile() as peak, open(os.devnull, "wb") as null:
        start = time.perf_counter()
        child = subprocess.Popen(["/usr/bin/time", "-f", "%M", "-o", peak.name] + command,
                                 stdout=null, stderr=null)
        _, status, usage = os.wait4(child.pid, 0)  # time's usage and its child's
        wall = time.perf_counter() - start
        if status != 0:
            sys.exit(f"{' '.join(command)} failed with status {status}")
        rss = int(open(peak.name).read().split()[-1])
    return wall, usage.ru_utime + usage.ru_stime, rss


def medians(runs):
    return [statistics.median(column) for column in zip(*runs)]


def instructions(command):
    """Instructions of the whole process (callgrind's Ir total, the loader included)."""
    with tempfile.TemporaryDirectory() as work:
        out = os.path.join(work, "callgrind.out")
        result = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={out}"] + command,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=True)
        found = re.search(r"Collected : (\d+)", result.stderr)
        return int(found.group(1))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default="build")
    parser.add_argument("--runs", type=int, default=11)
    parser.add_argument("--blocks", type=int, default=10000)
    parser.add_argument("--kinds", default="default,random,compact")
    parser.add_argument("--instructions", action="store_true")
    parser.add_argument("--scale", action="store_true")
    parser.add_argument("--alive", action="store_true")
    parser.add_argument("--baseline")
    args = parser.parse_args()

    zerbin = os.path.join(args.build, "cli", "zerbin")
    parse_only = os.path.join(args.build, "bench", "ParseOnly")
    make = os.path.join(args.build, "bench", "MakeBenchProjects")
    load_bench = os.path.join(args.build, "bench", "ProjectLoadBench")
    for program in (zerbin, parse_only, make, "/usr/bin/time"):
        if not os.access(program, os.X_OK):
            sys.exit(f"missing {program}: build with -DZERBIN_BENCH=ON")

    kinds = args.kinds.split(",")
    with tempfile.TemporaryDirectory() as work:
        def project(kind, blocks):
            path = os.path.join(work, f"{kind}-{blocks}.xml")
            if not os.path.exists(path):
                subprocess.run([make, kind, str(blocks), path], check=True)
            return path

        print(f"medians of {args.runs} alternated runs, {args.blocks} blocks; "
              "CPU = user + sys; RSS in MiB, file sizes in MB")
        print(f"{'project':<9} {'MB':>5} | {'load CPU ms':>11} {'parse CPU ms':>12} {'ratio':>5} | "
              f"{'load wall':>9} {'parse wall':>10} {'ratio':>5} | "
              f"{'load RSS':>8} {'x file':>6} {'parse RSS':>9} {'x file':>6}")
        for kind in kinds:
            path = project(kind, args.blocks)
            size = os.path.getsize(path)
            load_runs, parse_runs, base_runs = [], [], []
            for _ in range(args.runs):
                load_runs.append(run_once([zerbin, "load", path]))
                parse_runs.append(run_once([parse_only, path]))
                if args.baseline:
                    base_runs.append(run_once([args.baseline, "load", path]))
            rows = [(kind, medians(load_runs))]
            if args.baseline:
                rows.append(("baseline", medians(base_runs)))
            pw, pc, pr = medians(parse_runs)
            for name, (lw, lc, lr) in rows:
                print(f"{name:<9} {size / 1e6:5.2f} | {lc * 1e3:11.1f} {pc * 1e3:12.1f} "
                      f"{lc / pc:5.2f} | {lw * 1e3:9.1f} {pw * 1e3:10.1f} {lw / pw:5.2f} | "
                      f"{lr / 1024:8.1f} {lr * 1024 / size:6.2f} {pr / 1024:9.1f} "
                      f"{pr * 1024 / size:6.2f}")

        if args.instructions:
            print("\ninstructions (callgrind, whole process)")
            for kind in kinds:
                path = project(kind, args.blocks)
                load = instructions([zerbin, "load", path])
                parse = instructions([parse_only, path])
                line = (f"{kind:<9} load {load / 1e6:8.1f} M, parse only {parse / 1e6:7.1f} M, "
                        f"ratio {load / parse:5.2f}")
                if args.baseline:
                    base = instructions([args.baseline, "load", path])
                    line += f"; baseline {base / 1e6:8.1f} M, ratio {base / parse:5.2f}"
                print(line)

        if args.scale:
            print("\nlinearity: zerbin load CPU per block (medians of 5 runs)")
            for kind in kinds:
                cells = []
                for blocks in (1000, 10000, 100000):
                    path = project(kind, blocks)
                    _, cpu, rss = medians([run_once([zerbin, "load", path]) for _ in range(5)])
                    cells.append(f"{blocks:>6}: {cpu / blocks * 1e6:6.2f} us, {rss / 1024:6.1f} MiB")
                print(f"{kind:<9} " + " | ".join(cells))

        if args.alive:
            if not os.access(load_bench, os.X_OK):
                sys.exit(f"missing {load_bench}")
            print("\nall blocks alive (ProjectLoadBench, peak RSS against the file)")
            for kind in kinds:
                path = project(kind, args.blocks)
                result = subprocess.run(
                    [load_bench, "--benchmark_filter=LoadAndImage",
                     "--benchmark_repetitions=1"],
                    env=dict(os.environ, ZERBIN_BENCH_PROJECT=path),
                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True)
                rss = float(re.search(r"peak RSS: ([\d.]+) MiB", result.stdout).group(1))
                size = os.path.getsize(path)
                print(f"{kind:<9} {rss:6.1f} MiB, {rss * 2**20 / size:5.2f} x the file")


if __name__ == "__main__":
    main()
