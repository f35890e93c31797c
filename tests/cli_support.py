"""What the tests of qo share. They run it as its users do. usage of each: TEST.py QO SOURCE_FOLDER"""

import os
import subprocess
import sys
import tempfile
import unittest

QO, SOURCE = (os.path.abspath(path) for path in sys.argv[1:3])


def qo(*arguments, stdin=b"", **options):
    """Returns exit status, results and messages."""
    data = stdin.encode() if isinstance(stdin, str) else stdin
    run = subprocess.run([QO, *arguments], input=data, capture_output=True, timeout=100, **options)
    return run.returncode, run.stdout, run.stderr.decode()


class Cli(unittest.TestCase):
    """Each test runs in a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    def write(self, name, text):
        with open(name, "wb") as file:
            file.write(text.encode() if isinstance(text, str) else text)

    def read(self, name):
        with open(name, "rb") as file:
            return file.read().decode()

    def check(self, rows):
        """Rows of arguments, standard input, results and, where it is not 0, the exit status."""
        for arguments, stdin, results, *status in rows:
            with self.subTest(arguments=arguments, stdin=stdin):
                found = qo(*arguments, stdin=stdin)
                self.assertEqual((found[0], found[1].decode()), (status[0] if status else 0, results))
                self.assertEqual(found[2], "")

    def complaint(self, arguments, message, stdin="", status=2):
        """Returns the results."""
        with self.subTest(arguments=arguments):
            found = qo(*arguments, stdin=stdin)
            self.assertEqual((found[0], found[2]), (status, message))
            return found[1].decode()


def main():
    unittest.main(argv=sys.argv[:1])
