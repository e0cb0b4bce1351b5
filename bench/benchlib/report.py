"""From JSON lines to figures: shifted geometric means, solved counts, wrong answers, ratios.

The time of a model is the median over its repeats. A model that a solver did not answer rightly counts with the
time limit; one whose form a solver does not know is left out. A model is small when every solver compared took
less than SMALL seconds; the shift is SHIFT_SMALL for small models and SHIFT_LARGE for the others. The ratio over
all is the geometric mean of the shifted ratios, each with the shift of its own class. Every collection has figures
of its own; MIPs and LPs of one collection do not mix. Memory is the largest resident size of the process.
"""

from math import exp, log
from statistics import median

SMALL = 1.0
SHIFT_NODES = 100.0
ENOUGH_NODES = 100  # for a rate that means something
SHIFT_SMALL, SHIFT_LARGE = 0.01, 1.0
WORST = 5
MEASURES = {
    "cpu": "user and system time of the whole process (start, reading, solve)",
    "wall": "elapsed time of the whole process (start, reading, solve)",
    "solve": "the solve alone as each program tells it (processor time by tarvex_probe, clp and highs, else elapsed)",
}


def seconds(record, measure):
    """The time of one run under a measure, or None when the program does not tell."""
    if record["solver"] == "highs-scipy":  # its process is mostly Python and our slow reader
        return record.get("solve_wall" if measure == "wall" else "solve_cpu")
    if measure == "cpu":
        return record["user"] + record["sys"]
    if measure == "wall":
        return record["wall"]
    return record.get("solve_cpu", record.get("solve_wall"))


class Table:
    """Median time, largest memory and verdict by model and solver."""

    def __init__(self, runs, limit, measure):
        self.limit = limit
        self.solvers = list(dict.fromkeys(run["solver"] for run in runs))
        self.models = list(dict.fromkeys(run["model"] for run in runs))
        self.mip = any(run["class"] == "mip" for run in runs)
        grouped = {}
        for run in runs:
            grouped.setdefault((run["model"], run["solver"]), []).append(run)
        self.time, self.verdict, self.memory, self.nodes, self.rate = {}, {}, {}, {}, {}
        for key, group in grouped.items():
            self.memory[key] = max(run["memory"] for run in group)
            counts = [run["nodes"] for run in group if run.get("nodes") is not None]
            if counts:
                self.nodes[key] = median(counts)
                spent = median([seconds(run, measure) or 0.0 for run in group])
                self.rate[key] = self.nodes[key] / spent if self.nodes[key] >= ENOUGH_NODES and spent > 0 else None
            bad = next((run["verdict"] for run in group if run["verdict"] not in ("right", "unchecked")), None)
            self.verdict[key] = bad or group[0]["verdict"]
            times = [seconds(run, measure) for run in group]
            if bad == "unsupported" or (not bad and None in times):
                self.time[key] = None
            elif bad:
                self.time[key] = limit
            else:
                self.time[key] = min(limit, median(times))

    def common(self, solvers):
        """Models with a time for each of these solvers."""
        return [m for m in self.models if all(self.time.get((m, s)) is not None for s in solvers)]

    def small(self, model, solvers):
        return not self.mip and all(self.time[model, s] < SMALL for s in solvers)


def shifted_mean(times, shift):
    return exp(sum(log(t + shift) for t in times) / len(times)) - shift if times else None


def ratio(table, models, a, b):
    """Geometric mean of shifted ratios of solver a to solver b."""
    logs = []
    for m in models:
        shift = SHIFT_SMALL if table.small(m, (a, b)) else SHIFT_LARGE
        logs.append(log((table.time[m, a] + shift) / (table.time[m, b] + shift)))
    return exp(sum(logs) / len(logs)) if logs else None


def cell(value, form="{:.3f}"):
    return "-" if value is None else form.format(value)


def counts(table, out):
    names = ["right", "unchecked", "limit", "wrong", "violated", "error", "crash", "unsupported"]
    out(f"{'solver':<14}{'models':>8}" + "".join(f"{n:>12}" for n in names))
    for s in table.solvers:
        verdicts = [table.verdict[m, s] for m in table.models if (m, s) in table.verdict]
        out(f"{s:<14}{len(verdicts):>8}" + "".join(f"{verdicts.count(n):>12}" for n in names))
    for (m, s), verdict in table.verdict.items():
        if verdict in ("wrong", "violated", "crash"):
            out(f"  {verdict}: {s} on {m}")


