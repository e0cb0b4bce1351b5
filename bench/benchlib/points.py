"""Solution files of the solvers, and the check of their points against the model file, by our own reader of MPS."""

import re
from math import fsum, inf, isfinite

from . import mps

FEASIBILITY = 1e-6  # a row or bound may be violated by this much, absolutely or relative to its side
INTEGRALITY = 1e-5
OBJECTIVE = 1e-6  # relative difference of what the log tells and what the point gives


def pairs(text):
    """Lines "name value ..."; anything else is passed over."""
    for line in text.splitlines():
        fields = line.split()
        if len(fields) > 1 and not line.startswith("#"):
            try:
                yield fields[0], float(fields[1])
            except ValueError:
                pass


def read_tarvex(text, _):
    return dict(pairs(text))


read_scip = read_tarvex  # its head has no number in the second field


def read_highs(text, _):
    """The block of columns; without a feasible point there is none."""
    found = re.search(r"^# Primal solution values\nFeasible\n.*?^# Columns \d+\n(.*?)^# Rows", text, re.MULTILINE | re.DOTALL)
    return dict(pairs(found[1])) if found else None


def read_cbc(text, _):
    """Number, name, value; "**" before what it found violated. The head tells of a point that is none."""
    head, _, lines = text.partition("\n")
    if head.startswith(("Infeasible", "Unbounded", "Integer infeasible")):
        return None
    return dict(pairs(re.sub(r"^\s*(\*\*)?\s*\d+\s+", "", lines, flags=re.MULTILINE)))


def read_glpsol(text, lp):
    """Columns by number. Status o and f are points."""
    if not re.search(r"^s mip \d+ \d+ [of] ", text, re.MULTILINE):
        return None
    values = [float(v) for v in re.findall(r"^j \d+ (\S+)", text, re.MULTILINE)]
    return dict(zip(lp.columns, values))


DIGITS = {"cbc": 1e-7}  # relative error of numbers in a solution file, where that matters
READERS = {"tarvex": read_tarvex, "scip": read_scip, "highs": read_highs, "cbc": read_cbc, "glpsol": read_glpsol}


def excess(value, low, high):
    """By how much a value leaves its range, absolutely or relative to the end it leaves, whichever is less."""
    beyond = max(low - value, value - high)
    end = low if low - value > value - high else high
    return max(0.0, beyond / max(1.0, abs(end))) if abs(end) < inf else 0.0


def column_excess(lp, j, value):
    semi = lp.kind[j] in (mps.SEMI_CONTINUOUS, mps.SEMI_INTEGER)
    return 0.0 if semi and abs(value) <= FEASIBILITY else excess(value, lp.lower[j], lp.upper[j])


def set_excess(kind, members, x):
    sizes = [abs(x[j]) for j in members]
    return min((max(sizes[:k] + sizes[k + kind:], default=0.0) for k in range(len(sizes))), default=0.0)


def violations(lp, x, error):
    """The largest of rows, bounds and sets, and the largest fraction of an integer column. error: of the values of x,
    relative."""
    terms = [[] for _ in lp.row_lower]
    for j, value in enumerate(x):
        if value:
            for p in range(lp.begin[j], lp.begin[j + 1]):
                terms[lp.index[p]].append(lp.value[p] * value)
    worst = [excess(fsum(row), lp.row_lower[i], lp.row_upper[i]) - error * fsum(map(abs, row)) for i, row in enumerate(terms)]
    worst += [column_excess(lp, j, value) for j, value in enumerate(x)]
    worst += [set_excess(kind, members, x) for kind, members in lp.sets]
    fractions = [abs(v - round(v)) for j, v in enumerate(x) if lp.kind[j] in (mps.INTEGER, mps.SEMI_INTEGER)]
    return max(worst, default=0.0), max(fractions, default=0.0)


def check(kind, path, model):
    """What the solution file of a solver of that kind tells: objective, violation and fraction of its point, or nothing."""
    try:
        with open(path, errors="replace") as file:
            text = file.read()
    except OSError:
        return {}
    lp = model.content()
    values = lp and READERS[kind](text, lp)
    if not values:
        return {}
    x = [values.get(name, 0.0) for name in lp.columns]
    if not all(map(isfinite, x)):
        return {"violation": inf, "fraction": 0.0}
    violation, fraction = violations(lp, x, DIGITS.get(kind, 0.0))
    objective = lp.offset + fsum(c * v for c, v in zip(lp.cost, x))
    return {"point_objective": objective, "violation": violation, "fraction": fraction}


def holds(record):
    """Whether the point of a record is one of the model, with the objective that the log tells."""
    if record["violation"] > FEASIBILITY or record["fraction"] > INTEGRALITY:
        return False
    said = record.get("objective")
    return said is None or abs(said - record["point_objective"]) <= OBJECTIVE * max(1.0, abs(said))
