"""Linear programs made from seeds: relaxations of the generator's families, spoilt in ways that presolve lives on.

The generator is the module gen_models.py: FAMILIES, build(name, seed, size), and models held by rows and columns. Its
families are clean; a spoilt model also has repeated and scaled rows and columns, chains of equations of two columns,
rows with one entry, free and fixed columns, and now and then a bound that makes it infeasible or a cost that leaves it
unbounded. What such a model should give is not known: settings are compared with each other on it.
"""

import importlib.util
import os
from math import inf, isinf
from random import Random

MEDIUM_EVERY = 10  # so many models are one of medium size
PLAIN_EVERY = 4  # ... one that stays as its family makes it


def load_generator(folder):
    path = os.path.join(folder, "gen_models.py")
    if not os.path.exists(path):
        return None
    spec = importlib.util.spec_from_file_location("gen_models", path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def relax(m):
    m.kind = ["continuous"] * len(m.kind)
    m.sets = []


def rows_of(m):
    rows = [[] for _ in m.rhs]
    for j, entries in enumerate(m.entries):
        for i, a in entries:
            rows[i].append((j, a))
    return rows


def repeat_rows(m, rng):
    rows = rows_of(m)
    for i in rng.sample(range(len(rows)), max(1, len(rows) // 10)):
        f = rng.choice((1, -1, 2, -3, 0.5, 0.1))
        sense = m.sense[i] if f > 0 or m.sense[i] == "E" else {"L": "G", "G": "L"}[m.sense[i]]
        if m.span[i] is None:
            m.row("u", [(j, f * a) for j, a in rows[i]], sense, f * m.rhs[i] + rng.choice((0, 0, 0, 1 if sense == "L" else -1)) * (sense != "E"))


def repeat_columns(m, rng):
    for j in rng.sample(range(len(m.cost)), max(1, len(m.cost) // 10)):
        f = rng.choice((1, -1, 2, -3, 0.5, 0.1))
        lower, upper = rng.choice(((0, inf), (0, 5), (-3, 4), (-inf, 2), (-2, inf)))
        k = m.col("v", f * m.cost[j] + rng.choice((0, 0, 1, -0.5)), lower, upper)
        m.entries[k] = [(i, f * a) for i, a in m.entries[j]]


def chains(m, rng):
    for _ in range(rng.randint(1, 4)):
        x = rng.randrange(len(m.cost))
        for _ in range(rng.randint(1, 6)):
            lower, upper = rng.choice(((-inf, inf), (-inf, inf), (-500, inf), (-500, 500), (-inf, 30)))
            y = m.col("w", rng.choice((0, 0, 1, -1)), lower, upper)
            m.row("t", [(x, rng.choice((1, -1, 2, 3))), (y, rng.choice((1, -1, -2, 7)))], "E", rng.choice((0, 0, 3, -4)))
            for i in rng.sample(range(len(m.rhs) - 1), min(2, len(m.rhs) - 1)):
                m.entries[y].append((i, rng.choice((1, -1, 2))))
            x = y


def bounds(m, rng):
    for j in rng.sample(range(len(m.cost)), max(1, len(m.cost) // 20)):
        shape = rng.choice(("free", "boxed", "negative", "row", "row", "fixed"))
        lower, upper = m.lower[j], m.upper[j]
        if shape == "free":
            m.lower[j], m.upper[j] = -inf, inf
        elif shape == "fixed":
            m.lower[j] = m.upper[j] = lower if not isinf(lower) else 0
        elif shape == "boxed":
            m.lower[j], m.upper[j] = (0 if isinf(lower) else lower), rng.choice((3, 10, 200)) + max(0, 0 if isinf(lower) else lower)
        elif shape == "negative":
            m.lower[j], m.upper[j] = -inf, rng.choice((0, 5, 1e6))
        else:
            m.row("s", [(j, rng.choice((1, -1, 2.5)))], rng.choice("LLG"), rng.choice((0, 4, 20, 1000)))


def costs(m, rng):
    for j in rng.sample(range(len(m.cost)), max(1, len(m.cost) // 10)):
        m.cost[j] = rng.choice((0, -m.cost[j], 1, 0.001))


def scales(m, rng):
    factor = [1.0] * len(m.rhs)
    for i in rng.sample(range(len(factor)), len(factor) // 5):
        factor[i] = rng.choice((1e-3, 0.7, 12.5, 1e4))
    m.rhs = [b * f for b, f in zip(m.rhs, factor)]
    m.span = [None if s is None else s * f for s, f in zip(m.span, factor)]
    m.entries = [[(i, a * factor[i]) for i, a in entries] for entries in m.entries]


SPOILS = (repeat_rows, repeat_columns, chains, bounds, costs, scales)


def short(value):
    """As many digits as a field of the file holds."""
    return value if value is None or isinf(value) else float(f"{value:.6g}")


def tidy(m):
    for name in ("cost", "lower", "upper", "rhs", "span"):
        setattr(m, name, [short(value) for value in getattr(m, name)])
    for j, entries in enumerate(m.entries):
        total = {}
        for i, a in entries:
            total[i] = total.get(i, 0) + a
        m.entries[j] = [(i, short(a)) for i, a in total.items() if a != 0]


def write(generator, number, folder):
    """Writes model `number`; its name and file."""
    families = list(generator.FAMILIES)
    family, seed = families[number % len(families)], number // len(families)
    size = "MEDIUM" if seed % MEDIUM_EVERY == MEDIUM_EVERY - 1 else "SMALL"
    m = generator.build(family, seed, size)
    relax(m)
    plain = seed % PLAIN_EVERY == 0
    if not plain:
        rng = Random(number)
        for spoil in rng.sample(SPOILS, rng.randint(1, 3)):
            spoil(m, rng)
        tidy(m)
    name = f"{family}-{seed}" + ("" if plain else "-spoilt")
    path = os.path.join(folder, name + ".mps")
    with open(path, "w") as file:
        m.write(file)
    return name, path
