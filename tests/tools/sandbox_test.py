"""Tests of tools/sandbox/sandbox and of build/sandbox-test beside it, run from outside:
    python3 sandbox_test.py --sandbox build/sandbox
What keeps the host safe, the RAID manager's states, and the skipping; the options that other
tests use (--sim, --lsof, --localcli-pci, --trace-level, ...) show in those tests.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

INSTALL_MARK = "/opt/BrennockTLRC/bin/tlrcd"
PID_FILE = "/var/run/vmware/daemon-BrennockTLRC-tlrcd.pid"


def sandbox(*args, env=None, cwd=None):
    return subprocess.run([SANDBOX, *args], capture_output=True, text=True, env=env, cwd=cwd,
                          timeout=60)


def shell(script, *options, env=None, cwd=None):
    return sandbox(*options, "--", "sh", "-c", script, env=env, cwd=cwd)


class SandboxTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="sandbox-test.")
        self.addCleanup(shutil.rmtree, self.dir)

    def write(self, name, text):
        path = os.path.join(self.dir, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as out:
            out.write(text)
        return path

    def test_host_paths_are_private_and_the_rest_passes_through(self):
        pci_before = self.host_pci_devices()
        devices = self.write("devices", "1800\t100010e2\ttlraid_sas\n")
        env = dict(os.environ, SANDBOX_TEST_VALUE="kept")
        result = shell("touch /opt/sandbox-test-mark /run/sandbox-test-mark; "
                       "find /opt -type f | sort; ip -o link | cut -d' ' -f2,9; "
                       "printf 'rewritten\\n' > /run/tlr-sandbox/pci-devices; "
                       'cat /proc/bus/pci/devices; echo "$SANDBOX_TEST_VALUE $(pwd)"; exit 7',
                       "--raid", "none", "--pci-devices", devices, env=env, cwd=self.dir)
        self.assertEqual(result.returncode, 7, result.stderr)
        self.assertEqual(result.stdout, "/opt/sandbox-test-mark\nlo: UNKNOWN\nrewritten\n"
                                        f"kept {self.dir}\n")
        self.assertFalse(os.path.exists("/opt/sandbox-test-mark"))
        self.assertFalse(os.path.exists("/run/sandbox-test-mark"))
        self.assertEqual(self.host_pci_devices(), pci_before)
        refused = sandbox("--copy", "/etc/hostname=/etc/x", "true")
        self.assertEqual(refused.returncode, 125)
        self.assertIn("under /opt, /run or /var/run", refused.stderr)

    @staticmethod
    def host_pci_devices():
        if not os.path.exists("/proc/bus/pci/devices"):
            return None
        with open("/proc/bus/pci/devices") as host:
            return host.read()

    def test_raid_states(self):
        rows = [("none", ""), ("installed", INSTALL_MARK), ("running", INSTALL_MARK + PID_FILE)]
        for state, expected in rows:
            with self.subTest(state):
                result = shell(f"for f in {INSTALL_MARK} {PID_FILE}; do "
                               f'[ -e "$f" ] && printf %s "$f"; done; true', "--raid", state)
                self.assertEqual(result.stdout, expected, result.stderr)

    def refusing_unshare(self):
        """An environment whose unshare fails as on a machine without namespaces."""
        fake = self.write("bin/unshare",
                          "#!/bin/sh\necho 'unshare: Operation not permitted' >&2\nexit 1\n")
        os.chmod(fake, 0o755)
        return dict(os.environ, PATH=os.path.dirname(fake) + ":" + os.environ["PATH"])

    def test_without_namespaces_tests_are_listed_and_skipped_with_the_reason(self):
        self.assertEqual(sandbox("--check").returncode, 0)
        env = self.refusing_unshare()
        refused = sandbox("--check", env=env)
        self.assertEqual(refused.returncode, 125)
        self.assertIn("Operation not permitted", refused.stderr)

        launcher = os.path.join(os.path.dirname(SANDBOX), "sandbox-test")
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


if __name__ == "__main__":
    if "--sandbox" not in sys.argv[:-1]:
        sys.exit("usage: sandbox_test.py --sandbox PATH [unittest options]")
    at = sys.argv.index("--sandbox")
    SANDBOX = os.path.abspath(sys.argv.pop(at + 1))
    del sys.argv[at]
    unittest.main()
