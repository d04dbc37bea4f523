#!/usr/bin/env python3
"""Turns the benchmarks' JSON lines into one JSON file and a table.

    bench_table.py LINES.jsonl RESULTS.json

Each line is {"id": ..., "unit": ..., "samples": [...]}, with "limit_samples" where the same work was also timed in its
barest form (what the machine or the file library can do at best), and "goal" where a number is to be held. A goal is a
bound and what it bounds: {"max": 50}, {"min": 60}, {"max_ratio": 1.5} or {"min_ratio": 0.8}; a plain number is a "max".
"""
import json
import math
import statistics
import sys

COLUMNS = ("benchmark", "median", "limit", "ratio", "unit", "runs", "goal", "met")


def describe_goal(goal, median, ratio):
    """The goal as text, and whether it is met: True, False, or None without a goal."""
    if goal is None:
        return "", None
    if isinstance(goal, (int, float)):
        goal = {"max": goal}
    texts = []
    met = True
    for key, bound in goal.items():
        value = ratio if key.endswith("_ratio") else median
        sign = "<=" if key.startswith("max") else ">="
        texts.append(f"{'ratio ' if key.endswith('_ratio') else ''}{sign} {bound:g}")
        held = value is not None and (value <= bound if sign == "<=" else value >= bound)
        met = met and held
    return ", ".join(texts), met


def number(value):
    """Four significant digits, without an exponent."""
    if value is None:
        return ""
    if value == 0:
        return "0"
    return f"{value:.{max(0, 3 - math.floor(math.log10(abs(value))))}f}"


def result_of(line):
    result = json.loads(line)
    result["median"] = statistics.median(result["samples"])
    limits = result.get("limit_samples")
    result["limit_median"] = statistics.median(limits) if limits else None
    result["ratio"] = result["median"] / result["limit_median"] if result["limit_median"] else None
    result["goal_text"], result["met"] = describe_goal(result.get("goal"), result["median"], result["ratio"])
    return result


def row_of(result):
    return (result["id"], number(result["median"]), number(result["limit_median"]), number(result["ratio"]),
            result["unit"], str(len(result["samples"])), result["goal_text"],
            {True: "yes", False: "NO", None: ""}[result["met"]])


def main():
    lines_path, results_path = sys.argv[1:3]
    with open(lines_path, encoding="utf-8") as lines:
        results = [result_of(line) for line in lines if line.strip()]
    with open(results_path, "w", encoding="utf-8") as output:
        json.dump(results, output, indent=1)
        output.write("\n")

    rows = [COLUMNS] + [row_of(result) for result in results]
    widths = [max(len(row[i]) for row in rows) for i in range(len(COLUMNS))]
    for row in rows:
        cells = [cell.rjust(width) if 1 <= i <= 3 or i == 5 else cell.ljust(width)
                 for i, (cell, width) in enumerate(zip(row, widths))]
        print("  ".join(cells).rstrip())
    goals = [result["met"] for result in results if result["met"] is not None]
    print(f"{goals.count(True)} of {len(goals)} goals met; numbers in {results_path}")


if __name__ == "__main__":
    main()
