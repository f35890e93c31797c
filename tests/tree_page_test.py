#!/usr/bin/env python3
"""Opens what `qo tree --html` makes of a hostile page in Chromium. usage: tree_page_test.py QO"""

import html
import re
import subprocess
import sys
import tempfile

from chromium_support import CHROMIUM, SKIPPED, opened

# Whatever runs changes the title.
RUN = "document.title='run'"
HOSTILE = f"""<!DOCTYPE html>
<title>\u2028</title><br d=2><p class="</script><script>{RUN}</script>">&lt;script&gt;{RUN}</p>
<img src="x" onerror="{RUN}"><script>{RUN}</script><svg onload="{RUN}"></svg><p a='"><img src=x'>
<!-- </script><script>{RUN}</script> --><iframe srcdoc="<script>top.{RUN}</script>"></iframe>
<style>@import "http://127.0.0.1:9/";</style><link rel="stylesheet" href="http://127.0.0.1:9/">
<meta http-equiv="refresh" content="0;url=data:text/html,x"><base href="http://127.0.0.1:9/">
<table><tr><td>a</td></tr></table><p>b<p c=1>d<![CDATA[e]]>]]\\u003c{{{{ '<b>' }}}}
""".encode() + b"\xff\x00\xed\xa0\x80" + b"<i>" * 3000
TITLE = "(standard input) \u2013 tree"


def title(document):
    return html.unescape(re.search("<title>(.*?)</title>", document, re.S)[1])


def facts(document):
    """What the page tells of itself in the data of its body."""
    return dict(re.findall(r'data-(\w+)="(\w+)"', re.search("<body[^>]*>", document)[0]))


def without_policy(page):
    return re.sub("<meta http-equiv[^>]*>", "", page)


def qo(*arguments, page=HOSTILE):
    return subprocess.run([sys.argv[1], *arguments], input=page, capture_output=True, check=True).stdout


def check_reading(document, options, badges):
    """The reading on the left, with matches of "p" in it."""
    assert title(document) == TITLE, title(document)
    found = facts(document)
    matches = int(qo("select", "-c", *options, "p"))
    assert matches == int(found["matches"]) == len(re.findall('class="row [^"]*match', document)), found
    assert int(found["nodes"]) == qo("tree", "--blanks", *options).count(b"\n"), found
    for badge in badges:
        assert f">{badge}<" in document, badge
    shown = html.unescape(re.sub("<[^>]*>", "", document))
    assert f'<p class="</script><script>{RUN}</script>">' in shown
    assert '<img src="x" onerror="' + RUN in shown


def check_chooser(folder, page, choice, left, right):
    """Chooses a reading for the left side."""
    choose = f"""<script>const chooser = document.querySelector("select"); chooser.value = "{choice}";
      chooser.dispatchEvent(new Event("change"));</script>"""
    found = facts(opened(folder, without_policy(page).replace("</body>", choose + "</body>")))
    assert (found["left"], found["right"]) == (left, right), found


def main():
    if CHROMIUM is None:
        print("SKIPPED: there is no chromium to open the page in")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        page = qo("tree", "--html", "--select", "p").decode()
        check_reading(opened(folder, page), [], [
            "missing in the browser", "missing for qo", "elsewhere in the browser"])
        check_reading(opened(folder, page, "page,host"), [], [
            "missing for a host", "missing for qo", "elsewhere for a host", "other attributes for a host"])
        as_host = qo("tree", "--html", "--host", "--select", "p").decode()
        check_reading(opened(folder, as_host), ["--host"], [
            "missing in the browser", "missing for a host", "other attributes for a host"])
        check_chooser(folder, page, "host", "host", "browser")
        check_chooser(folder, page, "browser", "browser", "page")

        refused = qo("tree", "--html", page=b"<p><a-b>").decode()
        assert '"-" cannot be in a name' in opened(folder, refused, "browser,host")

        # Even markup that broke out of the data would not run.
        broken = page.replace("</body>", f"<script>{RUN}</script><img src=x onerror=\"{RUN}\"></body>")
        assert title(opened(folder, broken)) == TITLE
        # And the title would tell.
        assert title(opened(folder, without_policy(broken))) == "run"
    print("the hostile page is shown, and nothing of it ran")
    return 0


sys.exit(main())