def means(table, out):
    solvers = [s for s in table.solvers if any(table.time.get((m, s)) is not None for m in table.models)]
    models = table.common(solvers)
    if not models:
        return
    parts = [("small", SHIFT_SMALL, [m for m in models if table.small(m, solvers)])]
    parts.append(("large", SHIFT_LARGE, [m for m in models if not table.small(m, solvers)]))
    out(f"\nshifted geometric means over the {len(models)} models that all of these took"
        f" (no right answer counts as {table.limit:g} s)")
    heads = "".join(f"{f'{name} ({len(part)}, shift {shift:g})':>26}" for name, shift, part in parts)
    out(f"{'solver':<14}{heads}{'memory MB mean':>18}{'largest':>10}")
    for s in solvers:
        row = [shifted_mean([table.time[m, s] for m in part], shift) for _, shift, part in parts]
        memory = [table.memory[m, s] for m in models]
        out(f"{s:<14}" + "".join(f"{cell(v, '{:.4f}'):>26}" for v in row)
            + f"{shifted_mean(memory, 0):>18.1f}{max(memory):>10.1f}")


def trees(table, out):
    """Nodes, and nodes a second."""
    solvers = [s for s in table.solvers if any(solver == s for _, solver in table.nodes)]
    solved = [m for m in table.models if all(table.verdict.get((m, s)) == "right" and (m, s) in table.nodes for s in solvers)]
    out(f"\nshifted geometric means: nodes (shift {SHIFT_NODES:g}) over the {len(solved)} models that all of these solved;"
        f" nodes a second of the time compared, over the models with {ENOUGH_NODES} nodes or more")
    for s in solvers:
        rates = [rate for (_, solver), rate in table.rate.items() if solver == s and rate]
        out(f"{s:<14}{cell(shifted_mean([table.nodes[m, s] for m in solved], SHIFT_NODES), '{:.1f}'):>14} nodes"
            f"{cell(shifted_mean(rates, 0), '{:.0f}'):>14} nodes/s over {len(rates)} models")


def pairs(table, out):
    """Every solver against the first: ratios (above 1: the first is slower), and where it does worst."""
    first = table.solvers[0]
    for other in table.solvers[1:]:
        models = table.common((first, other))
        if not models:
            continue
        both = [m for m in models if table.verdict[m, first] in ("right", "unchecked")
                and table.verdict[m, other] in ("right", "unchecked")]
        small = [m for m in models if table.small(m, (first, other))]
        large = [m for m in models if m not in set(small)]
        out(f"\n{first} / {other}: {cell(ratio(table, models, first, other))} over all {len(models)}"
            f" (small {cell(ratio(table, small, first, other))} of {len(small)},"
            f" large {cell(ratio(table, large, first, other))} of {len(large)});"
            f" {cell(ratio(table, both, first, other))} over the {len(both)} that both solved")
        total = [sum(table.time[m, s] for m in models) for s in (first, other)]
        memory = exp(sum(log(table.memory[m, first] / table.memory[m, other]) for m in both) / len(both)) if both else None
        out(f"  sum of times {total[0]:.2f} s / {total[1]:.2f} s; memory {cell(memory)}; {first} is worst on")
        worst = sorted(models, key=lambda m: -ratio(table, [m], first, other))[:WORST]
        for m in worst:
            out(f"    {m:<32} {table.time[m, first]:10.3f} s {table.time[m, other]:10.3f} s"
                f"   ratio {ratio(table, [m], first, other):8.2f}"
                f"   {table.memory[m, first]:8.1f} MB {table.memory[m, other]:8.1f} MB")


def print_report(head, runs, measure, out=print):
    out(f"compared: {MEASURES[measure]}")
    if any(run["solver"] == "highs-scipy" for run in runs):
        out("highs-scipy: only its solve is measured, not its process, whatever is compared")
    parts = dict.fromkeys((run["class"], collection(run["model"])) for run in runs)
    for kind, name in sorted(parts):
        section(kind, name, [run for run in runs if (run["class"], collection(run["model"])) == (kind, name)], head, measure, out)
    for kind in ("lp", "mip"):
        if sum(part[0] == kind for part in parts) > 1:
            section(kind, "all collections", [run for run in runs if run["class"] == kind], head, measure, out)


def collection(model):
    return model.split("/")[0] if "/" in model else "single files"


def section(kind, name, runs, head, measure, out):
    table = Table(runs, head["time_limit"], measure)
    out(f"\n== {name} ({kind}): {len(table.models)} models ==\n")
    counts(table, out)
    means(table, out)
    if table.nodes:
        trees(table, out)
    pairs(table, out)
