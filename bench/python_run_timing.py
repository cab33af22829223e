"""What a call of orvane.run from Python costs against the same call in C++.

Times orvane.run on the example parameter files (CPU time of the process, the
median of REPEATS repetitions of the mean over CALLS calls), runs the C++
benchmark bench_python on the same files and options, and prints both medians
and their ratio (docs/performance.md, "Python module").

    PYTHONPATH=build/python /usr/bin/python3 bench/python_run_timing.py build/bench/bench_python

Run from the source folder (the examples are read from ./examples).
"""
import json
import statistics
import subprocess
import sys
import time

import orvane

FILES = {"Pr3plus": "examples/Pr3plus-LaF3.par", "Nd3plus": "examples/Nd3plus-LaF3.par",
         "Er3plus": "examples/Er3plus-LaF3.par"}
OPTIONS = {"all": {}, "energies": {"vectors": False, "derivatives": False}}
REPEATS = 15
CALLS = 20


def python_median_ms(params, options):
    orvane.run(params, **options)  # tables generated outside the timing
    means = []
    for _ in range(REPEATS):
        start = time.process_time()
        for _ in range(CALLS):
            orvane.run(params, **options)
        means.append((time.process_time() - start) / CALLS * 1e3)
    return statistics.median(means)


def cpp_medians_ms(program):
    out = subprocess.run([program, f"--benchmark_repetitions={REPEATS}", "--benchmark_report_aggregates_only=true",
                          "--benchmark_format=json"], check=True, capture_output=True, text=True).stdout
    return {b["run_name"].split("/")[1]: b["cpu_time"] for b in json.loads(out)["benchmarks"]
            if b.get("aggregate_name") == "median"}


def main():
    cpp = cpp_medians_ms(sys.argv[1])
    print(f"{'case':<20} {'C++ ms':>10} {'Python ms':>10} {'ratio':>7}")
    for ion, path in FILES.items():
        params = orvane.ParameterSet.read(path)
        for kind, options in OPTIONS.items():
            case = f"{ion}_{kind}"
            python = python_median_ms(params, options)
            print(f"{case:<20} {cpp[case]:>10.3f} {python:>10.3f} {python / cpp[case]:>7.3f}")


if __name__ == "__main__":
    main()
