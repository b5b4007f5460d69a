#!/usr/bin/python3
"""The orvvm report: for every member the library has, its accuracy against
MPFR and its speed against the alternatives a user would pick (glibc's scalar
functions, libmvec, SLEEF, a copy), as report/report.md and PNG plots.

tools/orvvm-report installs what is missing, builds, and runs this script;
run it directly with --build-dir to use a build that exists.  The two
programs it drives find the members themselves (build/tools/orvvm_accuracy
for accuracy, build/bench/orvvm_bench for speed), so the report grows with
the library.  docs/report.md explains the figures.
"""

import argparse
import datetime
import math
import os
import platform
import queue
import re
import shutil
import subprocess
import sys
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
KINDS = ["scalar", "scalar-O3", "libmvec", "sleef-sse2", "sleef-sse4", "copy"]
KIND_TITLES = {"scalar": "scalar loop", "scalar-O3": "loop -O3", "libmvec": "libmvec", "sleef-sse2": "SLEEF SSE2",
               "sleef-sse4": "SLEEF SSE4", "copy": "copy"}


def parse_args():
    p = argparse.ArgumentParser(
        prog="orvvm-report",
        description="Accuracy (against MPFR) and speed (against glibc, libmvec, SLEEF) of every orvvm member.")
    p.add_argument("--build-dir", default=os.path.join(ROOT, "build"), help="build directory (default build)")
    p.add_argument("--out", default=os.path.join(ROOT, "report"), help="output directory (default report)")
    p.add_argument("--members", default="", help="only members whose name matches this regular expression")
    p.add_argument("--samples", type=int, default=1024,
                   help="accuracy: random inputs per recorded range, besides the special values and "
                        "glibc's hard cases (default 1024; the accuracy test uses 8192)")
    p.add_argument("--budget", type=float, default=1.5,
                   help="accuracy: seconds per member at most (default 1.5; the inputs are taken from every "
                        "source in turn, so a member cut short still has some of each)")
    p.add_argument("--member-timeout", type=float, default=5.0,
                   help="accuracy: a member without a result after this many seconds is recorded as a timeout "
                        "(a reference that does not finish on some input; default 5)")
    p.add_argument("--plot-member", default="",
                   help="member whose error across its domain is plotted (default orvsExp_32f_A24 if the "
                        "library has it, else the first member)")
    p.add_argument("--points", type=int, default=4000, help="inputs per range of the error plot (default 4000)")
    p.add_argument("--sizes", default="1000,1000000", help="array lengths timed (default 1000,1000000)")
    p.add_argument("--special", type=float, default=0.01,
                   help="fraction of special elements of the special input, timed at the smallest size "
                        "(default 0.01; 0 leaves it out)")
    p.add_argument("--rounds", type=int, default=15,
                   help="speed: rounds in which a member and its alternatives take turns on the same arrays; "
                        "ratios are medians over the rounds (default 15)")
    p.add_argument("--round-ms", type=float, default=1.0,
                   help="speed: milliseconds of each runner's turn in a round (default 1)")
    p.add_argument("--jobs", type=int, default=2, help="processes measuring accuracy (default 2)")
    p.add_argument("--no-callgrind", action="store_true",
                   help="leave out the instruction counts (callgrind, which needs valgrind)")
    p.add_argument("--calls", type=int, default=4,
                   help="calls per benchmark counted by callgrind (default 4; the count does not vary)")
    p.add_argument("--started", type=float, default=0.0, help=argparse.SUPPRESS)
    return p.parse_args()


# ---- Progress on the terminal ------------------------------------------------

class Progress:
    """A bar redrawn in place on a terminal; elsewhere (a log, CI) a line
    every tenth of the way."""

    def __init__(self, title, total):
        self.title, self.total, self.done = title, max(total, 0), 0
        self.tty = sys.stderr.isatty()
        self.start = time.time()
        self.last_tenth = -1
        self.show("")

    def set_total(self, total):
        self.total = total

    def step(self, note="", count=1):
        self.done += count
        self.show(note)

    def show(self, note):
        total = max(self.total, self.done, 1)
        frac = self.done / total
        elapsed = time.time() - self.start
        if self.tty:
            width = 30
            bar = "#" * int(frac * width) + "." * (width - int(frac * width))
            line = f"\r{self.title:<9} [{bar}] {self.done}/{self.total} {elapsed:5.0f}s {note}"
            cols = shutil.get_terminal_size((100, 20)).columns
            sys.stderr.write(line[:cols - 1].ljust(cols - 1))
            sys.stderr.flush()
        elif self.total:
            tenth = int(frac * 10)
            if tenth != self.last_tenth:
                self.last_tenth = tenth
                sys.stderr.write(f"{self.title}: {self.done}/{self.total} ({elapsed:.0f}s)\n")
                sys.stderr.flush()

    def finish(self, note=""):
        self.show(note)
        if self.tty:
            sys.stderr.write("\n")
        sys.stderr.write(f"{self.title}: done in {time.time() - self.start:.0f}s\n")
        sys.stderr.flush()


