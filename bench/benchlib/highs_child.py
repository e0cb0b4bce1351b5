"""Runs HiGHS (the copy inside scipy) on one MPS file; the last line of output is its result as JSON.

    highs_child.py FILE OPTIONS-AS-JSON

Reading is done by our own slow reader and not measured: solve_wall and solve_cpu are those of the solve alone.
"""

import json
import resource
import sys
import time

import numpy
from scipy.optimize._highs._highs_wrapper import _highs_wrapper

import mps

STATUS = {7: "optimal", 8: "infeasible", 9: "inf_or_unbd", 10: "unbounded", 13: "limit", 14: "limit"}


def cpu():
    usage = resource.getrusage(resource.RUSAGE_SELF)
    return usage.ru_utime + usage.ru_stime


def main():
    wanted = json.loads(sys.argv[2])
    try:
        lp = mps.read(sys.argv[1])
        if lp.sets:
            raise mps.Unsupported("sets")
    except mps.Unsupported as reason:
        print(json.dumps({"status": "unsupported", "reason": str(reason)}))
        return
    options = {
        "sense": 1,
        "presolve": {"on": True, "off": False}.get(wanted["presolve"]),
        "time_limit": float(wanted["time_limit"]),
        "mip_rel_gap": wanted["gap"],
        "output_flag": wanted.get("log", False),
        "log_to_console": wanted.get("log", False),
    }
    if "iterations" in wanted:
        options["simplex_iteration_limit"] = wanted["iterations"]
    strategy = {"dual": 1, "primal": 4}.get(wanted["method"])
    if strategy and not any(lp.kind):  # with it HiGHS would solve the relaxation of a MIP
        options.update(solver="simplex", simplex_strategy=strategy)
    kinds = numpy.array(lp.kind, dtype=numpy.uint8) if any(lp.kind) else numpy.empty(0, dtype=numpy.uint8)
    arrays = [numpy.array(a, dtype=float) for a in (lp.row_lower, lp.row_upper, lp.lower, lp.upper)]
    cost = lp.sign * numpy.array(lp.cost)
    begin = numpy.array(lp.begin, dtype=numpy.int32)
    index = numpy.frombuffer(lp.index, dtype=numpy.int32)
    value = numpy.frombuffer(lp.value, dtype=float)
    wall, used = time.perf_counter(), cpu()
    result = _highs_wrapper(cost, begin, index, value, *arrays, kinds, options)
    wall, used = time.perf_counter() - wall, cpu() - used
    objective = result.get("fun")
    if objective is not None:
        objective = lp.sign * objective + lp.offset
    print(json.dumps({
        "status": STATUS.get(int(result["status"]), "error"),
        "objective": objective,
        "iterations": result.get("simplex_nit"),
        "solve_wall": wall,
        "solve_cpu": used,
    }))


main()
