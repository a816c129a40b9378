"""Tests of tlrcd-sim: its refusals, its fault control, its log and its options.

Runs inside the sandbox (tests/tools/CMakeLists.txt), where the daemon's address is free:
    sandbox -- python3 tlrcd_sim_test.py --sim-bin build/tlrcd-sim
Tokens are made with PyJWT, independently of the module's own JWT code.
"""
import http.client
import json
import os
import shutil
import socket
import ssl
import subprocess
import sys
import tempfile
import time
import unittest

import jwt

SIM_BIN = None
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


def wait_for_port(process, port):
    for _ in range(200):
        if process.poll() is not None:
            raise AssertionError("simulator ended: " + process.stderr.read().decode())
        try:
            socket.create_connection((HOST, port), timeout=0.2).close()
            return
        except OSError:
            time.sleep(0.05)
    raise AssertionError("simulator never listened")


class Simulator:
    """One tlrcd-sim process, stopped at the end of the with-block."""

    def __init__(self, *args, port=PORT):
        self.port = port
        self.process = subprocess.Popen([SIM_BIN, "--listen", f"{HOST}:{port}", *args],
                                        stderr=subprocess.PIPE)

    def __enter__(self):
        wait_for_port(self.process, self.port)
        return self

    def __exit__(self, *exc):
        self.process.terminate()
        self.status = self.process.wait(timeout=10)
        self.stderr_text = self.process.stderr.read().decode()
        self.process.stderr.close()

    def request(self, method, path, body=None, headers=None):
        context = ssl._create_unverified_context()
        connection = http.client.HTTPSConnection(HOST, self.port, context=context, timeout=10)
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


class SimulatorTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="tlrcd-sim-test.")
        self.tree_file = self.path("tree.xml")
        self.control_file = self.path("control.json")
        self.log_file = self.path("log.jsonl")
        self.write("tree.xml", TREE)

    def tearDown(self):
        shutil.rmtree(self.dir)

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, text):
        # Replaced in one step: the simulator may read the file at any moment.
        with open(self.path(name + ".new"), "w") as out:
            out.write(text)
        os.replace(self.path(name + ".new"), self.path(name))

    def sim(self, *args):
        return Simulator("--tree", self.tree_file, "--control", self.control_file,
                         "--log", self.log_file, *args)

    def log_lines(self):
        with open(self.log_file) as log:
            return [json.loads(line) for line in log]


class LoginTest(SimulatorTest):
    def test_login_gives_a_fresh_random_token(self):
        with self.sim() as sim:
            first, second = sim.access_token(), sim.access_token()
        self.assertRegex(first, r"^[0-9a-f]{32}$")
        self.assertNotEqual(first, second)

    def test_refused_logins(self):
        none_token = jwt.encode({"iss": ISSUER, "exp": int(time.time()) + 60}, None,
                                algorithm="none")
        rows = [
            ("wrong key", make_jwt(key="other_key"), CLIENT_ID),
            ("expired", make_jwt(lifetime=-10), CLIENT_ID),
            ("wrong issuer", make_jwt(iss="SOMEBODY"), CLIENT_ID),
            ("no issuer", make_jwt(iss=None), CLIENT_ID),
            ("no exp", make_jwt(exp=None), CLIENT_ID),
            ("unsigned", none_token, CLIENT_ID),
            ("not a token", "abc.def", CLIENT_ID),
            ("no token", "", CLIENT_ID),
            ("other client", make_jwt(), "SOMEBODY_ELSE"),
        ]
        with self.sim() as sim:
            for name, token, client_id in rows:
                with self.subTest(name):
                    status, body = sim.login(token, client_id)
                    self.assertEqual(status, 401)
                    self.assertIn("error", json.loads(body))
            self.assertEqual(sim.login()[0], 200, "still serving")

    def test_log_shows_the_decoded_jwt_and_the_answer(self):
        token = make_jwt()
        with self.sim() as sim:
            sim.login(token)
            sim.login(make_jwt(key="other_key"))
        good, bad = self.log_lines()
        self.assertEqual(good["method"], "POST")
        self.assertEqual(good["path"], "/api/v1/authJwt")
        self.assertEqual(good["body"], f"jwt={token}&client_id={CLIENT_ID}")
        self.assertIn("Content-Type: application/x-www-form-urlencoded", good["headers"])
        self.assertEqual(good["jwt"]["header"], {"alg": "HS256", "typ": "JWT"})
        self.assertEqual(good["jwt"]["payload"]["iss"], ISSUER)
        self.assertTrue(good["jwt"]["valid"])
        self.assertEqual(good["status"], 200)
        self.assertIn("access_token", json.loads(good["reply"]))
        self.assertFalse(bad["jwt"]["valid"])
        self.assertEqual(bad["status"], 401)


