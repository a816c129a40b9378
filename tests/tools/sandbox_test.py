"""Tests of tools/sandbox/sandbox and of build/sandbox-test beside it, run from outside.

    python3 sandbox_test.py --sandbox build/sandbox
"""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

SANDBOX = None
TRACE_DIR = "/opt/TessalineHost/vital/etc/TessalineSuite/TraceConfig"
INSTALL_MARK = "/opt/BrennockTLRC/bin/tlrcd"
PID_FILE = "/var/run/vmware/daemon-BrennockTLRC-tlrcd.pid"
ADDRESS_PIPELINE = "lsof | grep -i tlrcd | grep -i INET | awk '{ print $5 }' | uniq"
PROBE_PIPELINE = "lsof | grep tlrcd.*SOCKET_INET 2>/dev/null"


def sandbox(*args, env=None, cwd=None):
    return subprocess.run([SANDBOX, *args], capture_output=True, text=True, env=env, cwd=cwd,
                          timeout=60)


def shell(script, *options):
    return sandbox(*options, "--", "sh", "-c", script)


class SandboxTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="sandbox-test.")

    def tearDown(self):
        shutil.rmtree(self.dir)

    def write(self, name, text):
        path = os.path.join(self.dir, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as out:
            out.write(text)
        return path

    def test_exit_status_environment_and_directory_pass_through(self):
        env = dict(os.environ, SANDBOX_TEST_VALUE="kept")
        result = sandbox("--", "sh", "-c", 'echo "$SANDBOX_TEST_VALUE $(pwd)"; exit 7',
                         env=env, cwd=self.dir)
        self.assertEqual(result.returncode, 7)
        self.assertEqual(result.stdout, f"kept {self.dir}\n")

    def test_host_paths_are_private_and_empty(self):
        result = shell("touch /opt/sandbox-test-mark /run/sandbox-test-mark; "
                       "find /opt -type f | sort; ip -o link | cut -d' ' -f2,9",
                       "--raid", "none")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout, "/opt/sandbox-test-mark\nlo: UNKNOWN\n")
        self.assertFalse(os.path.exists("/opt/sandbox-test-mark"))
        self.assertFalse(os.path.exists("/run/sandbox-test-mark"))

    def test_raid_states(self):
        rows = [("none", ""), ("installed", INSTALL_MARK), ("running", INSTALL_MARK + PID_FILE)]
        for state, expected in rows:
            with self.subTest(state):
                result = shell(f"for f in {INSTALL_MARK} {PID_FILE}; do "
                               f'[ -e "$f" ] && printf %s "$f"; done; true', "--raid", state)
                self.assertEqual(result.stdout, expected, result.stderr)

    def test_default_lsof_serves_both_pipelines(self):
        result = shell(f"{ADDRESS_PIPELINE}; {PROBE_PIPELINE}")
        address, probe = result.stdout.split("\n", 1)
        self.assertEqual(address, "127.0.0.1")
        self.assertIn("34246", probe)
        self.assertEqual(probe.count("\n"), 1)

    def test_lsof_text_and_file(self):
        raw = self.write("lsof.txt", "tlrcd 1 root 3 10.0.0.9 SOCKET_INET")
        rows = [
            (["--lsof", "one line"], "one line\n"),
            (["--lsof", ""], ""),
            (["--lsof-file", raw], "tlrcd 1 root 3 10.0.0.9 SOCKET_INET"),
        ]
        for options, expected in rows:
            with self.subTest(options):
                self.assertEqual(shell("lsof -nP -i", *options).stdout, expected)

    def test_localcli_by_sub_command(self):
        pci = self.write("pci.txt", "pci devices\n")
        nic = self.write("nic.txt", "nics\n")
        other = self.write("other.txt", "anything\n")
        script = ("localcli hardware pci list; localcli network nic list; "
                  "localcli system version get")
        result = shell(script, "--localcli-pci", pci, "--localcli-nic", nic,
                       "--localcli", other)
        self.assertEqual(result.stdout, "pci devices\nnics\nanything\n")
        self.assertEqual(shell("localcli hardware pci list; echo status $?").stdout,
                         "status 0\n")

    def test_trace_configuration(self):
        result = shell(f"cat {TRACE_DIR}/global_trace.ini", "--trace-level", "5")
        self.assertEqual(result.stdout, "[GlobalDebugSettings]\nDynamicUpdate=0\n"
                                        "[EM_TLRAID]\nFileDebugLevel=5\n[EndOfFile]\n")
        trace_dir = os.path.dirname(self.write("trace/EM_TLRAID.ini", "[EM_TLRAID]\n"))
        self.write("trace/global_trace.ini", "x")
        result = shell(f"ls {TRACE_DIR}; cat {TRACE_DIR}/global_trace.ini", "--trace-dir",
                       trace_dir, "--trace-level", "3")
        self.assertEqual(result.stdout.split("[", 1)[0], "EM_TLRAID.ini\nglobal_trace.ini\n")
        self.assertIn("FileDebugLevel=3", result.stdout)

    def test_adapter_ini_and_copies(self):
        ini = self.write("Adapter.ini", "[Adapters]\n")
        data = self.write("data/file.txt", "data\n")
        result = shell("cat /opt/TessalineHost/vital/etc/tlmagt/Adapter.ini "
                       "/run/extra/file.txt /opt/tree/data/file.txt",
                       "--adapter-ini", ini, "--copy", f"{data}=/run/extra/file.txt",
                       "--copy", f"{os.path.dirname(data)}=/opt/tree/data")
        self.assertEqual(result.stdout, "[Adapters]\ndata\ndata\n", result.stderr)

    def test_pci_devices_cover_the_private_proc_only(self):
        before = self.host_pci_devices()
        devices = self.write("devices", "1800\t100010e2\ttlraid_sas\n")
        result = shell("cat /proc/bus/pci/devices; printf 'rewritten\\n' > "
                       "/run/tlr-sandbox/pci-devices; cat /proc/bus/pci/devices",
                       "--pci-devices", devices)
        self.assertEqual(result.stdout, "1800\t100010e2\ttlraid_sas\nrewritten\n",
                         result.stderr)
        self.assertEqual(self.host_pci_devices(), before)

    @staticmethod
    def host_pci_devices():
        if not os.path.exists("/proc/bus/pci/devices"):
            return None
        with open("/proc/bus/pci/devices") as host:
            return host.read()

    def test_simulator_runs_during_the_command(self):
        script = ("exec 3<>/dev/tcp/127.0.0.1/34246 && echo open; "
                  f'[ "$(cat {PID_FILE})" = "$(pgrep -x tlrcd-sim)" ] && echo pid')
        result = sandbox("--sim", "--client-id  TLRM_CLIENT_TLAS", "--", "bash", "-c", script)
        self.assertEqual(result.stdout, "open\npid\n", result.stderr)

    def test_refusals(self):
        rows = [
            (["--bogus", "true"], "unknown option"),
            (["--raid", "maybe", "true"], "--raid wants"),
            (["--trace-level", "high", "true"], "--trace-level wants a number"),
            (["--copy", "/etc/hostname=/etc/x", "true"], "under /opt, /run or /var/run"),
            (["--lsof-file", "/no/such/file", "true"], "cannot read"),
            (["--sim", "--bogus", "true"], "unknown option '--bogus'"),
            (["--sim", "", "--sim-bin", "/no/such/sim", "true"], "no simulator"),
            ([], "no COMMAND"),
        ]
        for args, message in rows:
            with self.subTest(args):
                result = sandbox(*args)
                self.assertEqual(result.returncode, 125)
                self.assertIn(message, result.stderr)

    def refusing_unshare(self):
        """An environment whose unshare fails as on a machine without namespaces."""
        fake = self.write("bin/unshare", "#!/bin/sh\necho 'unshare: Operation not permitted' >&2\nexit 1\n")
        os.chmod(fake, 0o755)
        return dict(os.environ, PATH=os.path.dirname(fake) + ":" + os.environ["PATH"])

    def test_check_says_whether_namespaces_can_be_made(self):
        self.assertEqual(sandbox("--check").returncode, 0)
        refused = sandbox("--check", env=self.refusing_unshare())
        self.assertEqual(refused.returncode, 125)
        self.assertIn("cannot create mount", refused.stderr)
        self.assertIn("Operation not permitted", refused.stderr)

    def test_test_launcher_lists_without_namespaces_and_skips_with_the_reason(self):
        launcher = os.path.join(os.path.dirname(SANDBOX), "sandbox-test")
        env = self.refusing_unshare()
        listed = subprocess.run([launcher, "--", "echo", "--gtest_list_tests"], env=env,
                                capture_output=True, text=True, timeout=60)
        self.assertEqual((listed.returncode, listed.stdout), (0, "--gtest_list_tests\n"))
        for options in ([], ["--outside"]):
            skipped = subprocess.run([launcher, *options, "--", "echo", "ran"], env=env,
                                     capture_output=True, text=True, timeout=60)
            self.assertEqual(skipped.returncode, 0)
            self.assertTrue(skipped.stdout.startswith("[  SKIPPED ] needs the sandbox"))
            self.assertIn("Operation not permitted", skipped.stdout)
        inside = subprocess.run([launcher, "--raid", "installed", "--", "sh", "-c",
                                 f"test -e {INSTALL_MARK} && echo inside"],
                                capture_output=True, text=True, timeout=60)
        self.assertEqual((inside.returncode, inside.stdout), (0, "inside\n"))

    def test_help_explains_every_option(self):
        result = sandbox("--help")
        self.assertEqual(result.returncode, 0)
        for option in ("--trace-level", "--trace-dir", "--raid", "--lsof ", "--lsof-file",
                       "--localcli ", "--localcli-pci", "--localcli-nic", "--adapter-ini",
                       "--pci-devices", "--copy", "--sim ", "--sim-bin", "--check", "--help"):
            self.assertIn(option, result.stdout)


if __name__ == "__main__":
    if "--sandbox" in sys.argv:
        at = sys.argv.index("--sandbox")
        SANDBOX = os.path.abspath(sys.argv[at + 1])
        del sys.argv[at:at + 2]
    if not SANDBOX:
        sys.exit("usage: sandbox_test.py --sandbox PATH [unittest options]")
    unittest.main()
