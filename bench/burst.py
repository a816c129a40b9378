#!/usr/bin/env python3
"""emhost burst with 1, 2 and 4 threads, as a user measures it: the module in emhost inside
the sandbox, tlrcd-sim serving a gen-tree tree of about 1 MB, the snapshot filled before the
bursts. Each figure is the best of a few bursts. Writes the results as JSON:
    bench/burst.py OUTPUT.json"""

import json
import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scripts",
                                "lib"))
import hostsession as hs  # noqa: E402

THREADS = [1, 2, 4]
REQUESTS_PER_BURST = 960  # shared out among the threads
ROUNDS = 5
# The two requests of the comparison: the adapter count (the snapshot's parse and little
# else) and a drive's status (a cut of the adapter and its parse besides).
CODES = [(0x2110, 0, 0), (0x2131, 0, 3)]
TREE_OPTIONS = ["--drives", "345", "--logical-drives", "8"]


def main(output):
    hs.ensure_built()
    subprocess.run(["cmake", "--build", hs.BUILD, "--target", "gen-tree"], check=True,
                   stdout=subprocess.DEVNULL)
    tally = hs.Tally()
    results = []
    with hs.temp_dir() as tmp:
        tree = os.path.join(tmp, "tree.xml")
        subprocess.run([os.path.join(hs.BUILD, "gen-tree"), *TREE_OPTIONS, "--output", tree],
                       check=True)
        tree_bytes = os.path.getsize(tree)
        scenario = os.path.join(tmp, "scenario.json")
        with open(scenario, "w") as out:
            json.dump({"note": "one tree", "steps": [{"at_s": 0, "tree": tree}]}, out)
        with open(os.path.join(tmp, "emhost.stderr"), "w") as errors:
            session = hs.Session(hs.sandbox_command(scenario), errors, tally)
            session.host("create")
            session.host("start")
            for code, selector, index in CODES:
                record = hs.record((code, selector, index, None, None, False), 1)
                session.host("burst", record=record, threads=1, repeat=1)  # the snapshot
                for threads in THREADS:
                    best = None
                    for _ in range(ROUNDS):
                        result = session.host("burst", record=record, threads=threads,
                                              repeat=REQUESTS_PER_BURST // threads)
                        ms = max(result.get("ms", 0), 1)
                        best = ms if best is None or ms < best else best
                    rate = REQUESTS_PER_BURST * 1000.0 / best
                    results.append({"oc": code, "threads": threads, "requests": REQUESTS_PER_BURST,
                                    "ms": best, "per_second": rate})
                    print(f"burst: OC 0x{code:04X}, {threads} threads: {rate:.0f} requests/s",
                          flush=True)
            session.host("stop")
            session.host("delete")
            session.end()
    if tally.faults:
        for fault in tally.faults:
            print("burst: FAULT: " + fault, file=sys.stderr)
        return 1
    with open(output, "w") as out:
        json.dump({"tree_bytes": tree_bytes, "results": results}, out, indent=1)
    return 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: bench/burst.py OUTPUT.json")
    sys.exit(main(sys.argv[1]))
