"""Other solvers as whole programs on one small MPS file, their answers as the judge of bench/hostile reads them.

An answer is a text of numbers: status (in Tarvex's numbers), iterations, seconds, tolerance, relative rounding of the
numbers reported, objective, and under status 2 the values of columns, their reduced costs, and the multipliers of rows. All
at default tolerances.
"""

import os
import re
import shutil
import struct
import subprocess
import time

OPTIMAL, INFEASIBLE, INF_OR_UNBD, UNBOUNDED, TIME_LIMIT, NUMERIC = 2, 3, 4, 5, 9, 12
TOLERANCE = 1e-7  # the default of both, primal and dual
TIME_LIMIT_SECONDS = 10
KILL_SECONDS = 30


def run(call, folder):
    """What it prints, and seconds; in a folder where it may leave logs."""
    begin = time.perf_counter()
    try:
        done = subprocess.run(call, capture_output=True, text=True, errors="replace", check=False, cwd=folder,
                              timeout=KILL_SECONDS)
    except subprocess.TimeoutExpired:
        return "", KILL_SECONDS
    return done.stdout, time.perf_counter() - begin


def answer(status, iterations, seconds, rounding, values):
    return " ".join(repr(v) for v in (status, iterations, seconds, TOLERANCE, rounding, float("nan"), *values)) + "\n"


class Clp:
    """Its solution file is binary: two counts, the objective, then activities, row duals, values and reduced costs."""

    label = "clp"
    ROUNDING = 1e-17
    STATUS = [("Optimal objective", OPTIMAL), ("PrimalInfeasible objective", INFEASIBLE),
              ("DualInfeasible objective", UNBOUNDED), ("Stopped", TIME_LIMIT)]

    def __init__(self):
        self.path = shutil.which("clp")

    def solve(self, model):
        solution = model + ".clp"
        text, seconds = run([self.path, model, "-seconds", str(TIME_LIMIT_SECONDS), "-solve", "-saveSolution", solution],
                            os.path.dirname(model))
        status = next((status for mark, status in self.STATUS if mark in text),
                      TIME_LIMIT if seconds >= KILL_SECONDS else NUMERIC)
        iterations = re.findall(r"objective \S+ - (\d+) iterations", text)
        values = []
        if status == OPTIMAL and os.path.exists(solution):
            values = self.read(solution)
        if os.path.exists(solution):
            os.remove(solution)
        return answer(status, int(iterations[-1]) if iterations else 0, seconds, self.ROUNDING, values)

    @staticmethod
    def read(path):
        with open(path, "rb") as file:
            data = file.read()
        rows, columns = struct.unpack("=ii", data[:8])
        numbers = struct.unpack(f"={1 + 2 * rows + 2 * columns}d", data[8:8 + 8 * (1 + 2 * rows + 2 * columns)])
        duals = numbers[1 + rows:1 + 2 * rows]
        return numbers[1 + 2 * rows:] + duals


class Highs:
    label = "highs"
    ROUNDING = 1e-14  # values are text of about 15 digits
    STATUS = {"Optimal": OPTIMAL, "Infeasible": INFEASIBLE, "Unbounded": UNBOUNDED,
              "Primal infeasible or unbounded": INF_OR_UNBD, "Time limit reached": TIME_LIMIT}

    def __init__(self, path):
        self.path = path

    def solve(self, model):
        solution, settings = model + ".sol", model + ".set"
        with open(settings, "w") as file:
            file.write(f"threads = 1\ntime_limit = {TIME_LIMIT_SECONDS}\nsolution_file = {solution}\n")
        text, seconds = run([self.path, "--options_file", settings, model], os.path.dirname(model))
        said = re.findall(r"^Model status\s*:\s*(.*\S)", text, re.MULTILINE)
        status = self.STATUS.get(said[-1], NUMERIC) if said else (TIME_LIMIT if seconds >= KILL_SECONDS else NUMERIC)
        iterations = re.findall(r"^Simplex\s+iterations:\s*(\d+)", text, re.MULTILINE)
        values = self.read(solution) if status == OPTIMAL else []
        for path in (solution, settings):
            if os.path.exists(path):
                os.remove(path)
        return answer(status, int(iterations[-1]) if iterations else 0, seconds, self.ROUNDING, values)

    @staticmethod
    def read(path):
        with open(path) as file:
            text = file.read()
        blocks = re.findall(r"^# (Columns|Rows) \d+\n((?:\S+ \S+\n)*)", text, re.MULTILINE)
        lists = [[float(line.split()[1]) for line in block.splitlines()] for _, block in blocks]
        return [*lists[0], *lists[2], *lists[3]] if len(lists) >= 4 else []


def find(labels, highs):
    peers = {"clp": Clp(), "highs": Highs(highs)}
    for label in labels:
        if label not in peers or not peers[label].path:
            raise SystemExit(f"no peer {label}")
    return [peers[label] for label in labels]
