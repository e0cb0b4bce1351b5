"""A small MPS reader, for peers that take arrays instead of files.

Reads free MPS, and fixed MPS when a name holds blanks. Knows NAME, OBJSENSE, OBJNAME, ROWS, COLUMNS with integer
markers, RHS, RANGES, BOUNDS, SOS (SETS) and ENDATA; any other section raises Unsupported.
"""

from array import array
from math import inf

INFINITE = 1e20  # a bound of this magnitude is no bound
FIELDS = ((1, 3), (4, 12), (14, 22), (24, 36), (39, 47), (49, 61))  # of fixed MPS
CONTINUOUS, INTEGER, SEMI_CONTINUOUS, SEMI_INTEGER = range(4)


class Unsupported(Exception):
    """The file holds something this reader does not know."""


class Lp:
    """min sign * (c x) + offset, row_lower <= A x <= row_upper, lower <= x <= upper; columns compressed."""

    def __init__(self):
        self.sign = 1
        self.offset = 0.0
        self.rows = {}  # name -> row number
        self.columns = {}  # name -> column number
        self.cost, self.kind = [], []
        self.begin, self.index, self.value = [0], array("i"), array("d")
        self.lower, self.upper = [], []
        self.row_lower, self.row_upper = [], []
        self.sets = []  # (type, columns in the order of their weights)


def has_blank_names(lines):
    """Whether the file can only be read as fixed MPS: a name in ROWS or COLUMNS holds a blank."""
    section = ""
    for line in lines:
        if line[:1] not in (" ", "\t"):
            section = line.split()[0].upper() if line.split() else section
            if section == "RHS":
                return False
        elif section == "ROWS" and len(line.split()) > 2:
            return True
        elif section == "COLUMNS" and len(line.split()) not in (3, 5):
            return True
    return False


GAPS = [k for k in range(61) if not any(a <= k < b for a, b in FIELDS)]


def fits_fixed(lines):
    """Whether every data line keeps to the columns of fixed MPS."""
    return not any(line[:1] in (" ", "\t") and ("\t" in line or any(line[k : k + 1].strip() for k in GAPS))
                   for line in lines)


def fixed_fields(line, section):
    line = line.expandtabs().ljust(61)
    fields = [line[a:b].strip() for a, b in FIELDS]
    if section == "ROWS":
        return fields[:2]
    if section == "BOUNDS":
        return [f for f in fields[:4]]
    while fields and not fields[-1]:
        fields.pop()
    return fields[1:]


