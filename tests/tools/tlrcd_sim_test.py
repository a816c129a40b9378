"""Tests of tlrcd-sim, inside the sandbox where the daemon's address is free: a session with
the errors of its control file and a private log, and the logins it refuses (tokens made with
PyJWT). A scenario's steps are tested in SimScenarioTest.cpp and in the e2e watch session.
"""

import http.client
import json
import os
import shutil
import socket
import ssl
import stat
import subprocess
import sys
import tempfile
import time
import unittest

import jwt

HOST = "127.0.0.1"
PORT = 34246
KEY = "kite_mox"
ISSUER = "TLRM_CLIENT_TLAS"
CLIENT_ID = "TLRM_CLIENT_TLAS"
TREE = '<amEMTL Version="2"><System><Adapter Name="a &quot;b&quot; \\ c"/></System></amEMTL>'


def make_jwt(key=KEY, lifetime=300, **overrides):
    now = int(time.time())
    claims = {"iss": ISSUER, "iat": now, "exp": now + lifetime}
    claims.update(overrides)
    claims = {name: value for name, value in claims.items() if value is not None}
    return jwt.encode(claims, key, algorithm="HS256")


class Simulator:
    """One tlrcd-sim process, stopped at the end of the with-block."""

    def __init__(self, *args):
        self.process = subprocess.Popen([SIM_BIN, "--listen", f"{HOST}:{PORT}", *args],
                                        stderr=subprocess.PIPE)

    def __enter__(self):
        deadline = time.monotonic() + 30
        while time.monotonic() < deadline:
            if self.process.poll() is not None:
                raise AssertionError("simulator ended: " + self.process.stderr.read().decode())
            try:
                socket.create_connection((HOST, PORT), timeout=0.2).close()
                return self
            except OSError:
                time.sleep(0.05)
        raise AssertionError("simulator never listened")

    def __exit__(self, *exc):
        self.process.terminate()
        self.status = self.process.wait(timeout=10)
        self.process.stderr.close()

    def request(self, method, path, body=None, headers=None):
        context = ssl._create_unverified_context()
        connection = http.client.HTTPSConnection(HOST, PORT, context=context, timeout=10)
        try:
            connection.request(method, path, body=body, headers=headers or {})
            response = connection.getresponse()
            return response.status, response.read().decode()
        finally:
            connection.close()

    def login(self, token=None, client_id=CLIENT_ID):
        token = make_jwt() if token is None else token
        return self.request("POST", "/api/v1/authJwt", f"jwt={token}&client_id={client_id}",
                            {"Content-Type": "application/x-www-form-urlencoded"})

    def access_token(self):
        status, body = self.login()
        assert status == 200, body
        return json.loads(body)["access_token"]

    def tree(self, token):
        return self.request("GET", "/api/v1/sdt/vbmc",
                            headers={"Authorization": f"Bearer {token}"})

    def redfish(self, token, body):
        return self.request("POST", "/api/v1/redfishOp", body,
                            {"Authorization": f"Bearer {token}"})


class SimulatorTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="tlrcd-sim-test.")
        self.addCleanup(shutil.rmtree, self.dir)
        self.write("tree.xml", TREE)
        # The usual umask, under which a file made with the default mode is readable by all.
        self.addCleanup(os.umask, os.umask(0o022))

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, text):
        # Replaced in one step: the simulator may read the file at any moment.
        with open(self.path(name + ".new"), "w") as out:
            out.write(text)
        os.replace(self.path(name + ".new"), self.path(name))

    def sim(self, *args):
        return Simulator("--tree", self.path("tree.xml"), "--control", self.path("control.json"),
                         "--log", self.path("log.jsonl"), *args)

    def test_session(self):
        self.write("redfish.json", json.dumps({'{"Op":"list"}': {"Members": []}}))
        with self.sim("--redfish", self.path("redfish.json")) as sim:
            token, other = sim.access_token(), sim.access_token()
            self.assertRegex(token, r"^[0-9a-f]{32}$")
            self.assertNotEqual(token, other)
            self.assertEqual(sim.request("GET", "/api/v1/sdt/vbmc")[0], 401)
            self.assertEqual(sim.tree("0123456789abcdef0123456789abcdef")[0], 401)
            self.assertEqual(sim.tree(token), (200, json.dumps({"SDT": TREE},
                                                               separators=(",", ":"))))
            # The tree file is read at every request.
            self.write("tree.xml", "<amEMTL Version=\"3\"/>")
            self.assertEqual(json.loads(sim.tree(token)[1])["SDT"], "<amEMTL Version=\"3\"/>")
            self.assertEqual(sim.redfish(token, '{"Op":"list"}'), (200, '{"Members":[]}'))
            self.assertEqual(sim.redfish(token, '{"Op":"other"}'), (200, '{"Op":"other"}'))
            self.assertEqual(sim.redfish("", "{}")[0], 401)
            # The control file's own errors must not pass unnoticed; without it, no faults.
            for control in ('{"sdt": {"dealy_ms": 5}}', '{"tree": {}}', "x"):
                self.write("control.json", control)
                self.assertEqual(sim.tree(token)[0], 500, control)
            os.remove(self.path("control.json"))
            self.assertEqual(sim.tree(token)[0], 200)
        with open(self.path("log.jsonl")) as log:
            login = json.loads(log.readline())
        self.assertEqual((login["jwt"]["header"], login["jwt"]["valid"], login["status"]),
                         ({"alg": "HS256", "typ": "JWT"}, True, 200))
        self.assertEqual(sim.status, 0, "ends cleanly on SIGTERM")
        self.assertEqual(stat.S_IMODE(os.stat(self.path("log.jsonl")).st_mode), 0o600,
                         "the log holds tokens: for its owner only")

    def test_refused_logins(self):
        none_token = jwt.encode({"iss": ISSUER, "exp": int(time.time()) + 60}, None,
                                algorithm="none")
        rows = [
            ("wrong key", make_jwt(key="other_key"), CLIENT_ID),
            ("expired", make_jwt(lifetime=-10), CLIENT_ID),
            ("no exp", make_jwt(exp=None), CLIENT_ID),
            ("unsigned", none_token, CLIENT_ID),
            ("other client", make_jwt(), "SOMEBODY_ELSE"),
        ]
        with self.sim() as sim:
            for name, token, client_id in rows:
                with self.subTest(name):
                    status, body = sim.login(token, client_id)
                    self.assertEqual(status, 401)
                    self.assertIn("error", json.loads(body))
            self.assertEqual(sim.login()[0], 200, "still serving")



if __name__ == "__main__":
    if "--sim-bin" not in sys.argv[:-1]:
        sys.exit("usage: tlrcd_sim_test.py --sim-bin PATH [unittest options]")
    at = sys.argv.index("--sim-bin")
    SIM_BIN = os.path.abspath(sys.argv.pop(at + 1))
    del sys.argv[at]
    unittest.main()
