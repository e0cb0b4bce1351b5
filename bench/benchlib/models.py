"""Model files: finding them, what is known about them, unpacking them."""

import bz2
import csv
import gzip
import os
import re
import shutil
import tempfile

from . import mps

SUFFIXES = (".mps", ".mps.gz", ".mps.bz2")
MIP_MARKS = re.compile(r"'INTORG'|^ *(BV|LI|UI|SC)\s|^(SOS|SETS)", re.MULTILINE)


class Model:
    def __init__(self, path, root):
        self.path = path  # as found, perhaps compressed
        inside = os.path.relpath(path, root)
        self.name = os.path.basename(path) if inside.startswith("..") else inside
        for suffix in sorted(SUFFIXES, key=len, reverse=True):
            if self.name.endswith(suffix):
                self.name = self.name[: -len(suffix)]
                break
        self.reference = None  # row of reference.csv, or None
        self.plain = None  # unpacked file, once there is one
        self.kind = None  # lp or mip
        self.fixed_form = None  # keeps to the columns of fixed MPS; known once unpacked
        self.read = None  # what our own reader makes of the unpacked file

    def content(self):
        """The model as our own reader reads it, or None when it cannot."""
        if self.read is None:
            try:
                self.read = mps.read(self.plain)
            except (mps.Unsupported, ValueError, LookupError):
                self.read = False
        return self.read or None


def instances_root():
    here = os.path.dirname(os.path.abspath(__file__))
    return os.environ.get("TARVEX_INSTANCES") or os.path.abspath(os.path.join(here, "../../../shared/instances"))


def find(words, root):
    """Models named by files, folders, collections below root ("netlib") or single members ("netlib/afiro")."""
    found = []
    for word in words:
        place = word if os.path.exists(word) else os.path.join(root, word)
        if os.path.isdir(place):
            found += sorted(os.path.join(place, f) for f in os.listdir(place) if f.endswith(SUFFIXES))
        else:
            file = next((place + end for end in ("",) + SUFFIXES if os.path.isfile(place + end)), None)
            if file is None:
                raise SystemExit(f"no such model, folder or collection: {word} (looked below {root} too)")
            found.append(file)
    models = [Model(path, root) for path in dict.fromkeys(found)]
    add_references(models, root)
    return models


def add_references(models, root):
    rows = {}
    try:
        with open(os.path.join(root, "reference.csv"), newline="") as file:
            for row in csv.DictReader(file):
                rows[row["file"].split(".mps")[0]] = row
    except OSError:
        pass
    for model in models:
        model.reference = rows.get(model.name)
        if model.reference:
            model.kind = model.reference["class"]


class Workshop:
    """A temporary folder outside the project with every model unpacked, so that reading is alike for all."""

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="tarvex-bench-")
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.folder, ignore_errors=True)

    def unpack(self, model):
        if model.plain:
            return
        opener = {".gz": gzip.open, ".bz2": bz2.open}.get(os.path.splitext(model.path)[1])
        if opener is None:
            model.plain = os.path.abspath(model.path)
        else:
            model.plain = os.path.join(self.folder, model.name.replace("/", "-") + ".mps")
            with opener(model.path, "rb") as packed, open(model.plain, "wb") as plain:
                shutil.copyfileobj(packed, plain)
        with open(model.plain, encoding="latin-1") as file:
            text = file.read()
        model.fixed_form = mps.fits_fixed(text.splitlines())
        if model.kind is None:
            model.kind = "mip" if MIP_MARKS.search(text) else "lp"

    def discard(self, model):
        """Gives the room of an unpacked copy back."""
        model.read = None
        if model.plain and model.plain.startswith(self.folder):
            os.remove(model.plain)
            model.plain = None
