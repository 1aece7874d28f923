"""Runs the benchmarks side by side and prints one table: compare.py BUILD [--runs N] [--smoke].

Each round runs every benchmark once, each in a process of its own, forwards and backwards in turn, so that what
disturbs the machine for a while hits all alike. A figure is the median of the rounds.
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


def run_benchmark(build, name, smoke):
    """One benchmark in one process; its record as Google Benchmark gives it."""
    command = [os.path.join(build, "bin", "kes_bench"), f"--benchmark_filter=^{escape(name)}$", "--benchmark_format=json"]
    command.append(f"--benchmark_min_time={0.001 if smoke else 0.3}")
    output = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True).stdout
    records = json.loads(output)["benchmarks"]
    if len(records) != 1 or records[0].get("error_occurred"):
        sys.exit(f"bench: {name}: {records[0].get('error_message', 'no result') if records else 'no such benchmark'}")
    return records[0]


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
    names = [f"{operation}/{library}/{keys}" for library in LIBRARIES for operation in dict.fromkeys(r[1] for r in ROWS)]
    names += [f"{operation}/kes/{size}" for size in growth for operation in ("Load", "Set", "Get")]
    names += [f"ListMetadata/{keys}", f"LoadChunks/{keys}"]
    names = list(dict.fromkeys(names))
    results = {name: [] for name in names}
    results["kes check"] = []
    runs = 1 if options.smoke else options.runs
    for run in range(runs):
        for name in names if run % 2 == 0 else reversed(names):
            print(f"bench: round {run + 1} of {runs}: {name}".ljust(79), end="\r", file=sys.stderr)
            results[name].append(run_benchmark(options.build, name, options.smoke))
        results["kes check"].append({"real_time": check_command(options.build, 5 if options.smoke else 40)})
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
