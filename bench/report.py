#!/usr/bin/env python3
"""Writes the performance report from the benchmarks' JSON results:
    bench/report.py RESULTS_DIR DOCS_DIR
reads RESULTS_DIR/xml.json, requests.json and burst.json (as scripts/bench leaves them), fills
the tables of bench/performance.md.in into DOCS_DIR/performance.md and draws its plots into
DOCS_DIR/perf/ with gnuplot. Each figure is the median of the repetitions."""

import datetime
import json
import os
import platform
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
PARSERS = ["CXmlDoc", "pugixml", "libxml2", "tinyxml2", "memchr"]
SIZES = {0: "10 KB", 1: "1 MB", 2: "20 MB"}
DIRECTIONS = ["width", "depth", "attributes"]
FACTORS = [1, 10, 100]
GROWTH_BASE = 10  # tree number of the first growth tree, as in RequestBench.cpp

# Requests on gen-tree's trees: benchmark, what it is, its target in parses, its floor.
REQUESTS = [
    ("AdapterCount", "0x2110 adapter count", 1.2, None),
    ("DriveStatus", "0x2131 drive status", 1.5, "FloorAdapterCut"),
    ("LogicalDriveCount", "0x2150 logical drive count", None, None),
    ("Smart", "0x2125 SMART of all drives", 2.0, None),
    ("Replaceable", "0x212A customer replaceable parts", 2.0, None),
    ("ExportXml", "0x21D0 the tree as XML", 3.0, "FloorExportXml"),
    ("ExportJson", "0x21D0 the tree as JSON", 3.0, "FloorExportJson"),
    ("RawTree", "0xF020 the cleaned raw tree", 3.0, None),
]
GROWING = ["Smart", "Replaceable", "ExportXml", "ExportJson", "RawTree", "DiskStatus"]
FLOORS = [
    ("FloorAdapterCut", "the snapshot parsed, the adapter cut out and parsed", "DriveStatus"),
    ("FloorExportXml", "the snapshot parsed, one walk reading every start tag and writing its "
     "markup, the answer copied", "ExportXml"),
    ("FloorExportJson", "the same, the written tree parsed and walked once more", "ExportJson"),
    ("FloorPollingCycle", "a cycle's work in line: the text copied and parsed, its MDC map",
     "PollingCycle"),
]


def load(path):
    """Median entries by run name, and the context of the run."""
    if not os.path.exists(path):
        return {}, {}
    with open(path) as f:
        data = json.load(f)
    medians, plain = {}, {}
    for entry in data.get("benchmarks", []):
        name = entry.get("run_name", entry["name"])
        if entry.get("run_type") == "aggregate":
            if entry.get("aggregate_name") == "median":
                medians[name] = entry
        else:
            plain.setdefault(name, entry)
    plain.update(medians)
    return plain, data.get("context", {})


def seconds(entry, key="cpu_time"):
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[entry["time_unit"]]
    return entry[key] * scale


def fmt(value, digits=2):
    if value is None:
        return "-"
    if value >= 100:
        return f"{value:.0f}"
    if value >= 10:
        return f"{value:.1f}"
    return f"{value:.{digits}f}"


def fmt_time(t):
    if t < 1e-3:
        return f"{t * 1e6:.1f} us"
    if t < 1:
        return f"{t * 1e3:.2f} ms"
    return f"{t:.2f} s"


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + "---|" * len(header)]
    lines += ["| " + " | ".join(str(c) for c in row) + " |" for row in rows]
    return "\n".join(lines)


def sh(command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=False).stdout
    except OSError:
        return ""


