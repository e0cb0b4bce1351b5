"""The programs that are compared: how each is called and how its log is read.

A solver has a label, a command(model, options) that gives an argument list (None: it cannot take this model), and
a parse(text) that gives a dictionary with status and, as far as the log tells, objective, iterations and the solve
time that the program itself reports (solve_wall or solve_cpu, seconds).
Statuses: optimal, infeasible, unbounded, inf_or_unbd, limit, unsupported, error.
"""

import json
import os
import re
import shutil
import subprocess
import sys

NUMBER = r"([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)"


def last(pattern, text):
    found = re.findall(pattern, text, re.MULTILINE)
    return found[-1] if found else None


def number(text):
    return None if text is None else float(text)


def first_status(text, table):
    """The status of the first line of the table that the log holds."""
    return next((status for mark, status in table if mark in text), "error")


class Solver:
    def __init__(self, label, path):
        self.label, self.path = label, path
        self.version = self.ask_version()

    def ask_version(self):
        return ""

    def said(self, *arguments):
        done = subprocess.run([self.path, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace", timeout=60, check=False)
        return done.stdout


class Tarvex(Solver):
    """The command `tarvex`, or tarvex_probe, which ends with a line of JSON that has finer times."""

    STATUS = [("Optimal objective", "optimal"), ("Optimal solution found", "optimal"),
              ("Infeasible model", "infeasible"), ("Model is infeasible\n", "infeasible"),
              ("Unbounded model", "unbounded"), ("Model is unbounded", "unbounded"),
              ("Infeasible or unbounded model", "inf_or_unbd"), ("Model is infeasible or unbounded", "inf_or_unbd"),
              ("limit exceeded", "limit"), ("limit reached", "limit")]

    def ask_version(self):
        return self.said("--version").strip()

    def command(self, model, options):
        call = [self.path, f"TimeLimit={options.time_limit}", f"Threads={options.threads}", f"MIPGap={options.gap}"]
        if options.method != "default":
            call.append("LPMethod=" + {"primal": "0", "dual": "1"}[options.method])
        if options.presolve == "off":
            call.append("Presolve=0")
        return call + [word for word in options.set if word] + [model.plain]

    def parse(self, text):
        if text.rstrip().endswith("}"):
            return json.loads(text.rstrip().rsplit("\n", 1)[-1])
        objective = last(r"^(?:Optimal|Best) objective\s+" + NUMBER, text)
        solved = last(r"in " + NUMBER + r" iterations and " + NUMBER + " seconds", text)
        explored = last(r"^Explored .*\(" + NUMBER + r" simplex iterations\) in " + NUMBER, text)
        iterations, wall = solved or explored or (None, None)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                "iterations": number(iterations), "solve_wall": number(wall)}


class Clp(Solver):
    STATUS = [("Optimal objective", "optimal"), ("PrimalInfeasible objective", "infeasible"),
              ("DualInfeasible objective", "unbounded"), ("Stopped", "limit")]

    def ask_version(self):
        return last(r"version (\S+),", self.said("-quit")) or ""

    def command(self, model, options):
        if model.kind != "lp":
            return None
        call = [self.path, model.plain, "-seconds", str(options.time_limit)]
        if options.presolve != "default":
            call += ["-presolve", options.presolve]
        return call + [{"primal": "-primalsimplex", "dual": "-dualsimplex"}.get(options.method, "-solve")]

    def parse(self, text):
        line = last(r"objective " + NUMBER + r" - (\d+) iterations time " + NUMBER, text) or (None,) * 3
        return {"status": first_status(text, self.STATUS), "objective": number(line[0]),
                "iterations": number(line[1]), "solve_cpu": number(line[2])}


class Cbc(Solver):
    STATUS = [("Result - Optimal solution found", "optimal"), ("Result - Problem proven infeasible", "infeasible"),
              ("Result - Linear relaxation infeasible", "infeasible"), ("Result - Linear relaxation unbounded", "unbounded"),
              ("Result - Stopped on", "limit"), ("Result - User ctrl-cuser", "limit"), ("Optimal objective", "optimal")]

    def ask_version(self):
        return last(r"Version: (\S+)", self.said("-quit")) or ""

    def command(self, model, options):
        call = [self.path, model.plain, "-seconds", str(options.time_limit), "-ratioGap", str(options.gap)]
        if options.threads > 1:
            call += ["-threads", str(options.threads)]
        if options.presolve == "off":
            call += ["-presolve", "off", "-preprocess", "off"]
        if model.kind == "lp" and options.method != "default":
            return call + ["-" + options.method + "simplex"]
        return call + ["-solve"]

    def parse(self, text):
        objective = last(r"^Objective value:\s+" + NUMBER, text) or last(r"^Optimal objective " + NUMBER, text)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                "iterations": number(last(r"^Total iterations:\s+(\d+)", text))}


class Glpsol(Solver):
    STATUS = [("MPS file processing error", "unsupported"), ("INTEGER OPTIMAL SOLUTION FOUND", "optimal"), ("TIME LIMIT EXCEEDED", "limit"),
              ("HAS NO PRIMAL FEASIBLE", "infeasible"), ("HAS NO FEASIBLE", "infeasible"),
              ("HAS NO INTEGER FEASIBLE", "infeasible"), ("NO DUAL FEASIBLE SOLUTION", "inf_or_unbd"),
              ("LP HAS UNBOUNDED", "unbounded"), ("OPTIMAL LP SOLUTION FOUND", "optimal"),
              ("OPTIMAL SOLUTION FOUND BY LP PREPROCESSOR", "optimal")]

    def ask_version(self):
        return last(r"GLPK LP/MIP Solver,? v?(\S+)", self.said("--version")) or last(r"(\d+\.\d+)", self.said("--version")) or ""

    def command(self, model, options):
        call = [self.path, "--mps" if model.fixed_form else "--freemps", model.plain, "--tmlim", str(max(1, round(options.time_limit)))]
        if options.method != "default":
            call.append("--" + options.method)
        if options.presolve == "off":
            call.append("--nopresol")
        return call + (["--mipgap", str(options.gap)] if model.kind == "mip" else [])

    def parse(self, text):
        objective = last(r"mip =\s+" + NUMBER, text) or last(r">>>>>\s+" + NUMBER, text) or last(r"obj =\s+" + NUMBER, text)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                "iterations": number(last(r"^[*#]?\s*(\d+): obj", text)), "solve_wall": number(last(r"Time used:\s+" + NUMBER, text))}


class Highs(Solver):
    """HiGHS as scipy carries it, in a child of its own; path is the Python that has scipy."""

    def ask_version(self):
        return "scipy " + self.said("-c", "import scipy; print(scipy.__version__)").strip()

    def command(self, model, options):
        child = os.path.join(os.path.dirname(os.path.abspath(__file__)), "highs_child.py")
        wanted = {"presolve": options.presolve, "method": options.method, "time_limit": options.time_limit, "gap": options.gap}
        return [self.path, child, model.plain, json.dumps(wanted)]

    def parse(self, text):
        return json.loads(text.rstrip().rsplit("\n", 1)[-1])


def python_with_scipy():
    for python in (sys.executable, "/usr/bin/python3"):
        if python and subprocess.run([python, "-c", "import scipy.optimize._highs._highs_wrapper"], capture_output=True,
                                     check=False).returncode == 0:
            return python
    return None


PEERS = {"clp": Clp, "cbc": Cbc, "glpsol": Glpsol, "highs": Highs}


def peer(label):
    """The installed peer of that name, or None."""
    path = python_with_scipy() if label == "highs" else shutil.which(label)
    return PEERS[label](label, path) if path else None