def fail(message):
    sys.stderr.write(f"orvvm-report: {message}\n")
    sys.exit(1)


def read_lines(stream, tag, q):
    for line in iter(stream.readline, ""):
        q.put((tag, line.rstrip("\n")))
    q.put((tag, None))


# ---- Accuracy ------------------------------------------------------------------

ACC_FIELDS = ["member", "family", "type", "tier", "bound", "verdict", "max_ulp", "recorded_ulp", "min_bits",
              "samples", "planned", "inexact", "class_mismatches", "worst"]


def timeout_row(member, seconds):
    m = re.match(r"orvs(\w+?)_(\d+fc?)(?:_(A\d+))?$", member)
    family, typ, tier = (m.group(1), m.group(2), m.group(3) or "-") if m else ("", "", "")
    return {"member": member, "family": family, "type": typ, "tier": tier, "verdict": "timeout",
            "worst": f"no result within {seconds:g} s: a reference evaluation (MPFR/MPC) did not finish"}


class Shard:
    """One accuracy process: its members in order, and which one it is on."""

    def __init__(self, index, count, args, tool, q):
        self.index, self.count, self.args, self.tool, self.q = index, count, args, tool, q
        self.done, self.generation, self.current, self.since, self.proc = 0, -1, None, 0.0, None
        self.finished = False

    def start(self):
        self.generation += 1
        cmd = [self.tool, "--samples", str(self.args.samples), "--budget", str(self.args.budget),
               "--shard", f"{self.index}/{self.count}", "--skip", str(self.done)]
        if self.args.members:
            cmd += ["--members", self.args.members]
        self.proc = subprocess.Popen(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.current = None
        threading.Thread(target=read_lines, args=(self.proc.stdout, (self.index, self.generation), self.q),
                         daemon=True).start()

    def kill(self):
        self.proc.kill()
        self.proc.wait()


def measure_accuracy(args, tool):
    """Runs the accuracy tool in --jobs shards; one row per member.  A member
    that gives no result within --member-timeout seconds (a reference that
    does not finish) is recorded as a timeout, and its shard goes on with
    the next member."""
    q = queue.Queue()
    shards = [Shard(i, max(1, args.jobs), args, tool, q) for i in range(max(1, args.jobs))]
    for shard in shards:
        shard.start()
    progress = Progress("accuracy", 0)
    rows, total = {}, 0
    while not all(shard.finished for shard in shards):
        for shard in shards:
            if not shard.finished and shard.current and time.time() - shard.since > args.member_timeout:
                shard.kill()
                rows[shard.current] = timeout_row(shard.current, args.member_timeout)
                progress.step(f"{shard.current} (timeout)")
                shard.done += 1
                shard.start()
        try:
            (index, generation), line = q.get(timeout=0.5)
        except queue.Empty:
            continue
        shard = shards[index]
        if generation != shard.generation:
            continue  # a process that was stopped
        if line is None:
            err = shard.proc.stderr.read()
            if shard.proc.wait() != 0:
                fail(f"{tool} failed:\n{err}")
            shard.finished = True
        elif line.startswith("# members "):
            if generation == 0:
                total += int(line.split()[2])
                progress.set_total(total)
                progress.show("")
        elif line.startswith("# start "):
            shard.current, shard.since = line[len("# start "):], time.time()
        elif not line.startswith("member\t"):
            fields = line.split("\t")
            row = dict(zip(ACC_FIELDS, fields + [""] * (len(ACC_FIELDS) - len(fields))))
            rows[row["member"]] = row
            shard.done += 1
            shard.current = None
            progress.step(row["member"])
    progress.finish()
    return rows


def errors_across_domain(args, tool, member):
    try:
        out = subprocess.run([tool, "--errors", member, "--points", str(args.points), "--budget",
                              str(4 * args.budget)], capture_output=True, text=True,
                             timeout=8 * args.budget + 2 * args.member_timeout)
    except subprocess.TimeoutExpired:
        sys.stderr.write(f"orvvm-report: no error plot: the errors of {member} took too long\n")
        return None
    if out.returncode != 0:
        sys.stderr.write(f"orvvm-report: no error plot: {out.stderr.strip()}\n")
        return None
    info, ranges, points = {}, [], []
    for line in out.stdout.splitlines():
        if line.startswith("# member "):
            words = line.split()
            info = dict(zip(words[1::2], words[2::2]))
            info["bound"] = line.split(" bound ")[1].split(" recorded ")[0]
        elif line.startswith("# range "):
            ranges.append([float(v) for v in line.split()[3:]])
        elif line and not line.startswith("#"):
            f = line.split("\t")
            points.append((int(f[0]), [float(v) for v in f[1:-2]], float(f[-2]), float(f[-1])))
    return {"info": info, "ranges": ranges, "points": points}


# ---- Speed ---------------------------------------------------------------------

def measure_speed(args, bench, out_dir, large=False):
    """Rates and ratios of every member on its ordinary range, or with
    large=True on the large-argument range that its record declares (the
    trigonometric members' 1e6 to 1e20), with no special input; the files of
    that pass are named *_large."""
    suffix = "_large" if large else ""
    speed_tsv = os.path.join(out_dir, f"speed{suffix}.tsv")
    selection = [f"--orvvm_members={args.members}"] if args.members else []
    if large:
        selection += ["--orvvm_range=large", "--orvvm_special=0"]
        listing = subprocess.run([bench, "--orvvm_list", f"--orvvm_sizes={args.sizes}"] + selection,
                                 capture_output=True, text=True)
        if listing.returncode != 0 or not listing.stdout.strip():
            return []  # no selected member declares a large-argument range
    else:
        selection.append(f"--orvvm_special={args.special}")
    cmd = [bench, "--orvvm_progress", f"--orvvm_ratios_out={speed_tsv}", f"--orvvm_sizes={args.sizes}",
           f"--orvvm_rounds={args.rounds}", f"--orvvm_round_ms={args.round_ms}",
           f"--benchmark_out={os.path.join(out_dir, f'bench{suffix}.json')}", "--benchmark_out_format=json"]
    cmd += selection
    q = queue.Queue()
    with open(os.path.join(out_dir, f"bench{suffix}.txt"), "w") as console, \
            open(os.path.join(out_dir, f"bench{suffix}.log"), "w") as log:
        proc = subprocess.Popen(cmd, stdout=console, stderr=subprocess.PIPE, text=True)
        threading.Thread(target=read_lines, args=(proc.stderr, 0, q), daemon=True).start()
        progress = Progress("speed, large arguments" if large else "speed", 0)
        while True:
            _, line = q.get()
            if line is None:
                break
            m = re.match(r"progress (\d+)/(\d+) (.*)", line)
            if m:
                progress.set_total(int(m.group(2)))
                progress.step(m.group(3))
            else:
                log.write(line + "\n")
        if proc.wait() != 0:
            fail(f"{bench} failed; see {log.name}")
        progress.finish()
    rows = []
    with open(speed_tsv) as f:
        header = f.readline().rstrip("\n").split("\t")
        for line in f:
            rows.append(dict(zip(header, line.rstrip("\n").split("\t"))))
    return rows


def callgrind_counts(args, bench, out_dir):
    """Instructions per element of every member and its alternatives on
    ordinary data at the smallest size: one callgrind run over all the
    benchmarks, one count per benchmark (callgrind dumps after each call of
    orvvm_bench_measured(), and the benchmark program lists them in that
    order).  Written to instructions.tsv."""
    valgrind = shutil.which("valgrind")
    if not valgrind:
        fail("the instruction counts need valgrind (tools/install-deps valgrind), or pass --no-callgrind")
    size = min(int(s) for s in args.sizes.split(","))
    select = [f"--orvvm_sizes={size}", "--orvvm_special=0"]
    if args.members:
        select.append(f"--orvvm_members={args.members}")
    listing = subprocess.run([bench, "--orvvm_list"] + select, capture_output=True, text=True, check=True).stdout
    names = [line.split("\t") for line in listing.splitlines() if line]
    sys.stderr.write(f"callgrind: counting {len(names)} benchmarks...\n")
    cg_dir = os.path.join(out_dir, "callgrind")
    shutil.rmtree(cg_dir, ignore_errors=True)
    os.makedirs(cg_dir)
    outfile = os.path.join(cg_dir, "bench.out")
    run = subprocess.run([valgrind, "--tool=callgrind", "--toggle-collect=orvvm_bench_measured",
                          "--dump-after=orvvm_bench_measured", f"--callgrind-out-file={outfile}", bench,
                          "--orvvm_repeat=all", f"--orvvm_calls={args.calls}"] + select,
                         capture_output=True, text=True)
    if run.returncode != 0:
        fail(f"callgrind failed:\n{run.stderr[-2000:]}")
    done = [line.split("\t")[0] for line in run.stdout.splitlines() if line]
    if done != [n[0] for n in names]:
        fail("callgrind: the benchmarks counted are not the ones listed")
    results = []
    for k, (name, group, n, inp, kind, label) in enumerate(names, start=1):
        total = None
        with open(f"{outfile}.{k}") as f:
            for line in f:
                if line.startswith("totals:"):
                    total = int(line.split()[1])
        per_element = total / (args.calls * int(n)) if total is not None else float("nan")
        results.append({"name": name, "group": group, "size": n, "input": inp, "kind": kind, "label": label,
                        "ir_per_element": per_element})
    with open(os.path.join(out_dir, "instructions.tsv"), "w") as f:
        f.write("benchmark\tgroup\tsize\tinput\tkind\tfunction\tinstructions_per_element\n")
        for c in results:
            f.write(f"{c['name']}\t{c['group']}\t{c['size']}\t{c['input']}\t{c['kind']}\t{c['label']}\t"
                    f"{c['ir_per_element']:.3f}\n")
    return results


# ---- Setting ------------------------------------------------------------------

def first_line(cmd):
    try:
        return subprocess.run(cmd, capture_output=True, text=True).stdout.strip().splitlines()[0]
    except (OSError, IndexError):
        return "unknown"


def package_version(name):
    v = first_line(["dpkg-query", "-W", "-f=${Version}", name])
    return v if v and "no packages" not in v else "not installed"


def machine_info(tool):
    info = {}
    model, cores = "unknown", os.cpu_count()
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    model = line.split(":", 1)[1].strip()
                    break
    except OSError:
        pass
    info["Processor"] = f"{model}, {cores} logical cores"
    info["System"] = f"{platform.system()} {platform.release()}, glibc {platform.libc_ver()[1]}"
    try:
        info["Load at start"] = " / ".join(f"{v:.2f}" for v in os.getloadavg()) + " (1, 5, 15 min)"
    except OSError:
        pass
    build = dict(line.split("\t", 1) for line in
                 subprocess.run([tool, "--build-info"], capture_output=True, text=True).stdout.splitlines()
                 if "\t" in line)
    info["Compiler"] = build.get("compiler", "unknown")
    info["Library flags"] = f"`{build.get('library_flags', '?')}`"
    info["Scalar loops, benchmark code"] = f"`{build.get('bench_flags', '?')}` (plain user code, no fast-math)"
    info["Peers"] = (f"glibc {platform.libc_ver()[1]} (libm, libmvec), SLEEF {package_version('libsleef3')}, "
                     f"Google Benchmark {package_version('libbenchmark1debian')}, MPFR {package_version('libmpfr6')}, "
                     f"MPC {package_version('libmpc3')}")
    return info


# ---- Output ----------------------------------------------------------------------

def number(text):
    try:
        return float(text)
    except (TypeError, ValueError):
        return None


def geomean(values):
    values = [v for v in values if v and v > 0]
    return math.exp(sum(math.log(v) for v in values) / len(values)) if values else None


def fmt_ratio(v):
    if v is None:
        return "–"
    return f"{v:.2f}" if v < 10 else f"{v:.1f}"


def speed_index(rows):
    """(member, size, input, kind) -> row."""
    return {(r["member"], int(r["size"]), r["input"], r["kind"]): r for r in rows}


def plot_speed(rows, sizes, path):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    # One row per family and type: the geometric mean over its tiers.
    keys = sorted({(r["family"], r["type"]) for r in rows})
    data = {}
    for r in rows:
        if r["input"] != "ordinary" or r["kind"] == "orvvm" or not r["ratio"]:
            continue
        data.setdefault((r["family"], r["type"], int(r["size"]), r["kind"]), []).append(float(r["ratio"]))
    kinds = [k for k in KINDS if any(key[3] == k for key in data)]
    markers = {"scalar": "o", "scalar-O3": "P", "libmvec": "s", "sleef-sse2": "^", "sleef-sse4": "v", "copy": "D"}
    colors = {"scalar": "#1f77b4", "scalar-O3": "#9467bd", "libmvec": "#2ca02c", "sleef-sse2": "#ff7f0e",
              "sleef-sse4": "#d62728", "copy": "#7f7f7f"}
    height = max(3.5, 0.28 * len(keys) + 2.0)
    width = max(9.0, 6.0 * len(sizes))
    fig, axes = plt.subplots(1, len(sizes), figsize=(width, height), sharey=True, squeeze=False)
    all_values = [v for vs in data.values() for v in vs] or [1.0]
    lo = min(min(all_values) / 1.5, 0.5)
    hi = max(max(all_values) * 1.5, 2.0)
    for ax, size in zip(axes[0], sizes):
        for k in kinds:
            xs, ys = [], []
            for y, (fam, typ) in enumerate(keys):
                g = geomean(data.get((fam, typ, size, k), []))
                if g:
                    xs.append(g)
                    ys.append(y)
            ax.scatter(xs, ys, marker=markers[k], color=colors[k], label=KIND_TITLES[k], s=30, zorder=3)
        ax.axvline(1.0, color="black", linewidth=0.8)
        ax.set_xscale("log")
        ax.set_xlim(lo, hi)
        ax.set_title(f"{size:,} elements")
        ax.set_xlabel("orvvm speed / alternative speed (median; > 1: orvvm faster)")
        ax.grid(True, axis="x", which="both", alpha=0.3)
        ax.grid(True, axis="y", alpha=0.15)
    axes[0][0].set_yticks(range(len(keys)))
    axes[0][0].set_yticklabels([f"{f} {t}" for f, t in keys])
    axes[0][0].set_ylim(len(keys) - 0.5, -0.5)
    handles, labels = axes[0][0].get_legend_handles_labels()
    fig.suptitle("orvvm speed / alternative speed, per family and type (geometric mean over tiers; "
                 "above 1: orvvm is faster)", y=1 - 0.12 / height, fontsize=11, va="top")
    if handles:
        fig.legend(handles, labels, loc="upper center", bbox_to_anchor=(0.5, 1 - 0.45 / height),
                   ncol=len(handles), frameon=False)
    fig.tight_layout(rect=(0, 0, 1, 1 - 0.85 / height))
    fig.savefig(path, dpi=100)
    plt.close(fig)


def range_axis(ax, lo, hi, xs, ordinary):
    """Sets the x axis of one range's panel and returns how to map an input
    onto it: linear over the ordinary range; over a wide range logarithmic
    in the magnitude, both signs when the range holds zero (as signed
    decades from the smallest magnitude sampled, since matplotlib's symlog
    overflows across the whole binary64 range)."""
    span = max(abs(lo), abs(hi))
    small = min((abs(x) for x in xs if x != 0), default=span)
    if ordinary or span / max(small, 1e-300) < 1e4:
        ax.set_xlim(lo, hi)
        return lambda x: x
    if lo > 0 or hi < 0:
        ax.set_xscale("log")
        ax.set_xlim(abs(lo), abs(hi)) if lo > 0 else ax.set_xlim(abs(hi), abs(lo))
        ax.set_xlabel("|input|" if hi < 0 else "input")
        return abs
    base = math.log10(max(small, 1e-300))
    top = math.log10(span) - base

    def signed_decades(x):
        if abs(x) <= 10.0 ** base or x != x:
            return 0.0
        return math.copysign(min(math.log10(abs(x)) - base, top), x)

    ax.set_xlim(-top, top)
    exps = sorted({math.floor(math.log10(span))} | {round(base + top * k / 4) for k in range(1, 4)})
    ticks = [0.0] + [e - base for e in exps]
    ax.set_xticks([-t for t in reversed(ticks[1:])] + ticks)
    ax.set_xticklabels([f"-1e{e}" for e in reversed(exps)] + [f"±1e{round(base)}"] + [f"1e{e}" for e in exps])
    return signed_decades


def plot_errors(err, path):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    info, ranges, points = err["info"], err["ranges"], err["points"]
    n = len(ranges)
    fig, axes = plt.subplots(n, 1, figsize=(9, 3.1 * n + 0.6), squeeze=False)
    recorded = number(info.get("recorded"))
    bound_text = info.get("bound", "")
    bound_ulp = None
    m = re.match(r"< ([0-9.]+) ulp", bound_text)
    if m:
        bound_ulp = float(m.group(1))
    for r, ax in enumerate(axes[:, 0]):
        pts = [p for p in points if p[0] == r]
        lo, hi = ranges[r][0], ranges[r][1]
        to_x = range_axis(ax, lo, hi, [p[1][0] for p in pts], ordinary=(r == 0)) if lo < hi else (lambda x: x)
        xs = [to_x(p[1][0]) for p in pts]
        finite = [(x, p[2]) for x, p in zip(xs, pts) if math.isfinite(p[2])]
        if finite:
            ax.scatter([f[0] for f in finite], [f[1] for f in finite], s=2, alpha=0.5, color="#1f77b4",
                       rasterized=True)
        bad = [x for x, p in zip(xs, pts) if not math.isfinite(p[2])]
        if bad:
            ax.scatter(bad, [0] * len(bad), s=12, marker="x", color="red", label="class mismatch")
        if recorded is not None:
            ax.axhline(recorded, color="#ff7f0e", linewidth=1, linestyle="--", label=f"recorded {recorded:g} ulp")
        if bound_ulp is not None:
            ax.axhline(bound_ulp, color="red", linewidth=1, label=f"tier bound {bound_text}")
        bounds = ", ".join(f"[{ranges[r][2 * c]:.4g}, {ranges[r][2 * c + 1]:.4g}]" for c in range(len(ranges[r]) // 2))
        ax.set_title(("ordinary range " if r == 0 else f"range {r + 1} ") + bounds, fontsize=9)
        ax.set_ylabel("error (ulp)")
        ax.set_ylim(bottom=0)
        # Errors far beyond the bound (a failing member) on a log scale, so
        # that the small ones stay visible.
        limit = max(bound_ulp or 0, recorded or 0, 1.0)
        if finite and max(f[1] for f in finite) > 20 * limit:
            ax.set_yscale("symlog", linthresh=1.0)
        ax.grid(True, alpha=0.3)
        ax.legend(loc="upper right", fontsize=8)
    inputs = int(info.get("inputs", "1"))
    axes[-1, 0].set_xlabel("input" if inputs == 1 else "first input component (the others sampled alongside)")
    height = 3.1 * n + 0.6
    fig.suptitle(f"{info.get('member', '?')}: error against MPFR across its recorded ranges", fontsize=11,
                 y=1 - 0.1 / height, va="top")
    fig.tight_layout(rect=(0, 0, 1, 1 - 0.45 / height))
    fig.savefig(path, dpi=100)
    plt.close(fig)


def write_report(args, out_dir, accuracy, speed, err, plot_member, callgrind, info, timings, speed_large=()):
    sizes = [int(s) for s in args.sizes.split(",")]
    special_size = min(sizes)
    idx = speed_index(list(speed) + list(speed_large))
    large_members = sorted({r["member"] for r in speed_large})
    members = sorted(set(accuracy) | {r["member"] for r in speed})
    labels = {}
    for r in speed:
        if r["kind"] != "orvvm" and r["input"] == "ordinary":
            labels.setdefault((r["family"], r["type"]), {}).setdefault(r["kind"], set()).add(r["function"])

    def ratio(member, size, inp, kind):
        r = idx.get((member, size, inp, kind))
        return number(r["ratio"]) if r else None

    def rate(member, size, inp):
        r = idx.get((member, size, inp, "orvvm"))
        return number(r["orvvm_elem_per_ns"]) if r else None

    def ratio_cell(member, size, kind, inp="ordinary"):
        """The median ratio and, after it, half the interquartile range
        relative to it: 1.23 ±4%."""
        r = idx.get((member, size, inp, kind))
        med = number(r["ratio"]) if r else None
        if med is None:
            return fmt_ratio(None)
        q1, q3 = number(r.get("ratio_q1")), number(r.get("ratio_q3"))
        if q1 is None or q3 is None or med <= 0:
            return fmt_ratio(med)
        return f"{fmt_ratio(med)} ±{50 * (q3 - q1) / med:.0f}%"

    same_as = {r["member"]: r.get("same_as", "") for r in speed if r["kind"] == "orvvm" and r.get("same_as")}

    verdicts = [accuracy[m]["verdict"] for m in accuracy]
    partial = {m for m, a in accuracy.items()
               if number(a.get("samples")) is not None and number(a.get("planned"))
               and number(a["samples"]) < number(a["planned"])}
    lines = []
    w = lines.append
    w("# orvvm: accuracy and speed of every member\n")
    w(f"Made by `tools/orvvm-report` on {datetime.datetime.now().strftime('%Y-%m-%d %H:%M')}; "
      f"{timings}. How to read it and how it was measured: [docs/report.md](../docs/report.md).\n")
    w("## Setting\n")
    w("| | |\n|---|---|")
    for k, v in info.items():
        w(f"| {k} | {v} |")
    w(f"| Speed | arrays of {', '.join(f'{s:,}' for s in sizes)} elements from each member's ordinary range; "
      f"the member and its alternatives take turns on the same arrays in {args.rounds} rounds of about "
      f"{args.round_ms:g} ms each, timed by the thread's CPU clock; ratios are medians over the rounds; arrays "
      f"shorter than 65,536 elements slide over a pool of 65,536 distinct inputs; "
      f"{args.special:.0%} special elements in the special input ({special_size:,} elements) |")
    if large_members:
        w("| Speed, large arguments | the same sizes and rounds on inputs from the large-argument range "
          "that a member's record declares (every input at least 1e6 in magnitude; Sin and Cos: 1e6 to 1e20), "
          "against the same alternatives on the same arrays |")
    w(f"| Accuracy | special values, {args.samples} random inputs per recorded range, glibc's hard cases, "
      f"at most {args.budget:g} s per member; against MPFR/MPC |\n")
    w("## Summary\n")
    w(f"- Members: {len(members)}; accuracy: {verdicts.count('pass')} pass, "
      f"{verdicts.count('above-record')} above their recorded maximum, {verdicts.count('FAIL')} fail, "
      f"{verdicts.count('timeout')} timed out, {sum(v.startswith('no-') for v in verdicts)} without record "
      f"or reference.")
    if partial:
        w(f"- {len(partial)} members were measured on fewer inputs than planned, within the time budget of "
          f"{args.budget:g} s per member (marked * below).")
    for size in sizes:
        parts = []
        for kind in KINDS:
            g = geomean([ratio(m, size, "ordinary", kind) for m in members])
            if g:
                parts.append(f"{KIND_TITLES[kind]} {fmt_ratio(g)}")
        if parts:
            w(f"- Speed at {size:,} elements, geometric mean of orvvm / alternative over the members that have "
              f"one: " + ", ".join(parts) + ".")
    for size in sizes if large_members else []:
        parts = []
        for kind in KINDS:
            g = geomean([ratio(m, size, "large", kind) for m in large_members])
            if g:
                parts.append(f"{KIND_TITLES[kind]} {fmt_ratio(g)}")
        if parts:
            w(f"- Speed on large arguments at {size:,} elements ({len(large_members)} members), geometric mean "
              f"of orvvm / alternative: " + ", ".join(parts) + ".")
    kept = geomean([(rate(m, special_size, "special") or 0) / (rate(m, special_size, "ordinary") or 1)
                    for m in members if rate(m, special_size, "special")])
    if kept:
        w(f"- With {args.special:.0%} special elements, orvvm keeps {kept:.0%} of its speed "
          f"(geometric mean at {special_size:,} elements).")
    w("")
    w("## Figures\n")
    w("![Speed ratios per family](speed_by_family.png)\n")
    if plot_member:
        w(f"![Error of {plot_member} across its domain](error_{plot_member}.png)\n")
    w("## Members\n")
    w("Accuracy: the largest error measured (ulp of the exact result), the fewest correct bits, the tier's "
      "bound and the verdict (pass: within the tier and the maximum recorded next to the code). Speed: "
      "orvvm's elements per nanosecond and its speed divided by each alternative's, at "
      + " / ".join(f"{s:,}" for s in sizes) + " elements (above 1: orvvm is faster), the median over the rounds "
      "and half its interquartile range (±). Special: orvvm's speed "
      f"with {args.special:.0%} special elements relative to ordinary data, and against the scalar loop on "
      "the same special data.\n")
    head = ["member", "bound", "max ulp", "bits", "accuracy", "elem/ns"] + \
        [f"vs {KIND_TITLES[k]}" for k in KINDS] + ["special kept", "special vs scalar"]
    w("| " + " | ".join(head) + " |")
    w("|" + "|".join(["---"] * 5 + ["--:"] * (len(head) - 5)) + "|")
    for m in members:
        a = accuracy.get(m, {})
        bits = number(a.get("min_bits"))
        bits_text = "–" if bits is None else ("all" if bits >= 1e8 else f"{bits:.1f}")
        verdict = a.get("verdict", "not measured")
        if verdict in ("FAIL", "timeout"):
            verdict = f"**{verdict}**"
        if m in partial:
            verdict += "*"
        name = f"`{m}`" + (f" (= `{same_as[m]}`)" if m in same_as else "")
        cells = [name, a.get("bound", ""), a.get("max_ulp", "") or "–", bits_text, verdict]
        rates = [rate(m, s, "ordinary") for s in sizes]
        cells.append(" / ".join("–" if v is None else f"{v:.3g}" for v in rates))
        for kind in KINDS:
            vs = [ratio(m, s, "ordinary", kind) for s in sizes]
            cells.append("" if all(v is None for v in vs) else " / ".join(ratio_cell(m, s, kind) for s in sizes))
        sp, ordi = rate(m, special_size, "special"), rate(m, special_size, "ordinary")
        cells.append(f"{sp / ordi:.0%}" if sp and ordi else "")
        cells.append(fmt_ratio(ratio(m, special_size, "special", "scalar")) if sp else "")
        w("| " + " | ".join(cells) + " |")
    if large_members:
        w("\n## Large arguments\n")
        w("The members whose record declares a range of large arguments (every input at least 1e6 in "
          "magnitude; Sin and Cos: 1e6 to 1e20, where the reduction needs the long form), timed on inputs "
          "from that range beside the same alternatives on the same arrays. Columns as in the table above, "
          "at " + " / ".join(f"{s:,}" for s in sizes) + " elements; \"ordinary elem/ns\" repeats the rate on "
          "the ordinary range for comparison. Accuracy on these ranges is part of the maximum in the table "
          "above, which samples every recorded range.\n")
        kinds = [k for k in KINDS if any(ratio(m, sz, "large", k) for m in large_members for sz in sizes)]
        head = ["member", "elem/ns", "ordinary elem/ns"] + [f"vs {KIND_TITLES[k]}" for k in kinds]
        w("| " + " | ".join(head) + " |")
        w("|---|" + "|".join(["--:"] * (len(head) - 1)) + "|")
        for m in large_members:
            cells = [f"`{m}`"]
            for inp in ("large", "ordinary"):
                rates = [rate(m, s, inp) for s in sizes]
                cells.append(" / ".join("–" if v is None else f"{v:.3g}" for v in rates))
            for kind in kinds:
                vs = [ratio(m, s, "large", kind) for s in sizes]
                cells.append("" if all(v is None for v in vs) else
                             " / ".join(ratio_cell(m, s, kind, "large") for s in sizes))
            w("| " + " | ".join(cells) + " |")
    w("\n## Functions compared\n")
    w("Beside each member stands the fastest variant of each peer whose documented accuracy meets the member's "
      "tier: SLEEF's `u10` functions (below 1 ulp) for the top tiers `A24` and `A53`, its `u35` functions (below "
      "4 ulp) for the others, or the closest variant SLEEF has (`u05`, `u15`, the exact ones); libmvec has one "
      "variant per function (4 ulp documented), shown beside every tier; the glibc loops are built twice, as "
      "plain C (`-O2`, errno kept: the scalar loop) and as a user building for speed would (`-O3 "
      "-fno-math-errno`: loop -O3, where square roots and divisions vectorise). Members marked `(= ...)` in the "
      "members table are one computation with the member named: their figures differ only by noise.\n")
    w("| family | type | " + " | ".join(KIND_TITLES[k] for k in KINDS) + " |")
    w("|---|---|" + "---|" * len(KINDS))
    for (fam, typ) in sorted(labels):
        cells = [", ".join(f"`{x}`" for x in sorted(labels[(fam, typ)].get(k, []))) for k in KINDS]
        w(f"| {fam} | {typ} | " + " | ".join(cells) + " |")
    worst = [(m, accuracy[m]) for m in members if m in accuracy and accuracy[m]["verdict"] not in ("pass",)]
    if worst:
        w("\n## Members to look at\n")
        for m, a in worst:
            w(f"- `{m}`: {a['verdict']}: {a.get('worst', '')}")
    if partial:
        w("\n## Members measured on fewer inputs than planned\n")
        w(", ".join(f"`{m}` ({accuracy[m]['samples']} of {accuracy[m]['planned']})" for m in sorted(partial)))
    if callgrind:
        w(f"\n## Instructions per element (callgrind, {min(sizes):,} elements, ordinary input)\n")
        w("Counted by valgrind's callgrind over whole calls of each member and of each alternative on the same "
          "arrays: the same on every run, unlike times, so a change of speed can be told from noise. Callgrind "
          "emulates the x87 unit at double precision, so members that work in x87 extended precision may take "
          "other paths than on the processor. Every count is in `instructions.tsv`.\n")
        counts = {}
        for c in callgrind:
            counts.setdefault(c["group"], {})[(c["kind"], c["label"])] = c["ir_per_element"]
        kinds = [k for k in KINDS if any(c["kind"] == k for c in callgrind)]
        w("| member | orvvm | " + " | ".join(KIND_TITLES[k] for k in kinds) + " |")
        w("|---|--:|" + "--:|" * len(kinds))
        for c in callgrind:
            if c["kind"] != "orvvm":
                continue
            group = counts[c["group"]]
            cells = [f"`{c['label']}`", f"{c['ir_per_element']:.1f}"]
            for k in kinds:
                vs = [v for (kind, _label), v in group.items() if kind == k]
                cells.append(" / ".join(f"{v:.1f}" for v in vs))
            w("| " + " | ".join(cells) + " |")
    w("\n## Raw data\n")
    w("`accuracy.tsv` (one line per member), `speed.tsv` (rates, ratios and their quartiles), "
      "`instructions.tsv` (callgrind's counts per element), `bench.json` and `bench.txt` "
      "(Google Benchmark's own output, with every aggregate), `bench.log` (its context: CPU, caches, load)"
      + ("; the same for the large arguments as `speed_large.tsv`, `bench_large.json`, `bench_large.txt` and "
         "`bench_large.log`." if large_members else "."))
    with open(os.path.join(out_dir, "report.md"), "w") as f:
        f.write("\n".join(lines) + "\n")


def main():
    args = parse_args()
    t0 = time.time()
    tool = os.path.join(args.build_dir, "tools", "orvvm_accuracy")
    bench = os.path.join(args.build_dir, "bench", "orvvm_bench")
    for exe in (tool, bench):
        if not os.access(exe, os.X_OK):
            fail(f"{exe} is missing: build with -DORVVM_BUILD_BENCH=ON (tools/orvvm-report does)")
    out_dir = os.path.abspath(args.out)
    os.makedirs(out_dir, exist_ok=True)
    for old in os.listdir(out_dir):
        if old.startswith("error_") and old.endswith(".png"):
            os.remove(os.path.join(out_dir, old))
    info = machine_info(tool)

    accuracy = measure_accuracy(args, tool)
    with open(os.path.join(out_dir, "accuracy.tsv"), "w") as f:
        f.write("\t".join(ACC_FIELDS) + "\n")
        for m in sorted(accuracy):
            f.write("\t".join(accuracy[m].get(k, "") for k in ACC_FIELDS) + "\n")
    if not accuracy:
        fail("the library has no member matching the selection")
    plot_member = args.plot_member or ("orvsExp_32f_A24" if "orvsExp_32f_A24" in accuracy else sorted(accuracy)[0])
    err = errors_across_domain(args, tool, plot_member)
    if err is None:
        plot_member = ""

    speed = measure_speed(args, bench, out_dir)
    speed_large = measure_speed(args, bench, out_dir, large=True)
    callgrind = None if args.no_callgrind else callgrind_counts(args, bench, out_dir)

    sys.stderr.write("plots and table...\n")
    sizes = [int(s) for s in args.sizes.split(",")]
    plot_speed(speed, sizes, os.path.join(out_dir, "speed_by_family.png"))
    if err:
        plot_errors(err, os.path.join(out_dir, f"error_{plot_member}.png"))
    now = time.time()
    timings = f"measuring took {now - t0:.0f} s"
    if args.started:
        timings = f"{now - args.started:.0f} s in all, of which measuring {now - t0:.0f} s (the rest: packages " \
                  f"and build)"
    write_report(args, out_dir, accuracy, speed, err, plot_member, callgrind, info, timings, speed_large)
    for needed in ["report.md", "speed_by_family.png"] + ([f"error_{plot_member}.png"] if plot_member else []):
        if not os.path.getsize(os.path.join(out_dir, needed)):
            fail(f"{needed} is empty")
    if callgrind:
        sys.stderr.write(f"\ninstructions per element of {len(callgrind)} benchmarks: "
                         f"{os.path.join(out_dir, 'instructions.tsv')}\n")
    sys.stderr.write(f"\nreport: {os.path.join(out_dir, 'report.md')} ({timings})\n")


if __name__ == "__main__":
    main()
