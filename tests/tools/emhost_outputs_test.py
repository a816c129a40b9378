"""The outputs of emhost for scripts, each run against the shipped module in a sandbox of its
own with the simulator: inventory --json of every sample tree that the module takes as valid,
and of a host without the RAID manager, validated against docs/inventory.schema.json; metrics
of the demo tree (into a file) and of the failing-drive scenario's failed tree, parsed as
Prometheus' own parser reads them. All runs start at once, since each ends with the
module's stop of 10 s.
"""

import glob
import json
import os
import stat
import subprocess
import sys
import tempfile
import unittest

import jsonschema
from prometheus_client.parser import text_string_to_metric_families

# Trees that the module refuses: its start would wait for a valid one for minutes.
INVALID_TREES = {"mux-not-operational", "adapter-initializing", "version1-sasport"}


def start(sandbox, *emhost):
    return subprocess.Popen([f"{BUILD}/sandbox", *sandbox, "--", f"{BUILD}/emhost", *emhost],
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def tree(path):
    return ["--sim", f"--tree {SOURCE}/{path}"]


def finish(process):
    out, err = process.communicate(timeout=240)
    return process.returncode, out, err


class EmhostOutputs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.TemporaryDirectory()
        cls.metrics_file = os.path.join(cls.dir.name, "storage.prom")
        names = sorted(os.path.basename(p)[:-4] for p in glob.glob(f"{SOURCE}/samples/trees/*.xml"))
        runs = {name: start(tree(f"samples/trees/{name}.xml"), "inventory", "--json")
                for name in names if name not in INVALID_TREES}
        runs["no RAID manager"] = start(["--raid", "none"], "inventory", "--json")
        runs["metrics demo"] = start(tree("samples/trees/demo.xml"), "metrics", "--output",
                                     cls.metrics_file)
        runs["metrics failed"] = start(tree("samples/scenarios/trees/drive-failed.xml"), "metrics")
        cls.results = {name: finish(process) for name, process in runs.items()}

    @classmethod
    def tearDownClass(cls):
        cls.dir.cleanup()

    def test_inventory_json_of_every_tree_follows_the_schema(self):
        with open(f"{SOURCE}/docs/inventory.schema.json") as f:
            validator = jsonschema.Draft202012Validator(json.load(f))
        exits = {}
        for name, (status, out, err) in self.results.items():
            if name.startswith("metrics"):
                continue
            with self.subTest(name):
                document = json.loads(out)
                errors = [f"{list(e.absolute_path)}: {e.message}"
                          for e in validator.iter_errors(document)]
                self.assertEqual(errors, [], err)
                self.assertEqual(document["exit_status"]["code"], status)
                exits[name] = status
        # All well; degraded and failed; neither started nor reached.
        self.assertEqual(exits["demo"], 0)
        self.assertEqual(exits["two-adapters-enclosures"], 16 | 32)
        self.assertEqual(exits["no RAID manager"], 1 | 4)

    def metrics(self, text):
        samples = {}
        for family in text_string_to_metric_families(text):
            for sample in family.samples:
                key = (sample.name, tuple(sorted(sample.labels.items())))
                self.assertNotIn(key, samples, "a series twice")
                samples[key] = sample.value
        return samples

    def test_metrics_of_a_healthy_and_a_failed_tree(self):
        status, out, err = self.results["metrics demo"]
        self.assertEqual((status, out), (0, ""), err)
        self.assertEqual(os.listdir(self.dir.name), ["storage.prom"], "nothing left beside it")
        self.assertEqual(stat.S_IMODE(os.stat(self.metrics_file).st_mode), 0o644)
        with open(self.metrics_file) as f:
            healthy = self.metrics(f.read())
        status, out, err = self.results["metrics failed"]
        self.assertEqual(status, 16 | 32, err)
        failed = self.metrics(out)

        def value(samples, metric, labels=None):
            return samples.get((f"em_tlraid_{metric}", tuple(sorted((labels or {}).items()))))

        data = dict(adapter="0", logical_drive="1", name="Data")
        drive = dict(adapter="0", drive="4", name="MIRAVEX MX4000N (10)")
        rows = [
            # name, labels, healthy, failed
            ("drive_status", dict(drive, status="operational"), 0, None),
            ("drive_status", dict(drive, status="failed"), None, 11),
            ("logical_drive_status", dict(data, status="operational"), 0, None),
            ("logical_drive_status", dict(data, status="degraded"), None, 1),
            ("logical_drive_progress_percent", data, 37, None),
            ("battery_status", dict(adapter="0", battery="0", name="Cache Backup Unit CBU-4",
                                    status="normal"), 0, 0),
            ("overall_status", dict(what="disks", status="OK"), 1, None),
            ("overall_status", dict(what="disks", status="failed"), None, 3),
            ("fan_status", dict(cabinet="800", fan="2", name="Fan 3", designation="Fan_3",
                                status="OK"), 1, 1),
            ("temperature_celsius", dict(cabinet="800", sensor="0", name="Canister 0"), 34, 34),
            ("power_supply_redundancy", dict(cabinet="800", redundancy="redundant"), 1, 1),
            ("health", {}, 0, 48),
            ("module_started", {}, 1, 1),
            ("last_fetch_success", {}, 1, 1),
            ("fetch_errors_total", {}, 0, 0),
        ]
        for metric, labels, want_healthy, want_failed in rows:
            with self.subTest(metric, **labels):
                self.assertEqual(value(healthy, metric, labels), want_healthy)
                self.assertEqual(value(failed, metric, labels), want_failed)
        for samples in (healthy, failed):
            self.assertGreaterEqual(value(samples, "tree_age_seconds"), 0)
            answered = value(samples, "requests_answered_total")
            self.assertTrue(0 < answered < value(samples, "requests_total"))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit("usage: emhost_outputs_test.py BUILD_DIR SOURCE_DIR [unittest options]")
    BUILD, SOURCE = (os.path.abspath(p) for p in sys.argv[1:3])
    del sys.argv[1:3]
    unittest.main()
