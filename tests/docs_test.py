#!/usr/bin/env python3
"""Runs the commands of README and docs/ as a reader would, in a copy of examples/, and looks for their C++, and for what
it prints, in the examples' files. usage: docs_test.py QO SOURCE_FOLDER"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

QO, SOURCE = (os.path.abspath(path) for path in sys.argv[1:3])


def files(folder, ending):
    return [os.path.join(parent, name) for parent, _, names in os.walk(folder) for name in names
            if name.endswith(ending)]


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


# Where the commands of a page run, in examples/.
FOLDERS = {"cookbook.md": "site"}

PAGES = [os.path.join(SOURCE, "README.md"), *files(os.path.join(SOURCE, "docs"), ".md")]


def blocks(language):
    for page in PAGES:
        for block in re.findall(rf"^```{language}\n(.*?)^```", read(page), re.S | re.M):
            yield os.path.basename(page), block


class Docs(unittest.TestCase):
    def test_commands_print_what_the_pages_show(self):
        count = 0
        with tempfile.TemporaryDirectory() as folder:
            examples = shutil.copytree(os.path.join(SOURCE, "examples"), os.path.join(folder, "examples"))
            environment = {**os.environ, "PATH": os.path.dirname(QO) + ":" + os.environ["PATH"]}
            for page, block in blocks("console"):
                for command, expected in re.findall(r"^\$ (.*)\n((?:[^$].*\n|\n)*)", block, re.M):
                    with self.subTest(page=page, command=command):
                        run = subprocess.run(["sh", "-c", command], cwd=os.path.join(examples, FOLDERS.get(page, "")),
                                             env=environment, text=True,
                                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                        self.assertEqual(run.stdout, expected)
                        count += 1
        self.assertGreater(count, 35)

    def test_snippets_are_lines_of_the_examples(self):
        for language, ending in [("cpp", ".cpp"), ("text", ".txt")]:
            examples = [read(path) for path in files(os.path.join(SOURCE, "examples"), ending)]
            for page, block in blocks(language):
                with self.subTest(page=page, block=block):
                    self.assertTrue(any(block in example for example in examples))

    def test_the_guide_has_the_project_of_its_example(self):
        project = read(os.path.join(SOURCE, "examples/guide/CMakeLists.txt"))
        self.assertIn(("qo_page.md", project), blocks("cmake"))

    def test_links_lead_somewhere(self):
        for page in [*PAGES, os.path.join(SOURCE, "CONTRIBUTING.md")]:
            text = re.sub(r"^```.*?^```", "", read(page), flags=re.S | re.M)
            for target in re.findall(r"\]\(([^)#:]+)[^):]*\)", text):
                with self.subTest(page=page, target=target):
                    self.assertTrue(os.path.exists(os.path.join(os.path.dirname(page), target)))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
