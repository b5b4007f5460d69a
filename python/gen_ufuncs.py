#!/usr/bin/python3
"""Writes the ufunc table of the orvvm Python package.

    gen_ufuncs.py include/orvvm.h tests/exports.tsv out.h

The table is derived, never written by hand: every prototype present in the
header is one member; the export table gives its family, element type,
tier and argument shape.  Members of one family become one ufunc per
accuracy level, with one inner loop per element type.  Nothing here knows a
family except by the two small maps below: the names NumPy already uses, and
the one output-order convention that differs from ours (modf).  A family
added to the library shows up in the package at the next build.

The output is C: a typed thunk per member (so the compiler checks each
prototype against its shape and type), the member records the inner loop
reads, and per ufunc the static arrays NumPy's ufunc constructor keeps.
"""
import re
import sys

# Families whose function NumPy (or, for the complex phase, numpy.angle)
# already names; every other family is named after itself, in lower case.
NUMPY_NAMES = {
    "Abs": "absolute", "Acos": "arccos", "Acosh": "arccosh", "Add": "add", "Arg": "angle",
    "Asin": "arcsin", "Asinh": "arcsinh", "Atan": "arctan", "Atan2": "arctan2",
    "Atanh": "arctanh", "Cbrt": "cbrt", "Ceil": "ceil", "Conj": "conjugate", "Cos": "cos",
    "Cosh": "cosh", "Div": "divide", "Exp": "exp", "Expm1": "expm1", "Floor": "floor",
    "Hypot": "hypot", "Inv": "reciprocal", "Ln": "log", "Log10": "log10", "Log1p": "log1p",
    "Modf": "modf", "Mul": "multiply", "Pow": "power", "Rint": "rint", "Sin": "sin",
    "Sinh": "sinh", "Sqr": "square", "Sqrt": "sqrt", "Sub": "subtract", "Tan": "tan",
    "Tanh": "tanh", "Trunc": "trunc",
}

# Families whose two results NumPy returns in the other order: numpy.modf
# gives the fractional part first, orvsModf writes the integral part first.
REVERSED_OUTPUTS = {"Modf"}

# Element types: NumPy's type number name, C type, real base, NumPy dtype.
TYPES = {
    "32f": ("NPY_FLOAT", "Orv32f", "32f", "float32"),
    "64f": ("NPY_DOUBLE", "Orv64f", "64f", "float64"),
    "32fc": ("NPY_CFLOAT", "Orv32fc", "32f", "complex64"),
    "64fc": ("NPY_CDOUBLE", "Orv64fc", "64f", "complex128"),
}
TYPE_ORDER = ["32f", "64f", "32fc", "64fc"]

# Accuracy levels, most accurate first, with the tier of each real base.
LEVELS = ["highest", "middle", "lowest"]
LEVEL_OF_TIER = {"A24": 0, "A53": 0, "A21": 1, "A50": 1, "A11": 2, "A26": 2}
BOUND_OF_TIER = {
    "A24": "below 1 ulp", "A53": "below 1 ulp",
    "A21": "below 4 ulp", "A50": "below 4 ulp",
    "A11": "at least 11 correct bits", "A26": "at least 26 correct bits",
    "-": "exact",
}

# Argument shapes: the ufunc's inputs and outputs (as element types of the
# member), and which ufunc operand each C pointer argument takes.  K takes
# its second input as the constant, by value.
def shape_layout(shape, t, family):
    real = TYPES[t][2]
    if shape == "U":
        return [t], [t], [0, 1], -1
    if shape == "B":
        return [t, t], [t], [0, 1, 2], -1
    if shape == "K":
        return [t, t], [t], [0, 2], 1
    if shape == "S":
        return [t], [t, t], ([0, 2, 1] if family in REVERSED_OUTPUTS else [0, 1, 2]), -1
    if shape == "M":
        return [t], [real], [0, 1], -1
    if shape == "P":
        return [real], [t], [0, 1], -1
    raise SystemExit(f"gen_ufuncs: unknown argument shape {shape!r}")


def c_arguments(shape, t):
    """The C parameter list a member of this shape and type must have."""
    c, r = TYPES[t][1], TYPES[TYPES[t][2]][1]
    return {
        "U": [f"const {c}*", f"{c}*"],
        "B": [f"const {c}*", f"const {c}*", f"{c}*"],
        "K": [f"const {c}*", c, f"{c}*"],
        "S": [f"const {c}*", f"{c}*", f"{c}*"],
        "M": [f"const {c}*", f"{r}*"],
        "P": [f"const {r}*", f"{c}*"],
    }[shape] + ["int32_t"]


def read_header(path):
    text = open(path).read()
    found = {}
    for m in re.finditer(r"ORVVM_API\s+OrvStatus\s+(orvs\w+)\s*\(([^)]*)\)", text):
        params = [re.sub(r"\s*\b\w+$", "", p.strip()).replace(" *", "*") for p in m.group(2).split(",")]
        found[m.group(1)] = params
    return found


def read_exports(path):
    rows = {}
    with open(path) as f:
        head = f.readline().rstrip("\n").split("\t")
        for line in f:
            if line.strip():
                row = dict(zip(head, line.rstrip("\n").split("\t")))
                rows[row["name"]] = row
    return rows


def choose(members, level):
    """The member of a family and type at a level: the tier of that level,
    or where the family has none (the exact and untiered members), the
    nearest more accurate one."""
    by_level = {}
    for row in members:
        if row["tier"] == "-":
            return row
        by_level[LEVEL_OF_TIER[row["tier"]]] = row
    for lv in range(level, -1, -1):
        if lv in by_level:
            return by_level[lv]
    raise SystemExit(f"gen_ufuncs: {members[0]['family']} has no member at or above level {level}")