def machine(context):
    cpu = re.search(r"Model name:\s*(.+)", sh(["lscpu"]))
    memory = re.search(r"MemTotal:\s*(\d+)", open("/proc/meminfo").read())
    release = re.search(r'PRETTY_NAME="(.+)"', open("/etc/os-release").read())
    compiler = sh(["g++", "--version"]).splitlines()
    versions = []
    for package in ["libpugixml-dev", "libxml2-dev", "libtinyxml2-dev", "libbenchmark-dev"]:
        version = sh(["dpkg-query", "-W", "-f=${Version}", package]).strip()
        if version:
            versions.append(f"{package.removesuffix('-dev')} {version}")
    load = context.get("load_avg", [])
    return "\n".join([
        f"- CPU: {cpu.group(1).strip() if cpu else platform.processor()}, "
        f"{os.cpu_count()} cores as the system counts them",
        f"- Memory: {int(memory.group(1)) / 1024 / 1024:.0f} GiB" if memory else "- Memory: -",
        f"- System: {release.group(1) if release else platform.platform()}, "
        f"{compiler[0] if compiler else 'g++'}, the build's RelWithDebInfo flags (-O2)",
        f"- Libraries (Debian packages): {', '.join(versions)}",
        f"- Load average when the request benchmarks began: "
        f"{', '.join(f'{x:.2f}' for x in load) if load else '-'}",
        f"- Written by `scripts/bench` on {datetime.date.today().isoformat()}",
    ])