class TreeTest(SimulatorTest):
    def test_tree_needs_a_token_issued_here(self):
        with self.sim() as sim:
            self.assertEqual(sim.request("GET", "/api/v1/sdt/vbmc")[0], 401)
            self.assertEqual(sim.tree("")[0], 401)
            self.assertEqual(sim.tree("0123456789abcdef0123456789abcdef")[0], 401)
            status, body = sim.tree(sim.access_token())
        self.assertEqual(status, 200)
        self.assertEqual(json.loads(body), {"SDT": TREE})
        self.assertEqual([line["status"] for line in self.log_lines()], [401, 401, 401, 200, 200])

    def test_tree_file_is_read_at_every_request(self):
        with self.sim() as sim:
            token = sim.access_token()
            self.write("tree.xml", "<amEMTL Version=\"3\"/>")
            self.assertEqual(json.loads(sim.tree(token)[1])["SDT"], "<amEMTL Version=\"3\"/>")
            os.remove(self.tree_file)
            status, body = sim.tree(token)
            self.assertEqual(status, 500)
            self.assertIn("tree file", json.loads(body)["error"])
            self.write("tree.xml", TREE)
            self.assertEqual(sim.tree(token)[0], 200)

    def test_built_in_tree_without_a_tree_file(self):
        with Simulator() as sim:
            tree = json.loads(sim.tree(sim.access_token())[1])["SDT"]
        self.assertIn("<amEMTL Version=\"2\">", tree)
        self.assertIn("<Status>Operational</Status>", tree)


class ControlTest(SimulatorTest):
    def test_injected_answers(self):
        rows = [
            ("refused login", {"authJwt": {"refuse": True}}, "login", 401, None),
            ("login answers 500", {"authJwt": {"status": 500}}, "login", 500, None),
            ("tree not JSON", {"sdt": {"body": "oops"}}, "tree", 200, "oops"),
            ("empty tree reply", {"sdt": {"body": ""}}, "tree", 200, ""),
            ("SDT a number", {"sdt": {"sdt": 5}}, "tree", 200, '{"SDT":5}'),
            ("SDT null", {"sdt": {"sdt": None}}, "tree", 200, '{"SDT":null}'),
            ("tree refused", {"sdt": {"refuse": True}}, "tree", 401, None),
            ("tree 401 with body", {"sdt": {"status": 401, "body": "{}"}}, "tree", 401, "{}"),
            ("slow tree", {"sdt": {"delay_ms": 200}}, "tree", 200, None),
            ("Redfish 500", {"redfishOp": {"status": 500}}, "redfish", 500, None),
            ("typo in control", {"sdt": {"dealy_ms": 5}}, "tree", 500, None),
            ("unknown endpoint", {"tree": {}}, "login", 500, None),
        ]
        with self.sim() as sim:
            token = sim.access_token()
            for name, control, target, status, body in rows:
                with self.subTest(name):
                    self.write("control.json", json.dumps(control))
                    if target == "login":
                        answer = sim.login()
                    elif target == "tree":
                        answer = sim.tree(token)
                    else:
                        answer = sim.request("POST", "/api/v1/redfishOp", "{}",
                                             {"Authorization": f"Bearer {token}"})
                    self.assertEqual(answer[0], status, answer[1])
                    if body is not None:
                        self.assertEqual(answer[1], body)
            self.write("control.json", "not json")
            self.assertEqual(sim.tree(token)[0], 500)
            os.remove(self.control_file)
            self.assertEqual(sim.tree(token)[0], 200, "no control file, no faults")


