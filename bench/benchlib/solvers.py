"""The programs that are compared: how each is called and how its log is read.

A solver has a label, a command(model, options, point) that gives an argument list (None: it cannot take this model; point:
the file for its solution, or None), and a parse(text) that gives a dictionary with status and, as far as the log tells,
objective, bound, nodes, iterations and the solve time that the program itself reports (solve_wall or solve_cpu, seconds).
All are asked for the same gap, and for feasibility within 1e-6. Without cuts, heuristics, presolve, or all of these and
symmetry and restarts (plain tree): as far as a program has switches; HiGHS always cuts at the root.
Statuses: optimal, infeasible, unbounded, inf_or_unbd, limit, unsupported, error.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

INFINITE = 1e20  # a value or bound of this magnitude is none
NUMBER = r"([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)"


def last(pattern, text):
    found = re.findall(pattern, text, re.MULTILINE)
    return found[-1] if found else None


def number(text):
    return None if text is None else float(text)


def first_status(text, table):
    """The status of the first line of the table that the log holds."""
    return next((status for mark, status in table if mark in text), "error")


def figures(text, **patterns):
    """The last number that each pattern finds in a log, where it finds one."""
    found = {name: last(pattern, text) for name, pattern in patterns.items()}
    return {name: float(value) for name, value in found.items() if value is not None and abs(float(value)) < INFINITE}


class Solver:
    points = None  # the kind of its solution files (points.READERS)

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

    points = "tarvex"

    STATUS = [("Optimal objective", "optimal"), ("Optimal solution found", "optimal"),
              ("Infeasible model", "infeasible"), ("Model is infeasible\n", "infeasible"),
              ("Unbounded model", "unbounded"), ("Model is unbounded", "unbounded"),
              ("Infeasible or unbounded model", "inf_or_unbd"), ("Model is infeasible or unbounded", "inf_or_unbd"),
              ("limit exceeded", "limit"), ("limit reached", "limit")]

    def ask_version(self):
        return self.said("--version").strip()

    def command(self, model, options, point=None):
        call = [self.path, f"TimeLimit={options.time_limit}", f"Threads={options.threads}", f"MIPGap={options.gap}"]
        if options.method != "default":
            call.append("LPMethod=" + {"primal": "0", "dual": "1"}[options.method])
        off = {"Presolve": options.presolve, "Cuts": options.cuts, "Heuristics": options.heuristics,
               "Symmetry": options.tree, "TARV_PAR_MIPLIM": options.tree}
        call += [name + "=0" for name, value in off.items() if value == "off"]
        call += ["ResultFile=" + point] if point else []
        return call + [word for word in options.set if word] + [model.plain]

    def parse(self, text):
        if text.rstrip().endswith("}"):
            return json.loads(text.rstrip().rsplit("\n", 1)[-1])
        objective = last(r"^(?:Optimal|Best) objective\s+" + NUMBER, text)
        solved = last(r"in " + NUMBER + r" iterations and " + NUMBER + " seconds", text)
        explored = last(r"^Explored .*\(" + NUMBER + r" simplex iterations\) in " + NUMBER, text)
        iterations, wall = solved or explored or (None, None)
        tree = figures(text, nodes=r"^Explored " + NUMBER + " nodes", bound="best bound " + NUMBER)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                "iterations": number(iterations), "solve_wall": number(wall), **tree}


class Clp(Solver):
    STATUS = [("Optimal objective", "optimal"), ("PrimalInfeasible objective", "infeasible"),
              ("DualInfeasible objective", "unbounded"), ("Stopped", "limit")]

    def ask_version(self):
        return last(r"version (\S+),", self.said("-quit")) or ""

    def command(self, model, options, point=None):
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
    points = "cbc"
    STATUS = [("Result - Optimal solution found", "optimal"), ("Result - Problem proven infeasible", "infeasible"),
              ("Result - Linear relaxation infeasible", "infeasible"), ("Result - Linear relaxation unbounded", "unbounded"),
              ("Problem is infeasible", "infeasible"), ("Problem is unbounded", "unbounded"),
              ("infeasible or unbounded", "inf_or_unbd"), ("Result - Stopped on", "limit"), ("Result - User ctrl-cuser", "limit"), ("Optimal objective", "optimal")]

    def ask_version(self):
        return last(r"Version: (\S+)", self.said("-quit")) or ""

    def command(self, model, options, point=None):
        call = [self.path, model.plain, "-seconds", str(options.time_limit), "-ratioGap", str(options.gap)]
        if options.threads > 1:
            call += ["-threads", str(options.threads)]
        if options.presolve == "off":
            call += ["-presolve", "off", "-preprocess", "off"]
        call += ["-cuts", "off"] if options.cuts == "off" else []
        call += ["-heuristicsOnOff", "off"] if options.heuristics == "off" else []
        if model.kind == "lp" and options.method != "default":
            return call + ["-" + options.method + "simplex"]
        return call + ["-solve"] + (["-solution", point] if point else [])

    def parse(self, text):
        objective = last(r"^Objective value:\s+" + NUMBER, text) or last(r"^Optimal objective " + NUMBER, text)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                "iterations": number(last(r"^Total iterations:\s+(\d+)", text)),
                **figures(text, nodes=r"^Enumerated nodes:\s+(\d+)", bound=r"^Lower bound:\s+" + NUMBER)}


class Glpsol(Solver):
    points = "glpsol"
    STATUS = [("MPS file processing error", "unsupported"), ("incorrect bounds", "infeasible"), ("INTEGER OPTIMAL SOLUTION FOUND", "optimal"), ("TIME LIMIT EXCEEDED", "limit"),
              ("HAS NO PRIMAL FEASIBLE", "infeasible"), ("HAS NO FEASIBLE", "infeasible"),
              ("HAS NO INTEGER FEASIBLE", "infeasible"), ("NO DUAL FEASIBLE SOLUTION", "inf_or_unbd"),
              ("LP HAS UNBOUNDED", "unbounded"), ("OPTIMAL LP SOLUTION FOUND", "optimal"),
              ("OPTIMAL SOLUTION FOUND BY LP PREPROCESSOR", "optimal")]

    def ask_version(self):
        return last(r"GLPK LP/MIP Solver,? v?(\S+)", self.said("--version")) or last(r"(\d+\.\d+)", self.said("--version")) or ""

    def command(self, model, options, point=None):
        call = [self.path, "--mps" if model.fixed_form else "--freemps", model.plain, "--tmlim", str(max(1, round(options.time_limit)))]
        if options.method != "default":
            call.append("--" + options.method)
        if options.presolve == "off":
            call.append("--nopresol")
        call += ["--write", point] if point else []
        return call + (["--mipgap", str(options.gap)] if model.kind == "mip" else [])

    def parse(self, text):
        if "Writing MIP solution" in text:  # logs give the constant another sign than files do, and lines vary
            objective = None
        else:
            objective = last(r"mip =\s+" + NUMBER, text) or last(r">>>>>\s+" + NUMBER, text) or last(r"obj =\s+" + NUMBER, text)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                "iterations": number(last(r"^[*#]?\s*(\d+): obj", text)), "solve_wall": number(last(r"Time used:\s+" + NUMBER, text)),
                **figures(text, nodes=r"\(\d+; (\d+)\)$")}


class Highs(Solver):
    """The program of HiGHS. Its options stand in a file of ours, which lives as long as we do."""

    points = "highs"
    STATUS = [("not supported by HiGHS", "unsupported"), ("have negative lower bounds", "unsupported"),
              ("inconsistent bound(s): infeasible", "infeasible"), ("Status            Optimal", "optimal"), ("Status            Infeasible", "infeasible"),
              ("Status            Unbounded", "unbounded"), ("Primal infeasible or unbounded", "inf_or_unbd"),
              ("Status            Time limit", "limit"), ("Model status        : Optimal", "optimal"),
              ("Model status        : Infeasible", "infeasible"), ("Model status        : Unbounded", "unbounded"),
              ("Model status        : Time limit", "limit")]

    def ask_version(self):
        return last(r"version (\S+)", self.said("--version")) or ""

    def command(self, model, options, point=None):
        wanted = {"threads": options.threads, "time_limit": options.time_limit, "mip_rel_gap": options.gap, "log_file": os.devnull,
                  "primal_feasibility_tolerance": 1e-6, "dual_feasibility_tolerance": 1e-6, "mip_feasibility_tolerance": 1e-6}
        if options.presolve != "default":
            wanted["presolve"] = options.presolve
        if options.method != "default" and model.kind == "lp":
            wanted |= {"solver": "simplex", "simplex_strategy": {"dual": 1, "primal": 4}[options.method]}
        if options.cuts == "off":
            wanted["mip_allow_cut_separation_at_nodes"] = "false"
        if options.heuristics == "off":
            wanted["mip_heuristic_effort"] = 0
        if options.tree == "off":
            wanted |= {"mip_allow_restart": "false", "mip_detect_symmetry": "false"}
        self.options = tempfile.NamedTemporaryFile("w", prefix="tarvex-bench-", suffix=".options")
        self.options.writelines(f"{name} = {value}\n" for name, value in wanted.items())
        self.options.flush()
        return [self.path, "--options_file", self.options.name, *(["--solution_file", point] if point else []), model.plain]

    def parse(self, text):
        objective = last(r"^  Primal bound\s+" + NUMBER, text) or last(r"^Objective value\s+: +" + NUMBER, text)
        return {"status": first_status(text, self.STATUS), "objective": number(objective),
                **figures(text, bound=r"^  Dual bound\s+" + NUMBER, nodes=r"^  Nodes\s+" + NUMBER,
                          iterations=r"^  LP iterations\s+" + NUMBER,
                          solve_wall=r"^(?:  Timing\s+|HiGHS run time\s+:\s+)" + NUMBER)}


class Scip(Solver):
    points = "scip"
    STATUS = [("[optimal solution found]", "optimal"), ("[gap limit reached]", "optimal"), ("[infeasible]", "infeasible"),
              ("[unbounded]", "unbounded"), ("[infeasible or unbounded]", "inf_or_unbd"), ("limit reached]", "limit")]

    def ask_version(self):
        return last(r"version (\S+)", self.said("--version")) or ""

    def command(self, model, options, point=None):
        words = [f"set limits time {options.time_limit} set limits gap {options.gap} set numerics feastol 1e-6"]
        off = {"presolving": options.presolve, "separating": options.cuts, "heuristics": options.heuristics}
        words += [f"set {part} emphasis off" for part, value in off.items() if value == "off"]
        words += ["set presolving maxrestarts 0"] if options.tree == "off" else []
        words += ["read", model.plain, "opt", f"write solution {point}" if point else "", "disp stat quit"]
        return [self.path, "-c", " ".join(words)]

    def parse(self, text):
        number_of = lambda name: rf"^{name}\s*:\s*" + NUMBER
        return {"status": first_status(text, self.STATUS),
                **figures(text, objective=number_of("Primal Bound"), bound=number_of("Dual Bound"),
                          nodes=number_of("Solving Nodes"), solve_wall=r"^Solving Time \(sec\)\s*:\s*" + NUMBER)}


class HighsOfScipy(Solver):
    """HiGHS as scipy carries it, in a child of its own; path is the Python that has scipy."""

    def ask_version(self):
        return "scipy " + self.said("-c", "import scipy; print(scipy.__version__)").strip()

    def command(self, model, options, point=None):
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


PEERS = {"clp": Clp, "cbc": Cbc, "glpsol": Glpsol, "highs": Highs, "scip": Scip}


def peers_folder():
    """Where programs that are not installed may lie."""
    here = os.path.dirname(os.path.abspath(__file__))
    return os.environ.get("TARVEX_PEERS") or os.path.abspath(os.path.join(here, "../../../shared/peers"))


def peer(label):
    """The installed peer of that name, or None. Without its program, HiGHS is that of scipy."""
    path = shutil.which(label) or shutil.which(label, path=peers_folder())
    if path:
        return PEERS[label](label, path)
    python = python_with_scipy() if label == "highs" else None
    return HighsOfScipy("highs-scipy", python) if python else None