def main(header, tsv, out):
    prototypes = read_header(header)
    exports = read_exports(tsv)
    missing = sorted(set(prototypes) - set(exports))
    if missing:
        raise SystemExit(f"gen_ufuncs: in the header but not in the export table: {missing}")

    members = [exports[n] for n in sorted(prototypes)]
    for row in members:
        want = c_arguments(row["shape"], row["type"])
        if prototypes[row["name"]] != want:
            raise SystemExit(f"gen_ufuncs: {row['name']} is declared ({', '.join(prototypes[row['name']])}), "
                             f"its shape {row['shape']} wants ({', '.join(want)})")
    index = {row["name"]: i for i, row in enumerate(members)}

    o = ["/* Generated by python/gen_ufuncs.py from include/orvvm.h and tests/exports.tsv."
         " Do not edit. */", ""]
    # Thunks: one uniform signature, the member's own types inside.
    for row in members:
        name, shape, t = row["name"], row["shape"], row["type"]
        params = c_arguments(shape, t)[:-1]
        args, p = [], 0
        for ctype in params:
            if ctype.endswith("*"):
                args.append(f"({ctype})a[{p}]")
                p += 1
            else:
                args.append(f"*(const {ctype}*)k")
        uses_k = "" if shape == "K" else "    (void)k;\n"
        o.append(f"static OrvStatus thunk_{name}(char* const* a, const void* k, int32_t n) {{\n"
                 f"{uses_k}    return {name}({', '.join(args)}, n);\n}}")
    o.append("")
    o.append("static const OrvMember orv_members[] = {")
    for row in members:
        ins, outs, cmap, konst = shape_layout(row["shape"], row["type"], row["family"])
        ops = ins + outs
        sizes = ", ".join(f"sizeof({TYPES[x][1]})" for x in ops)
        cm = ", ".join(str(x) for x in cmap)
        reports = 1 if row["type"] in ("32f", "64f") else 0
        warns = 1 if reports and row["warnings"] != "none" else 0
        o.append(f'    {{"{row["name"]}", thunk_{row["name"]}, {len(ins)}, {len(outs)}, {{{sizes}}}, '
                 f'{len(cmap)}, {{{cm}}}, {konst}, {reports}, {warns}}},')
    o.append("};")
    o.append("")

    families = {}
    for row in members:
        families.setdefault(row["family"], []).append(row)

    ufuncs = []
    names = {}
    for family in sorted(families):
        rows = families[family]
        name = NUMPY_NAMES.get(family, family.lower())
        if names.setdefault(name, family) != family:
            raise SystemExit(f"gen_ufuncs: {family} and {names[name]} would both be named {name}")
        by_type = {}
        for row in rows:
            by_type.setdefault(row["type"], []).append(row)
        for level, level_name in enumerate(LEVELS):
            loops = [choose(by_type[t], level) for t in TYPE_ORDER if t in by_type]
            shapes = {(len(shape_layout(r["shape"], r["type"], family)[0]),
                       len(shape_layout(r["shape"], r["type"], family)[1])) for r in loops}
            if len(shapes) != 1:
                raise SystemExit(f"gen_ufuncs: {family}'s members differ in their number of operands")
            nin, nout = shapes.pop()
            ufuncs.append((name, level_name, family, nin, nout, loops))

    for name, level_name, family, nin, nout, loops in ufuncs:
        tag = f"{name}_{level_name}"
        o.append(f"static PyUFuncGenericFunction funcs_{tag}[] = {{"
                 + ", ".join("orv_loop" for _ in loops) + "};")
        o.append(f"static void* data_{tag}[] = {{"
                 + ", ".join(f"(void*)&orv_members[{index[r['name']]}]" for r in loops) + "};")
        types = []
        for r in loops:
            ins, outs, _, _ = shape_layout(r["shape"], r["type"], family)
            types += [TYPES[x][0] for x in ins + outs]
        o.append(f"static const char types_{tag}[] = {{" + ", ".join(types) + "};")
        lines = [f"{name}: orvvm's {family}, element-wise, {level_name} accuracy level."]
        shapes = {r["shape"] for r in loops}
        if "K" in shapes:
            lines.append("The second input is the member's constant: one value (a scalar, or broadcast) "
                         "makes one call per run; an array of them is taken in stretches of equal values.")
        if "S" in shapes:
            lines.append("Returns two arrays, " + ("in NumPy's order (the member's second result first)."
                                                   if family in REVERSED_OUTPUTS else
                                                   "in the order of the member's results."))
        lines.append("")
        lines.append("Member per input type (bound it guarantees):")
        for r in loops:
            ins, outs, _, _ = shape_layout(r["shape"], r["type"], family)
            sig = ",".join(TYPES[x][3] for x in ins) + "->" + ",".join(TYPES[x][3] for x in outs)
            lines.append(f"    {sig}: {r['name']} ({BOUND_OF_TIER[r['tier']]})")
        doc = "\\n".join(line.replace('"', '\\"') for line in lines)
        o.append(f'static const char doc_{tag}[] = "{doc}";')
    o.append("")
    o.append("static const OrvUfunc orv_ufuncs[] = {")
    for name, level_name, family, nin, nout, loops in ufuncs:
        tag = f"{name}_{level_name}"
        o.append(f'    {{"{name}", "{level_name}", "{family}", {nin}, {nout}, {len(loops)}, funcs_{tag}, '
                 f'data_{tag}, types_{tag}, doc_{tag}}},')
    o.append("};")
    o.append("")
    with open(out, "w") as f:
        f.write("\n".join(o))


if __name__ == "__main__":
    if len(sys.argv) != 4:
        raise SystemExit(__doc__)
    main(*sys.argv[1:])
