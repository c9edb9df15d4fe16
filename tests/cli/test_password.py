"""Nothing that the program says or writes holds a password: neither the file's own nor one that was tried."""
import os
import signal
import subprocess

import support

TRIED = "tried-0ne"
NAMES = (support.PASSWORD, TRIED)


class Secrets(support.CliTest):
    def setUp(self):
        super().setUp()
        self.path = self.league()

    def assert_silent(self, what, *texts):
        for text in texts:
            for name in NAMES:
                for coded in (name.encode(), name.encode("utf-16-le")):
                    self.assertNotIn(coded, text, what)

    def tell(self, *words, **env):
        done = support.run("--folder", self.folder, *words, env=env)
        self.assert_silent(words, done.stdout.encode(), done.stderr.encode())
        return done.returncode

    def test_what_is_said(self):
        tried = self.folder / "tried"
        tried.write_text(TRIED + "\n")
        ways = [((), {}), (("--password", TRIED), {}), (("--password-file", tried), {}), ((), {"HALCYRA_PASSWORD": TRIED}),
                (("--password", support.PASSWORD), {}), (("--password", TRIED + ";pwd=" + support.PASSWORD), {}),
                (("--password",), {}), (("--password-file", self.folder), {})]
        codes = set()
        files = [support.FIXTURES / f"{name}.mdb" for name in (
            "league", "league-damaged-catalog", "league-damaged-password", "league-encoded")] + [self.folder / "none.mdb"]
        for file in files:
            for given, env in ways:
                for words in (("dump", "MSysObjects"), ("check",), ("query", "select * from [no such]")):
                    codes.add(self.tell(words[0], "--file", file, *words[1:], *given, **env))
        self.assertIn(support.DONE, codes)
        self.assertIn(support.CANNOT_OPEN, codes)
        for words in (("info",), ("info", "--json"), ("settings",), ("season", "list"), ("dump", "settings", "--json")):
            self.assertEqual(self.tell(*words), support.DONE, words)
        for name in ("league-damaged-catalog", "league-damaged-password", "league-damaged-magic"):
            self.league(name + ".mdb")
            self.assertNotEqual(self.tell("info"), support.DONE)

    def test_what_is_written(self):
        """A log that a killed process leaves, and the files beside it."""
        shell = subprocess.Popen([support.PROGRAM, "--folder", str(self.folder), "shell"], stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=support.environment())
        shell.stdin.write(b"settings --current-season 3\n")
        shell.stdin.flush()
        log = self.folder / (support.LIVE + "-log")
        while not log.exists() and shell.poll() is None:
            pass
        shell.send_signal(signal.SIGKILL)
        said = shell.communicate()[0]
        self.assertTrue(log.exists())
        self.assert_silent("shell", said, *[(self.folder / name).read_bytes() for name in os.listdir(self.folder)])


if __name__ == "__main__":
    support.main()