class Report:
    def __init__(self, results):
        self.xml, _ = load(os.path.join(results, "xml.json"))
        self.req, self.context = load(os.path.join(results, "requests.json"))
        burst_path = os.path.join(results, "burst.json")
        self.burst = json.load(open(burst_path)) if os.path.exists(burst_path) else None
        self.targets = []  # (target, measured, met)

    # ---- parsing
    def parse_entry(self, parser, size, fresh):
        return self.xml.get(f"BM_Parse_{parser}/bytes:{size}/fresh:{fresh}/manual_time")

    def parse_sizes(self):
        sizes = set()
        for name in self.xml:
            m = re.match(r"BM_Parse_CXmlDoc/bytes:(\d+)/fresh:0", name)
            if m:
                sizes.add(int(m.group(1)))
        return sorted(sizes)

    def parse_table(self, fresh):
        rows, pugi_ratios, floor_ratios = [], [], []
        for size in self.parse_sizes():
            cells = {}
            for parser in PARSERS:
                entry = self.parse_entry(parser, size, fresh)
                cells[parser] = entry
            ours, pugi, floor = cells["CXmlDoc"], cells["pugixml"], cells["memchr"]
            if not ours:
                continue
            label = f"{ours['doc_bytes'] / 1024:.0f} KiB"
            row = [label]
            for parser in PARSERS:
                entry = cells[parser]
                row.append(f"{entry['bytes_per_second'] / 1e6:.0f}" if entry else "-")
            ratio = pugi["bytes_per_second"] and ours["bytes_per_second"] / pugi["bytes_per_second"]
            to_floor = ours["bytes_per_second"] / floor["bytes_per_second"] if floor else None
            pugi_ratios.append(ratio)
            if to_floor:
                floor_ratios.append(to_floor)
            row += [fmt(ratio), fmt(to_floor),
                    f"{ours.get('faults', 0):.0f} / {pugi.get('faults', 0):.0f}"]
            rows.append(row)
        mode = "fresh" if fresh else "reused"
        if pugi_ratios:
            self.targets.append((f"CXmlDoc parse at least 1.3 times pugixml, memory {mode}",
                                 f"{min(pugi_ratios):.2f} to {max(pugi_ratios):.2f}",
                                 min(pugi_ratios) >= 1.3))
        if floor_ratios and not fresh:
            self.targets.append(("CXmlDoc parse at least half the memchr floor",
                                 f"{min(floor_ratios):.2f} to {max(floor_ratios):.2f}",
                                 min(floor_ratios) >= 0.5))
        return table(["document"] + [f"{p} MB/s" for p in PARSERS] +
                     ["CXmlDoc / pugixml", "CXmlDoc / memchr", "page faults a parse (CXmlDoc / pugixml)"],
                     rows)

    def index_table(self):
        rows, worst = [], 0
        for size in self.parse_sizes():
            entry = self.parse_entry("CXmlDoc", size, 0)
            if entry and "elements" in entry:
                worst = max(worst, entry["index_alloc_B_per_elem"])
                rows.append([f"{entry['doc_bytes'] / 1024:.0f} KiB", f"{entry['elements']:.0f}",
                             f"{entry['index_B_per_elem']:.0f}",
                             f"{entry['index_alloc_B_per_elem']:.1f}"])
        if rows:
            self.targets.append(("at most 32 bytes of index per element",
                                 f"{worst:.1f} allocated", worst <= 32.5))
        return table(["document", "elements", "bytes a record", "bytes allocated an element"], rows)

    def walk_table(self):
        rows = []
        for size in [10240, 1 << 20, 20 << 20]:
            cells = []
            for parser in PARSERS[:4]:
                entry = self.xml.get(f"BM_Walk_{parser}/{size}")
                cells.append(fmt_time(seconds(entry)) if entry else "-")
            if any(c != "-" for c in cells):
                rows.append([f"{size // 1024} KiB"] + cells)
        return table(["document"] + PARSERS[:4], rows)

    def parse_plot(self, docs):
        lines = []
        for fresh in (0, 1):
            for size in self.parse_sizes():
                row = [str(size / 1e6)]
                for parser in PARSERS:
                    entry = self.parse_entry(parser, size, fresh)
                    row.append(f"{entry['bytes_per_second'] / 1e6:.1f}" if entry else "NaN")
                lines.append(" ".join(row))
            lines += ["", ""]
        plots = []
        for i, parser in enumerate(PARSERS):
            plots.append(f"'$data' index 0 using 1:{i + 2} with linespoints lw 2 title '{parser}'")
        for i, parser in enumerate(PARSERS[:4]):
            plots.append(f"'$data' index 1 using 1:{i + 2} with linespoints dt 2 lc {i + 1} "
                         f"title '{parser}, fresh memory'")
        return gnuplot(docs, "parse.png", "\n".join(lines), [
            "set logscale x", "set xrange [0.008:30]", "set xlabel 'document size (MB)'",
            "set ylabel 'MB/s'",
            "set key outside right", "set title 'Parse throughput, memory reused (solid) and fresh (dashed)'",
            "plot " + ", ".join(plots)])

    # ---- requests
    def tree_entry(self, name, tree):
        return self.req.get(f"{name}/tree:{tree}") or self.req.get(f"{name}/tree:{tree}/real_time")

    def parses(self, name, tree):
        entry = self.tree_entry(name, tree)
        return entry.get("parses") if entry else None

    def requests_table(self):
        rows = []
        for name, what, target, floor in REQUESTS:
            values = [self.parses(name, t) for t in SIZES]
            rows.append([what] + [fmt(v) for v in values] + [fmt(target) if target else "-"])
            present = [v for v in values if v is not None]
            if target and present:
                self.targets.append((f"{what}: at most {target:g} parses",
                                     f"{min(present):.2f} to {max(present):.2f}",
                                     max(present) <= target))
        return table(["request", *[f"{s} (parses)" for s in SIZES.values()], "target"], rows)

    def floors_table(self):
        rows = []
        for floor, what, request in FLOORS:
            floors = [self.parses(floor, t) for t in SIZES]
            made = [self.parses(request, t) for t in SIZES]
            ratios = [m / f if m and f else None for m, f in zip(made, floors)]
            rows.append([f"`{floor}`: {what}"] + [fmt(f) for f in floors] + [fmt(r) for r in ratios])
            present = [r for r in ratios[1:] if r]
            if present:
                self.targets.append((f"{request} at most 1.2 times its floor (1 MB, 20 MB)",
                                     f"{min(present):.2f} to {max(present):.2f}",
                                     max(present) <= 1.2))
        return table(["floor", *[f"{s}" for s in SIZES.values()],
                      *[f"request / floor, {s}" for s in SIZES.values()]], rows)

    def growth(self, name, direction, step):
        entry = self.req.get(f"{name}/tree:{GROWTH_BASE + 3 * direction + step}")
        return entry

    def growth_tables(self, docs):
        steps_rows, parse_rows, worst = [], [], 0
        plot_data = {d: [] for d in range(3)}
        for name in GROWING:
            step_cells, parse_cells = [name], [name]
            for d in range(3):
                entries = [self.growth(name, d, s) for s in range(3)]
                times = [seconds(e) if e else None for e in entries]
                for s in (1, 2):
                    ratio = times[s] / times[s - 1] if times[s] and times[s - 1] else None
                    step_cells.append(fmt(ratio, 1))
                    if ratio:
                        worst = max(worst, ratio)
                parse_cells.append(" / ".join(fmt(e.get("parses")) if e else "-" for e in entries))
                plot_data[d].append([t / times[0] if t and times[0] else None for t in times])
            steps_rows.append(step_cells)
            parse_rows.append(parse_cells)
        if worst:
            self.targets.append(("every request: 10 times the tree costs at most 12 times the time",
                                 f"at most {worst:.1f} times", worst <= 12))
        for d, direction in enumerate(DIRECTIONS):
            lines = []
            for i, factor in enumerate(FACTORS):
                row = [str(factor)] + [f"{series[i]:.3f}" if series[i] else "NaN"
                                       for series in plot_data[d]]
                lines.append(" ".join(row))
            plots = [f"'$data' using 1:{i + 2} with linespoints lw 2 title '{name}'"
                     for i, name in enumerate(GROWING)]
            plots.append("x with lines dt 2 lc 'gray' title 'in proportion'")
            gnuplot(docs, f"growth-{direction}.png", "\n".join(lines), [
                "set logscale xy", "set xrange [0.8:125]", "set xtics (1, 10, 100)",
                f"set xlabel '{direction}, times the base tree'",
                "set ylabel 'time, times that on the base tree'", "set key left top",
                f"set title 'Requests as the tree grows in {direction}'",
                "plot " + ", ".join(plots)])
        header = ["request"] + [f"{d} {f}" for d in DIRECTIONS for f in ("x1 to x10", "x10 to x100")]
        parse_header = ["request"] + [f"{d} x1 / x10 / x100" for d in DIRECTIONS]
        return table(header, steps_rows), table(parse_header, parse_rows)

    def polling_table(self):
        rows, cycles = [], []
        for tree, label in SIZES.items():
            cycle = self.parses("PollingCycle", tree)
            floor = self.parses("FloorPollingCycle", tree)
            entry = self.tree_entry("PollingCycle", tree)
            rows.append([label, fmt(cycle), fmt(floor),
                         f"{entry['cycles']:.0f}" if entry and "cycles" in entry else "-"])
            if cycle and tree > 0:
                cycles.append(cycle)
        if cycles:
            self.targets.append(("one polling cycle at most 2 parses (1 MB, 20 MB)",
                                 f"{min(cycles):.2f} to {max(cycles):.2f}", max(cycles) <= 2))
        return table(["tree", "cycle (parses)", "its work in line (parses)", "cycles measured"],
                     rows)

    def mdc_table(self):
        rows, last = [], None
        for lds in (8, 80, 800):
            entry = self.req.get(f"MdcMap/lds:{lds}")
            if not entry:
                continue
            t = seconds(entry)
            rows.append([str(lds), f"{entry['KiB']:.0f} KiB", fmt_time(t), fmt(entry.get("parses")),
                         fmt(t / last, 1) if last else "-"])
            last = t
        return table(["logical drives", "tree", "time", "parses", "time / the row above"], rows)

    def clients_table(self):
        rows = []
        for name in ("AdapterCount", "DriveStatus"):
            rates = {}
            for threads in (1, 2, 4):
                entry = self.req.get(f"Clients/{name}/1/real_time/threads:{threads}")
                if entry:
                    rates[threads] = entry.get("items_per_second")
            if 1 in rates:
                rows.append([name] + [f"{rates.get(t, 0):.0f}" for t in (1, 2, 4)] +
                            [fmt(rates.get(2, 0) / rates[1]), fmt(rates.get(4, 0) / rates[1])])
        return table(["request", "1 thread /s", "2 threads /s", "4 threads /s", "2 / 1", "4 / 1"],
                     rows)

    def burst_table(self):
        if not self.burst:
            return "(no emhost burst results: run `scripts/bench burst`)"
        rows, twos, fours = [], [], []
        by_code = {}
        for r in self.burst["results"]:
            by_code.setdefault(r["oc"], {})[r["threads"]] = r["per_second"]
        for code, rates in by_code.items():
            one = rates.get(1)
            rows.append([f"0x{code:04X}"] + [f"{rates.get(t, 0):.0f}" for t in (1, 2, 4)] +
                        [fmt(rates.get(2, 0) / one), fmt(rates.get(4, 0) / one)])
            twos.append(rates.get(2, 0) / one)
            fours.append(rates.get(4, 0) / rates.get(2, 1))
        if twos:
            self.targets.append(("emhost burst: 2 threads at least 1.6 times one",
                                 f"{min(twos):.2f} to {max(twos):.2f}", min(twos) >= 1.6))
            self.targets.append(("emhost burst: 4 threads not below 2 (within the 5 % that "
                                 "one run of bursts varies)",
                                 f"{min(fours):.2f} to {max(fours):.2f} times 2 threads",
                                 min(fours) >= 0.95))
        return table(["request", "1 thread /s", "2 threads /s", "4 threads /s", "2 / 1", "4 / 1"],
                     rows)

    def targets_table(self):
        return table(["target", "measured", "met"],
                     [[t, m, "yes" if ok else "**no**"] for t, m, ok in self.targets])


