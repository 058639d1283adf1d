#!/usr/bin/python3
"""Runs time_value_probe natively and under callgrind; prints per TimeValue
the instructions of each phase, heap allocations, heap bytes kept by the
built document, and the peak resident set.

    run_probe.py PROBE [COUNT ...] [--modes tree,nodes,pugixml]

PROBE is the built time_value_probe. Instruction counts come from callgrind
and do not depend on the load of the machine.
"""
import argparse
import glob
import os
import re
import subprocess
import sys
import tempfile

PHASES = ("build", "write", "destroy")


def native(probe, mode, count):
    out = subprocess.run([probe, mode, str(count)], check=True,
                         capture_output=True, text=True).stdout
    result = {}
    for line in out.splitlines():
        m = re.match(r"(\w+) allocations=(\d+) bytes=(-?\d+)", line)
        if m:
            result[m.group(1)] = (int(m.group(2)), int(m.group(3)))
        m = re.match(r"peak_rss_kib=(\d+)", line)
        if m:
            result["rss"] = int(m.group(1))
    return result


def instructions(probe, mode, count):
    with tempfile.TemporaryDirectory() as work:
        base = os.path.join(work, "cg.out")
        subprocess.run(["valgrind", "--tool=callgrind", "--instr-atstart=no",
                        "--callgrind-out-file=" + base, probe, mode,
                        str(count)], check=True, capture_output=True)
        totals = {}
        for path in glob.glob(base + "*"):
            with open(path) as f:
                text = f.read()
            trigger = re.search(r"^desc: Trigger: Client Request: (\w+)",
                                text, re.M)
            total = re.search(r"^totals: (\d+)", text, re.M)
            if trigger and total:
                totals[trigger.group(1)] = int(total.group(1))
        return totals


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("probe")
    parser.add_argument("counts", nargs="*", type=int,
                        default=[10000, 100000, 1000000])
    parser.add_argument("--modes", default="tree,nodes,pugixml")
    parser.add_argument("--no-callgrind", action="store_true")
    args = parser.parse_args()
    print("| mode | N | build+write instr | write instr | destroy instr "
          "| allocations | bytes kept | peak RSS MB |")
    print("| --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: |")
    for count in args.counts:
        for mode in args.modes.split(","):
            heap = native(args.probe, mode, count)
            ins = ({} if args.no_callgrind
                   else instructions(args.probe, mode, count))
            allocs = sum(heap[p][0] for p in ("build", "write")) / count
            kept = heap["build"][1] / count

            def per(phase):
                return ins[phase] / count if phase in ins else float("nan")
            print("| %s | %d | %.0f | %.0f | %.0f | %.2f | %.0f | %.0f |" % (
                mode, count, per("build") + per("write"), per("write"),
                per("destroy"), allocs, kept, heap["rss"] / 1024.0))
            sys.stdout.flush()


if __name__ == "__main__":
    main()