class RedfishTest(SimulatorTest):
    def test_map_answers_and_others_are_echoed(self):
        self.write("redfish.json", json.dumps({'{"Op":"list"}': {"Members": []},
                                               '{"Op":"raw"}': "plain text"}))
        with self.sim("--redfish", self.path("redfish.json")) as sim:
            bearer = {"Authorization": f"Bearer {sim.access_token()}"}
            post = lambda body: sim.request("POST", "/api/v1/redfishOp", body, bearer)
            self.assertEqual(post('{"Op":"list"}'), (200, '{"Members":[]}'))
            self.assertEqual(post('{"Op":"raw"}'), (200, "plain text"))
            self.assertEqual(post('{"Op":"other"}'), (200, '{"Op":"other"}'))
            self.assertEqual(sim.request("POST", "/api/v1/redfishOp", "{}")[0], 401)


class RobustnessTest(SimulatorTest):
    def test_bad_requests_do_not_end_the_simulator(self):
        with self.sim() as sim:
            self.assertEqual(sim.request("GET", "/nothing")[0], 404)
            self.assertEqual(sim.request("GET", "/api/v1/authJwt")[0], 404)
            for garbage in (b"GET / HTTP/1.1\r\n\r\n", b"\x16\x03\x01\x00\x05hello", b""):
                # The simulator may drop the connection at any point of this.
                with socket.create_connection((HOST, PORT), timeout=5) as raw:
                    try:
                        raw.sendall(garbage)
                        raw.shutdown(socket.SHUT_WR)
                        raw.recv(100)
                    except OSError:
                        pass
            self.assertEqual(sim.login()[0], 200)
        self.assertEqual(sim.status, 0, "ends cleanly on SIGTERM")


class OptionsTest(SimulatorTest):
    def run_sim(self, *args):
        return subprocess.run([SIM_BIN, *args], capture_output=True, text=True, timeout=20)

    def test_bad_options_and_files_are_refused_clearly(self):
        self.write("bad.json", "{")
        rows = [
            (["--bogus"], "unknown option"),
            (["--tree"], "needs a value"),
            (["--listen", "34246"], "HOST:PORT"),
            (["--listen", "127.0.0.1:port"], "not a port"),
            (["--tree", self.path("missing.xml")], "cannot read tree file"),
            (["--redfish", self.path("missing.json")], "cannot read Redfish file"),
            (["--redfish", self.path("bad.json")], "not a JSON object"),
            (["--control", self.path("bad.json")], "not a JSON object"),
            (["--cert", self.tree_file], "--cert and --key go together"),
            (["--cert", self.tree_file, "--key", self.tree_file], "no PEM certificate"),
            (["--log", self.path("no/such/dir/log")], "cannot open log file"),
        ]
        for args, message in rows:
            with self.subTest(args=args):
                result = self.run_sim("--listen", f"{HOST}:{PORT + 1}", *args)
                self.assertEqual(result.returncode, 2, result.stderr)
                self.assertIn(message, result.stderr)

    def test_help_names_every_option(self):
        result = self.run_sim("--help")
        self.assertEqual(result.returncode, 0)
        for option in ("--listen", "--cert", "--key", "--tree", "--redfish", "--control",
                       "--log", "--client-id", "--scenario", "--help", "delay_ms", "refuse", "status",
                       "body", "\"sdt\""):
            self.assertIn(option, result.stdout)

    def test_busy_address(self):
        with self.sim():
            result = self.run_sim("--listen", f"{HOST}:{PORT}")
        self.assertEqual(result.returncode, 1)
        self.assertIn("cannot listen", result.stderr)

    def test_given_certificate_is_served(self):
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                        "ec_paramgen_curve:P-256", "-nodes", "-days", "1", "-subj",
                        "/CN=given", "-keyout", self.path("key.pem"), "-out",
                        self.path("cert.pem")], check=True, capture_output=True)
        with self.sim("--cert", self.path("cert.pem"), "--key", self.path("key.pem")):
            served = ssl.get_server_certificate((HOST, PORT))
        with open(self.path("cert.pem")) as given:
            self.assertEqual(ssl.PEM_cert_to_DER_cert(served),
                             ssl.PEM_cert_to_DER_cert(given.read()))


