#!/usr/bin/env python3
"""Summarises JSON runs of xml_bench: the best time of each benchmark over all repetitions of
all runs given (the machine is shared, so the least disturbed run is the one to compare), the
throughput it gives, and the ratio of CXmlDoc to pugixml per document size."""
import json
import sys
from collections import defaultdict

PARSERS = ["CXmlDoc", "pugixml", "libxml2", "tinyxml2"]


def micros(t):
    return f"{t * 1e6:.1f} us" if t < 1e-4 else f"{t * 1e6:.0f} us"


def main(paths):
    runs = []
    for path in paths:
        with open(path) as f:
            runs += json.load(f)["benchmarks"]
    best = {}
    counters = defaultdict(dict)
    for run in runs:
        if run.get("run_type") != "iteration":
            continue
        name = run["run_name"] if "run_name" in run else run["name"]
        t = run["real_time"] * {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[run["time_unit"]]
        best[name] = min(best.get(name, t), t)
        for key in ("doc_bytes", "elements", "index_B_per_elem", "index_alloc_B_per_elem"):
            if key in run:
                counters[name][key] = run[key]
    sizes = sorted({int(n.split("/")[1]) for n in best})
    for kind in ("Parse", "Walk"):
        print(f"\n{kind}: best of the repetitions")
        print("| size | " + " | ".join(PARSERS) + " | CXmlDoc / pugixml |")
        print("|---" * (len(PARSERS) + 2) + "|")
        for size in sizes:
            names = {p: f"BM_{kind}_{p}/{size}" for p in PARSERS}
            size_bytes = counters[f"BM_Parse_CXmlDoc/{size}"].get("doc_bytes", size)
            cells = []
            for p in PARSERS:
                t = best.get(names[p])
                if t is None:
                    cells.append("-")
                elif kind == "Parse":
                    cells.append(f"{size_bytes / t / 1e6:.0f} MB/s ({micros(t)})")
                else:
                    cells.append(micros(t))
            t_ours, t_pugi = best.get(names["CXmlDoc"]), best.get(names["pugixml"])
            ratio = f"{t_pugi / t_ours:.2f}" if t_ours and t_pugi else "-"
            print(f"| {size_bytes / 1024:.0f} KiB | " + " | ".join(cells) + f" | {ratio} |")
    for size in sizes:
        c = counters.get(f"BM_Parse_CXmlDoc/{size}", {})
        if c:
            print(f"\nCXmlDoc index at {c.get('doc_bytes', 0) / 1024:.0f} KiB: "
                  f"{c.get('elements', 0):.0f} elements, {c.get('index_B_per_elem', 0):.0f} bytes "
                  f"a record, {c.get('index_alloc_B_per_elem', 0):.1f} bytes allocated an element")


if __name__ == "__main__":
    main(sys.argv[1:])
