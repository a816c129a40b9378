"""An emhost session inside the sandbox against tlrcd-sim, for scripts/stress,
scripts/memcheck and the burst benchmark: the build it needs, a scenario of changing trees,
requests of every family of object codes, the check that every output line is JSON with an
allowed status, and the session itself."""

import json
import os
import shlex
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.environ.get("BUILD_DIR", os.path.join(ROOT, "build"))
SAMPLES = os.path.join(ROOT, "samples")
LOCALCLI = os.path.join(SAMPLES, "localcli")
TARGETS = ["em_tlraid", "emhost", "tlrcd-sim", "host_facts_file"]

# Switch answers to the module's questions after the switch started, as the e2e session has.
SWITCH_ANSWERS = ["--answer", '0x2113={"ST":0,"DA":1}', "--answer", '8468={"ST":12,"DA":0}']

# Requests of every family: (OC, OE, OI, CA or None, DA or None, slow). A slow request
# goes to the REST daemon itself each time. Cabinet 900 is none of the server's.
REQUESTS = [
    (0x0C00, 0xAA03, 0, None, None, False),  # identity text: RAID version
    (0x0C20, 0, 0, None, None, False),  # declined identity
    (0x1041, 0, 0, None, None, False),  # absent object
    (0x0220, 0, 0, None, None, False),  # cabinet numbers
    (0x2110, 0, 0, None, None, False),  # adapters
    (0x2111, 0, 1, None, None, False),
    (0x2116, 0, 0, None, None, False),
    (0x2117, 0, 0, None, None, False),
    (0x2118, 1, 0, None, None, True),  # PCI identity: reads the host's device list
    (0x211D, 0, 0, None, "Firmware", False),
    (0x2120, 0, 0, None, None, False),  # overall status
    (0x2123, 0, 0, None, None, False),
    (0x2125, 0, 0, None, None, False),
    (0x212A, 0, 0, None, None, False),
    (0x2130, 0, 0, None, None, False),  # physical drives
    (0x2131, 0, 3, None, None, False),
    (0x2133, 1, 1, None, None, False),
    (0x2137, 0, 0, None, None, False),
    (0x213D, 0, 2, None, "SerialNumber", False),
    (0x2150, 0, 0, None, None, False),  # logical drives
    (0x2151, 0, 1, None, None, False),
    (0x215D, 0, 1, None, "MDCProgress", False),
    (0x2160, 0, 0, None, None, False),  # batteries
    (0x2162, 0, 0, None, None, False),
    (0x2163, 0, 0, None, None, False),
    (0x2180, 0, 0, None, None, False),  # ports
    (0x2181, 0, 1, None, None, False),
    (0x2190, 0, 0, None, None, False),  # enclosures of an adapter
    (0x2192, 0, 0, None, None, False),
    (0x21D0, 0, 0, None, None, False),  # the tree as XML and JSON
    (0x21D0, 1, 0, None, None, False),
    (0x21DD, 0, 0, None, "System/Adapter[0]/Status", False),
    (0x21F0, 0, 0, None, "TYPE_PCI&BUS_24&DEV_0&FUNC_0", False),
    (0x21DF, 0, 0, None, None, True),  # snapshot renewal
    (0x21D1, 0, 0, None, "{}", True),  # pass-through
    (0xF020, 0, 0, None, None, True),  # raw tree
    (0xF021, 38, 0, None, 5, False),  # test attribute
    (0x9999, 0, 0, None, None, False),  # unknown code
    (769, 0, 1, 800, None, False),  # cabinets: fan, sensor, supplies, settings
    (1028, 0, 2, 801, None, False),
    (1296, 0, 0, 800, None, False),
    (57346, 115, 0, 800, 50, False),
    (57866, 0, 0, 900, None, False),
]

# Trees the scenario serves in turn: cabinets, adapters and drives come and go, and MDC
# progress moves, which drops every client's snapshot.
SCENARIO_TREES = [
    ("trees/cabinets.xml", None),
    ("trees/flat.xml", None),
    ("scenarios/trees/drive-rebuilding.xml", {"from": 10, "by": 5, "every_s": 1, "to": 100}),
    ("trees/two-adapters-enclosures.xml", None),
    ("trees/demo.xml", None),
    ("trees/logical-drives.xml", None),
]


def record(request, client):
    """The command record of a request, as a JSON object."""
    code, selector, index, cabinet, data, _ = request
    command = {"OC": code, "OE": selector, "OI": index, "CI": client}
    if cabinet is not None:
        command["CA"] = cabinet
    if data is not None:
        command["DA"] = data
    return {"SIP": {"V": 1, "CMD": [command]}}


def answer_statuses():
    """The statuses the module may answer with, as the build's host facts list them."""
    with open(os.path.join(BUILD, "host-facts.sh")) as facts:
        for line in facts:
            name, _, value = line.strip().partition("=")
            if name == "kAnswerStatuses":
                return {int(n) for n in value.strip("'").split()}
    sys.exit("the host facts list no answer statuses; rebuild")