class ScenarioTest(SimulatorTest):
    """The scenario's timing itself is tested in SimScenarioTest.cpp with its own clock; here
    only that the running simulator follows it, in order, with no timed assertion."""

    def test_trees_and_faults_follow_in_order(self):
        self.write("a.xml", "A")
        self.write("b.xml", "B @PROGRESS@")
        self.write("scenario.json", json.dumps({"steps": [
            {"at_s": 0, "tree": "a.xml"},
            {"at_s": 1.5, "faults": {"sdt": {"status": 503}}, "note": "away"},
            {"at_s": 3, "tree": "b.xml",
             "progress": {"from": 1, "by": 1, "every_s": 0.5, "to": 3}}]}))
        seen = []
        with Simulator("--scenario", self.path("scenario.json")) as sim:
            token = sim.access_token()
            deadline = time.monotonic() + 60
            while (not seen or seen[-1] != "B 3") and time.monotonic() < deadline:
                status, body = sim.tree(token)
                state = json.loads(body)["SDT"] if status == 200 else status
                if not seen or seen[-1] != state:
                    seen.append(state)
                time.sleep(0.05)
        self.assertEqual(seen[-1], "B 3", seen)
        order = ["A", 503, "B 1", "B 2", "B 3"]
        self.assertEqual(seen, sorted(seen, key=order.index), "in the scenario's order")
        self.assertIn("scenario step 2 of 3 (from 1.5 s): away", sim.stderr_text)

    def test_a_closed_step_refuses_connections_then_serves_again(self):
        self.write("a.xml", "A")
        self.write("b.xml", "B")
        self.write("scenario.json", json.dumps({"steps": [
            {"at_s": 0, "tree": "a.xml"},
            {"at_s": 3, "closed": True, "note": "gone"},
            {"at_s": 6, "tree": "b.xml"}]}))
        seen = []
        with Simulator("--scenario", self.path("scenario.json"), "--log", self.log_file) as sim:
            token = sim.access_token()
            deadline = time.monotonic() + 60
            while seen[-1:] != ["B"] and time.monotonic() < deadline:
                try:
                    state = json.loads(sim.tree(token)[1])["SDT"]
                except ConnectionRefusedError:
                    state = "refused"
                if seen[-1:] != [state]:
                    seen.append(state)
                time.sleep(0.05)
        self.assertEqual(seen, ["A", "refused", "B"][-len(seen):], seen)
        self.assertEqual(sim.status, 0, "ends cleanly after listening again")
        self.assertIn("scenario step 2 of 3 (from 3 s): gone", sim.stderr_text)

    def test_scenario_errors_and_options(self):
        self.write("scenario.json", json.dumps({"steps": [{"at_s": 0, "tree": "none.xml"}]}))
        rows = [
            (["--scenario", self.path("scenario.json")], "cannot read tree file"),
            (["--scenario", self.path("missing.json")], "cannot read scenario file"),
            (["--scenario", self.path("scenario.json"), "--tree", self.tree_file],
             "exclude each other"),
        ]
        for args, message in rows:
            with self.subTest(args=args):
                result = subprocess.run([SIM_BIN, "--listen", f"{HOST}:{PORT + 1}", *args],
                                        capture_output=True, text=True, timeout=20)
                self.assertEqual(result.returncode, 2, result.stderr)
                self.assertIn(message, result.stderr)


if __name__ == "__main__":
    if "--sim-bin" in sys.argv:
        at = sys.argv.index("--sim-bin")
        SIM_BIN = os.path.abspath(sys.argv[at + 1])
        del sys.argv[at:at + 2]
    if not SIM_BIN:
        sys.exit("usage: tlrcd_sim_test.py --sim-bin PATH [unittest options]")
    unittest.main()
