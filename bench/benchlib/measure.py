"""One run of one program on one model, measured by the kernel's account of the child."""

import ctypes
import json
import os
import signal
import subprocess
import tempfile
import threading
import time

from . import points

GAP_OF_REFERENCE = 1e-4  # relative; references of MIPs are as good as the default gap
GRACE = 1.5  # a program is killed after this many time limits, plus GRACE_SECONDS
GRACE_SECONDS = 20
LOG_LIMIT = 1 << 20  # bytes of a log that are looked at, from its end

# Libraries below a peer must not start threads of their own.
ONE_THREAD = {name: "1" for name in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "MKL_NUM_THREADS")}


# The kernel counts what a process held before it executed a program as its own memory, and a child of ours begins as a
# copy of Python. So a shell, which is smaller than any solver, forks once more and leaves; the orphan comes to us, and
# becomes the program when we say so.
LAUNCH = ["/bin/sh", "-c", 'exec 3<&0; { read go <&3; exec "$@" 3<&- >&2; } & echo $!', "sh"]
PR_SET_CHILD_SUBREAPER = 36
ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def run(command, threads, time_limit):
    """user, sys, wall (seconds), memory (MB), exit code or minus the signal, whether killed, and the log's text."""
    processors = sorted(os.sched_getaffinity(0))[:threads]
    killed = threading.Event()
    with tempfile.TemporaryFile() as log:
        shell = subprocess.Popen(LAUNCH + command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=log,
                                 env={**os.environ, **ONE_THREAD}, start_new_session=True,
                                 preexec_fn=lambda: os.sched_setaffinity(0, processors))
        program = int(shell.stdout.readline())
        shell.wait()
        start = time.perf_counter()
        shell.communicate(b"go\n")

        def kill():
            killed.set()
            os.kill(program, signal.SIGKILL)

        timer = threading.Timer(time_limit * GRACE + GRACE_SECONDS, kill)
        timer.start()
        _, state, usage = os.wait4(program, 0)
        wall = time.perf_counter() - start
        timer.cancel()
        size = log.seek(0, os.SEEK_END)
        log.seek(max(0, size - LOG_LIMIT))
        text = log.read().decode(errors="replace")
    return {"user": usage.ru_utime, "sys": usage.ru_stime, "wall": wall, "memory": usage.ru_maxrss / 1024,
            "exit": os.waitstatus_to_exitcode(state), "killed": killed.is_set()}, text


def solve(solver, model, options):
    """The record of one run, ready to be written as a line of JSON; None when the solver does not take the model.
    Of a MIP the solver writes its solution, which is checked."""
    record = {"type": "run", "model": model.name, "class": model.kind, "solver": solver.label}
    with tempfile.TemporaryDirectory(prefix="tarvex-bench-") as folder:
        point = os.path.join(folder, "point.sol") if model.kind == "mip" and solver.points else None
        command = solver.command(model, options, point)
        if command is None:
            return None
        times, text = run(command, options.threads, options.time_limit)
        if point:
            record.update(points.check(solver.points, point, model))
    record.update(times)
    if times["killed"]:
        record["status"] = "limit"
    elif times["exit"] < 0:
        record["status"] = "crash"
    else:
        try:
            record.update(solver.parse(text))
        except (ValueError, json.JSONDecodeError):
            record["status"] = "error"
    if record["status"] in ("error", "crash"):
        record["last_words"] = text[-300:]
    record["verdict"] = judge(record, model, options)
    return record


def value_of(record):
    """The objective of the log, or that of the point when the log tells none."""
    said = record.get("objective")
    return record.get("point_objective") if said is None else said


def too_good(record, model, options):
    """Whether a point or a bound of a MIP, wherever the run ended, is beyond the optimum of the reference."""
    known = model.reference
    if model.kind != "mip" or not known or known["status"] != "optimal" or not known["objective"] or not model.content():
        return False
    truth, sign = float(known["objective"]), model.content().sign
    allowed = (options.tolerance + GAP_OF_REFERENCE) * max(1.0, abs(truth))
    best = value_of(record)
    bound = record.get("bound")
    return (best is not None and sign * (truth - best) > allowed) or (bound is not None and sign * (bound - truth) > allowed)


def judge(record, model, options):
    """right, wrong, violated (right, but for a point that violates the model), unchecked (no reference), or the status of a
    run that gave no answer."""
    status = record["status"]
    if status not in ("optimal", "infeasible", "unbounded", "inf_or_unbd", "limit"):
        return status
    if status in ("optimal", "limit") and "violation" in record and not points.holds(record):
        return "violated"
    if too_good(record, model, options):
        return "wrong"
    known = model.reference
    if status == "limit":
        return status
    if not known or known["status"] not in ("optimal", "infeasible", "unbounded"):
        return "unchecked"
    if known["status"] != "optimal":
        return "right" if status in (known["status"], "inf_or_unbd") else "wrong"
    objective = value_of(record)
    if status != "optimal" or objective is None:
        return "wrong"
    if not known["objective"]:
        return "unchecked"
    truth = float(known["objective"])
    allowed = options.tolerance + (options.gap if model.kind == "mip" else 0)
    return "right" if abs(objective - truth) <= allowed * max(1.0, abs(truth)) else "wrong"