def ensure_built():
    """Builds what the session needs: the whole project the first time, else its targets."""
    if not os.path.exists(os.path.join(BUILD, "CMakeCache.txt")):
        subprocess.run([os.path.join(ROOT, "scripts", "build")], check=True)
    else:
        subprocess.run(["cmake", "--build", BUILD, "--target", *TARGETS], check=True,
                       stdout=subprocess.DEVNULL)
    check = subprocess.run([os.path.join(BUILD, "sandbox"), "--check"], capture_output=True,
                           text=True)
    if check.returncode != 0:
        sys.exit("the session runs in the sandbox, which this machine refuses: "
                 + check.stderr.strip())


def write_scenario(directory, seconds, step_s):
    """A scenario that changes the tree every step_s seconds for as long as the run lasts."""
    steps = []
    for n in range(int(seconds / step_s) + 2):
        tree, progress = SCENARIO_TREES[n % len(SCENARIO_TREES)]
        step = {"at_s": n * step_s, "tree": os.path.join(SAMPLES, tree)}
        if progress:
            step["progress"] = progress
        steps.append(step)
    path = os.path.join(directory, "scenario.json")
    with open(path, "w") as out:
        json.dump({"note": "trees in turn", "steps": steps}, out)
    return path


def sandbox_command(scenario, emhost_prefix=(), emhost_args=()):
    """The sandbox with the sample host and the simulator on the scenario, running emhost."""
    return [os.path.join(BUILD, "sandbox"),
            "--localcli-pci", os.path.join(LOCALCLI, "pci-list.txt"),
            "--localcli-nic", os.path.join(LOCALCLI, "nic-list.txt"),
            "--adapter-ini", os.path.join(LOCALCLI, "Adapter.ini"),
            "--pci-devices", os.path.join(LOCALCLI, "pci-devices"),
            "--sim", "--scenario " + shlex.quote(scenario),
            "--", *emhost_prefix, os.path.join(BUILD, "emhost"), *SWITCH_ANSWERS, *emhost_args]


class Tally:
    """Checks emhost's output lines and counts requests and answers by status."""

    def __init__(self):
        self.allowed = answer_statuses()
        self.requests = 0
        self.statuses = {}
        self.events = 0
        self.lines = 0
        self.faults = []

    def fault(self, text):
        if len(self.faults) < 20:
            self.faults.append(text)
        else:
            self.faults[-1] = "... and more"

    def count(self, status, n=1):
        if status not in self.allowed:
            self.fault(f"status {status} is none the module may answer")
        self.statuses[status] = self.statuses.get(status, 0) + n
        self.requests += n

    def take(self, line):
        """One output line; gives it as JSON, or None when it is none."""
        self.lines += 1
        try:
            value = json.loads(line)
        except ValueError:
            self.fault("no JSON: " + line[:200])
            return None
        if not isinstance(value, dict):
            self.fault("no JSON object: " + line[:200])
        elif "error" in value:
            self.fault("error line: " + line[:200])
        elif "event" in value:
            self.events += 1
        elif value.get("host") == "burst":
            for status, n in value.get("statuses", {}).items():
                self.count(int(status), n)
        elif "record" in value and "host" not in value:
            for command in value["record"].get("SIP", {}).get("CMD", []):
                self.count(command.get("ST"))
        return value

    def summary(self, seconds):
        by_status = ", ".join(f"{s}: {n}" for s, n in sorted(self.statuses.items()))
        return (f"{self.requests} requests in {seconds:.1f} s, {self.events} events, "
                f"{self.lines} output lines; answers by status: {by_status}")


def temp_dir():
    # Under /tmp, which the sandbox shares with the host, so that the simulator reads it.
    return tempfile.TemporaryDirectory(prefix="tlr-session-", dir="/tmp")


class Session:
    """emhost's line protocol: a line in, its result line out; the lines between are taken
    by the tally too."""

    def __init__(self, command, stderr, tally):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=stderr, text=True, bufsize=1)
        self.tally = tally

    def send(self, value):
        self.process.stdin.write(json.dumps(value) + "\n")
        self.process.stdin.flush()
        while True:
            line = self.process.stdout.readline()
            if not line:
                raise RuntimeError("emhost ended early")
            result = self.tally.take(line.rstrip("\n"))
            if result is None or not ("event" in result or "switch-request" in result):
                return result or {}

    def host(self, action, **members):
        result = self.send({"host": action, **members})
        if result.get("ret") in (None, 0):
            self.tally.fault(f"{action}: {result}")
        return result

    def end(self):
        self.process.stdin.close()
        for line in self.process.stdout:
            self.tally.take(line.rstrip("\n"))
        return self.process.wait()
