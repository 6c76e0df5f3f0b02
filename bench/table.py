#!/usr/bin/env python3
"""Runs benchmark programs and prints one table: workload, ours, the peer's, ratio, the ratio we accept.

  bench/table.py PROGRAM... [--filter REGEX] [--repetitions N] [--markdown]

Each row's two sides run in turn, several times; the fastest run of each side counts. Exit status 1 if a row is over.
"""
import argparse
import json
import subprocess
import sys


def run(program, options):
    rows = {}
    for _ in range(options.repetitions):
        command = [program, "--benchmark_format=json", f"--benchmark_min_time={options.time}"]
        if options.filter:
            command.append(f"--benchmark_filter={options.filter}")
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode or not done.stdout.strip():
            sys.exit(f"{program}: failed: {done.stderr.strip()[-400:]}")
        for result in json.loads(done.stdout)["benchmarks"]:
            workload, peer, limit, side = result["name"].split("/iterations")[0].split("/real_time")[0].split("|")
            if result.get("error_occurred"):
                sys.exit(f"{workload} ({side.split('/')[0]}): {result['error_message']}")
            scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[result["time_unit"]]
            row = rows.setdefault((workload, peer), {"name": peer, "limit": float(limit)})
            time = result["real_time"] * scale
            side = side.split("/")[0]
            row[side] = min(row.get(side, time), time)
    return rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", nargs="+")
    parser.add_argument("--filter", default="")
    parser.add_argument("--repetitions", type=int, default=5)
    parser.add_argument("--time", default="0.1")
    parser.add_argument("--markdown", action="store_true")
    options = parser.parse_args()
    over = 0
    line = "| {:<52} | {:<34} | {:>12} | {:>12} | {:>6} | {:>7} |" if options.markdown else "{:<52}  {:<34}  {:>12}  {:>12}  {:>6}  {:>7}"
    print(line.format("workload", "peer", "ours, ns", "peer's, ns", "ratio", "at most"))
    if options.markdown:
        print("|---|---|--:|--:|--:|--:|")
    for program in options.programs:
        for (workload, _), row in run(program, options).items():
            ours, theirs, limit = row.get("ours"), row.get("peer"), row["limit"]
            if ours is None:
                continue
            absolute = row["name"].startswith("absolute")
            ratio = ours / theirs if theirs else None
            bad = limit and ((absolute and ours > limit) or (ratio is not None and ratio > limit))
            over += bool(bad)
            print(line.format(workload, row["name"], f"{ours:,.1f}", f"{theirs:,.1f}" if theirs else "-",
                              f"{ratio:.2f}" if ratio is not None else "-",
                              (f"{limit:,.0f}" if absolute else f"{limit:g}") + (" !" if bad else "") if limit else "-"))
    return 1 if over else 0


sys.exit(main())