def gnuplot(docs, name, data, commands):
    """Draws one PNG into DOCS/perf; gives the Markdown that shows it."""
    out = os.path.join(docs, "perf", name)
    os.makedirs(os.path.dirname(out), exist_ok=True)
    script = "\n".join(["$data << EOD", data, "EOD",
                        "set terminal pngcairo size 900,520 font ',10'", f"set output '{out}'",
                        "set grid", *commands])
    try:
        subprocess.run(["gnuplot"], input=script, text=True, check=True)
    except (OSError, subprocess.CalledProcessError) as problem:
        print(f"report: no plot {name}: {problem}", file=sys.stderr)
    return f"![{name}](perf/{name})"


def main(results, docs):
    report = Report(results)
    values = {"machine": machine(report.context)}
    values["parse_reused"] = report.parse_table(0)
    values["parse_fresh"] = report.parse_table(1)
    values["parse_plot"] = report.parse_plot(docs)
    values["index"] = report.index_table()
    values["walk"] = report.walk_table()
    values["requests"] = report.requests_table()
    values["floors"] = report.floors_table()
    values["growth_steps"], values["growth_parses"] = report.growth_tables(docs)
    values["growth_plots"] = " ".join(f"![growth in {d}](perf/growth-{d}.png)" for d in DIRECTIONS)
    values["polling"] = report.polling_table()
    values["mdc"] = report.mdc_table()
    values["clients"] = report.clients_table()
    values["burst"] = report.burst_table()
    values["targets"] = report.targets_table()
    with open(os.path.join(HERE, "performance.md.in")) as f:
        text = f.read()
    text = re.sub(r"\{\{(\w+)\}\}", lambda m: values[m.group(1)], text)
    with open(os.path.join(docs, "performance.md"), "w") as f:
        f.write(text)
    print(f"report: wrote {os.path.join(docs, 'performance.md')} and its plots in "
          f"{os.path.join(docs, 'perf')}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: bench/report.py RESULTS_DIR DOCS_DIR")
    main(sys.argv[1], sys.argv[2])