class Reader:
    def __init__(self, lines):
        self.lp = Lp()
        self.fixed = has_blank_names(lines)
        self.sense = {}  # row number -> L, G or E
        self.ignored = set()  # free rows but the objective
        self.objective = None
        self.wanted_objective = None
        self.integer = False
        self.column = None
        self.bounded = set()  # integer columns that a bound has touched
        self.upper_given = set()
        section = ""
        for line in lines:
            if not line.strip() or line[0] == "*":
                continue
            if line[0] not in " \t":
                section = self.heading(line)
                if section == "ENDATA":
                    break
                continue
            fields = fixed_fields(line, section) if self.fixed else line.split()
            getattr(self, "read_" + section.lower())(fields)
        self.close_column()
        self.finish()

    def heading(self, line):
        words = line.split()
        section = words[0].upper()
        if section == "OBJSENSE" and len(words) > 1:
            self.read_objsense(words[1:])
        if section not in ("NAME", "OBJSENSE", "OBJNAME", "ROWS", "COLUMNS", "RHS", "RANGES", "BOUNDS", "SOS", "SETS", "ENDATA"):
            raise Unsupported("section " + section)
        return section

    def read_name(self, fields):
        raise Unsupported("text under NAME")

    def read_objsense(self, fields):
        self.lp.sign = -1 if fields[0].upper().startswith("MAX") else 1

    def read_objname(self, fields):
        self.wanted_objective = fields[0]

    def read_rows(self, fields):
        kind, name = fields[0].upper(), fields[1]
        if kind == "N":
            if self.objective is None and self.wanted_objective in (None, name):
                self.objective = name
            else:
                self.ignored.add(name)
            return
        lp = self.lp
        i = lp.rows[name] = len(lp.rows)
        self.sense[i] = kind
        lp.row_lower.append(-inf if kind == "L" else 0.0)
        lp.row_upper.append(inf if kind == "G" else 0.0)

    def close_column(self):
        if self.column is not None:
            self.lp.begin.append(len(self.lp.index))

    def read_columns(self, fields):
        lp = self.lp
        if len(fields) > 1 and "'MARKER'" in fields:
            self.integer = "'INTORG'" in fields
            return
        if fields[0] != self.column:
            self.close_column()
            self.column = fields[0]
            lp.columns[self.column] = len(lp.cost)
            lp.cost.append(0.0)
            lp.kind.append(INTEGER if self.integer else CONTINUOUS)
            lp.lower.append(0.0)
            lp.upper.append(inf)
        for name, text in zip(fields[1::2], fields[2::2]):
            i = lp.rows.get(name)
            if i is not None:
                lp.index.append(i)
                lp.value.append(float(text))
            elif name == self.objective:
                lp.cost[-1] += float(text)

    @staticmethod
    def pairs(fields):
        """Pairs of name and number, behind a set name that may be missing."""
        if len(fields) % 2:
            fields = fields[1:]
        return [(name, float(text)) for name, text in zip(fields[::2], fields[1::2])]

    def read_rhs(self, fields):
        lp = self.lp
        for name, value in self.pairs(fields):
            i = lp.rows.get(name)
            if i is None:
                if name == self.objective:
                    lp.offset = -value
                continue
            if self.sense[i] != "G":
                lp.row_upper[i] = value
            if self.sense[i] != "L":
                lp.row_lower[i] = value

    def read_ranges(self, fields):
        lp = self.lp
        for name, value in self.pairs(fields):
            i = lp.rows.get(name)
            if i is None:
                continue
            if self.sense[i] == "L" or (self.sense[i] == "E" and value < 0):
                lp.row_lower[i] = lp.row_upper[i] - abs(value)
            else:
                lp.row_upper[i] = lp.row_lower[i] + abs(value)

    def read_sos(self, fields):
        if fields[0].upper() in ("S1", "S2"):
            self.lp.sets.append((int(fields[0][1]), []))
        else:
            name, weight = fields[-1].split(":") if ":" in fields[-1] else fields[-2:]
            self.lp.sets[-1][1].append((float(weight), self.lp.columns[name]))

    read_sets = read_sos

    def bound_fields(self, fields):
        """Type, column, value of a bound whose set name may be missing."""
        kind = fields[0].upper()
        fields = [f for f in fields[1:] if f]
        bare = kind in ("FR", "MI", "PL", "BV")
        if bare and fields[-1] in self.lp.columns:
            return kind, fields[-1], 0.0
        if bare:
            return kind, fields[-2], 0.0
        return kind, fields[-2], float(fields[-1])

    def read_bounds(self, fields):
        lp = self.lp
        kind, name, value = self.bound_fields(fields)
        j = lp.columns.get(name)
        if j is None:
            return
        self.bounded.add(j)
        if kind in ("LI", "UI", "BV"):
            lp.kind[j] = INTEGER
        if kind == "SI":
            lp.kind[j] = SEMI_INTEGER
        if kind == "SC":
            lp.kind[j] = SEMI_INTEGER if lp.kind[j] == INTEGER else SEMI_CONTINUOUS
        if kind == "BV":
            lp.lower[j], lp.upper[j] = 0.0, 1.0
        if kind in ("LO", "LI", "FX"):
            lp.lower[j] = value
        if kind in ("UP", "UI", "FX", "SC", "SI"):
            lp.upper[j] = value
            if value < 0 and lp.lower[j] == 0 and kind not in ("FX", "SC", "SI"):
                lp.lower[j] = -inf
        if kind in ("FR", "MI"):
            lp.lower[j] = -inf
        if kind in ("FR", "PL"):
            lp.upper[j] = inf

    def finish(self):
        lp = self.lp
        for j, kind in enumerate(lp.kind):
            if kind == INTEGER and j not in self.bounded:
                lp.upper[j] = 1.0
        for bounds in (lp.lower, lp.upper, lp.row_lower, lp.row_upper):
            for k, value in enumerate(bounds):
                if abs(value) >= INFINITE:
                    bounds[k] = inf if value > 0 else -inf
        lp.sets = [(kind, [j for _, j in sorted(members)]) for kind, members in lp.sets]


def read(path):
    """The model in a plain MPS file, as an Lp."""
    with open(path, encoding="latin-1") as file:
        return Reader([line.rstrip("\n\r") for line in file]).lp
