"""The example, on a folder of its own."""

import os
import subprocess
import sys

EXAMPLE = os.path.join(os.environ["QO_SOURCE"], "examples/python/add_noopener.py")


def run(*arguments):
    done = subprocess.run([sys.executable, "-B", EXAMPLE, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          text=True, check=False)
    return done.returncode, done.stdout, done.stderr


def test_links_get_rel(tmp_path):
    page, other = tmp_path / "a.html", tmp_path / "b.php"
    page.write_text("<a target=_blank href='{{ x }}'>x</a>\n<a>y</a>\n")
    other.write_text("<a target=_blank <?= $x ?> >x</a>\n<a rel=me target=_blank>z</a>\n")
    shown = run(str(tmp_path))
    assert page.read_text().count("noopener") == 0 and "+<a target=_blank href='{{ x }}' rel='noopener'>" in shown[1]
    written = run("-w", str(tmp_path))
    assert written == shown
    assert page.read_text() == "<a target=_blank href='{{ x }}' rel='noopener'>x</a>\n<a>y</a>\n"
    assert run(str(tmp_path / "none"))[0] == 1 and run()[0] == 2
