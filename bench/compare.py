"""Runs the benchmarks side by side and prints one table: compare.py BUILD [--runs N] [--smoke].

Each round runs every benchmark once, forwards and backwards in turn, so that what disturbs the machine for a while hits
all alike. Each library and size has a process of its own, in which loading comes first. A figure is the median of the
rounds.
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time

LIBRARIES = ["kes", "toml++", "nlohmann", "rapidjson", "libconfig"]
# What is measured, under which name, in which unit, by which counter (none: the time).
ROWS = [
    ("load, ms", "Load", None),
    ("memory, bytes a key", "Load", "bytes/key"),
    ("save, ms", "Save", None),
    ("get one value as text, us", "Get", None),
    ("set one value from text, us", "Set", None),
    ("get, all over the data, us", "GetSpread", None),
    ("set, all over the data, us", "SetSpread", None),
]


def arguments():
    parser = argparse.ArgumentParser(description="Measures this library beside others.")
    parser.add_argument("build", help="the build folder")
    parser.add_argument("--runs", type=int, default=5, help="how often each benchmark runs (5)")
    parser.add_argument("--smoke", action="store_true", help="once, with little data: does all work?")
    options = parser.parse_args()
    if options.runs < 1:
        parser.error("--runs must be at least 1")
    return options


def run_benchmarks(build, names, smoke):
    """Some benchmarks in one process; their records as Google Benchmark gives them, by name."""
    pattern = "|".join(escape(name) for name in names)
    command = [os.path.join(build, "bin", "kes_bench"), f"--benchmark_filter=^({pattern})$", "--benchmark_format=json"]
    command.append(f"--benchmark_min_time={0.001 if smoke else 0.3}")
    process = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if process.returncode != 0:
        sys.exit(f"bench: {', '.join(names)}: {process.stderr.strip()}")
    records = {record["name"]: record for record in json.loads(process.stdout or '{"benchmarks": []}')["benchmarks"]}
    for name in names:
        if name not in records or records[name].get("error_occurred"):
            sys.exit(f"bench: {name}: {records.get(name, {}).get('error_message', 'no such benchmark')}")
    return records


def escape(name):
    return name.replace("+", r"\+")


def check_command(build, repeats):
    """Milliseconds of `kes check` on a text of 100 lines, as a whole process."""
    kes = os.path.join(build, "bin", "kes")
    with open(os.path.join(os.path.dirname(__file__), "..", "examples", "ostrell", "headunit-production.ktf"),
              encoding="utf-8") as source:
        lines = source.read().split("\n")[:100]
    with tempfile.NamedTemporaryFile("w", suffix=".ktf", encoding="utf-8") as text:
        text.write("\n".join(lines) + "\n")
        text.flush()
        times = []
        for _ in range(repeats):
            start = time.perf_counter()
            process = os.posix_spawn(kes, [kes, "check", text.name], os.environ)
            status = os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])
            times.append((time.perf_counter() - start) * 1e3)
            if status != 0:
                sys.exit(f"bench: kes check ended with {status}")
    return statistics.median(times)


def collect(options):
    keys = 1000 if options.smoke else 100000
    growth = [10, 1000, 10000] if options.smoke else [10, 1000, 10000, 100000, 1000000]
    groups = [[f"{operation}/kes/{size}" for operation in ("Load", "Set", "Get")] for size in growth if size != keys]
    groups += [[f"{operation}/{library}/{keys}" for operation in dict.fromkeys(row[1] for row in ROWS)]
               for library in LIBRARIES]
    groups += [[f"ListMetadata/{keys}"], [f"LoadChunks/{keys}"]]
    results = {name: [] for group in groups for name in group}
    results["kes check"] = []
    runs = 1 if options.smoke else options.runs
    for run in range(runs):
        for names in groups if run % 2 == 0 else reversed(groups):
            if sys.stderr.isatty():
                print(f"bench: round {run + 1} of {runs}: {names[0]}".ljust(79), end="\r", file=sys.stderr)
            for name, record in run_benchmarks(options.build, names, options.smoke).items():
                results[name].append(record)
        results["kes check"].append({"real_time": check_command(options.build, 5 if options.smoke else 40)})
    if sys.stderr.isatty():
        print("".ljust(79), end="\r", file=sys.stderr)
    return keys, growth, results


def figures(results, name, counter=None):
    return [record[counter or "real_time"] for record in results[name]]


def number(value):
    return f"{value:.3g}" if value < 100 else f"{value:.0f}"


def spread(values):
    middle = statistics.median(values)
    return f"{number(middle)} ({number(min(values))} to {number(max(values))})"


def print_table(keys, results):
    print(f"{keys} keys: median (least to most), and in front of x how many times that of kes it is\n")
    print("| what | " + " | ".join(LIBRARIES) + " |")
    print("|---|" + "---|" * len(LIBRARIES))
    for title, operation, counter in ROWS:
        cells = []
        ours = statistics.median(figures(results, f"{operation}/kes/{keys}", counter))
        for library in LIBRARIES:
            values = figures(results, f"{operation}/{library}/{keys}", counter)
            ratio = "" if library == "kes" else f", {number(statistics.median(values) / ours)}x"
            cells.append(spread(values) + ratio)
        print(f"| {title} | " + " | ".join(cells) + " |")


def print_own(keys, growth, results):
    print("\n| kes alone | |\n|---|---|")
    print(f"| open a metadata database and list its {keys} records, ms | {spread(figures(results, f'ListMetadata/{keys}'))} |")
    print(f"| load {keys} keys from chunk files, ms | {spread(figures(results, f'LoadChunks/{keys}'))} |")
    print(f"| `kes check` of 100 lines, whole process, ms | {spread(figures(results, 'kes check'))} |")
    print("\n| keys | load, us a key | set one, us | get one, us |\n|---|---|---|---|")
    for size in growth:
        load = [1e3 * value / size for value in figures(results, f"Load/kes/{size}")]
        print(f"| {size} | {spread(load)} | {spread(figures(results, f'Set/kes/{size}'))} | "
              f"{spread(figures(results, f'Get/kes/{size}'))} |")


def main():
    options = arguments()
    keys, growth, results = collect(options)
    path = os.path.join(options.build, "bench", "results.json")
    with open(path, "w", encoding="utf-8") as file:
        json.dump(results, file, indent=1)
    print_table(keys, results)
    print_own(keys, growth, results)


main()
