#!/usr/bin/env python3
"""Opens what `qo tree --html` makes of a hostile page in Chromium. usage: tree_page_test.py QO"""

import html
import os
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
CHROMIUM = shutil.which("chromium") or shutil.which("google-chrome")

# Whatever runs changes the title.
RUN = "document.title='run'"
HOSTILE = f"""<!DOCTYPE html>
<title>\u2028</title><p class="</script><script>{RUN}</script>">&lt;script&gt;{RUN}</p>
<img src="x" onerror="{RUN}"><script>{RUN}</script><svg onload="{RUN}"></svg><p a='"><img src=x'>
<!-- </script><script>{RUN}</script> --><iframe srcdoc="<script>top.{RUN}</script>"></iframe>
<style>@import "http://127.0.0.1:9/";</style><link rel="stylesheet" href="http://127.0.0.1:9/">
<meta http-equiv="refresh" content="0;url=data:text/html,x"><base href="http://127.0.0.1:9/">
<table><tr><td>a</td></tr></table><p>b<p c=1>d<![CDATA[e]]>]]\\u003c
""".encode() + b"\xff\x00\xed\xa0\x80" + b"<i>" * 3000


def opened(folder, page):
    """The document after its scripts have run."""
    path = os.path.join(folder, "page.html")
    with open(path, "w", encoding="utf-8") as file:
        file.write(page)
    run = subprocess.run(
        [CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--disable-quic",
         "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--user-data-dir=" + os.path.join(folder, "profile"), "--virtual-time-budget=5000", "--dump-dom",
         "file://" + path], capture_output=True, timeout=120)
    return run.stdout.decode()


def title(document):
    return html.unescape(re.search("<title>(.*?)</title>", document, re.S)[1])


def main():
    if CHROMIUM is None:
        print("SKIPPED: there is no chromium to open the page in")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        def qo(*arguments):
            return subprocess.run([sys.argv[1], *arguments], input=HOSTILE, capture_output=True, check=True).stdout

        page = qo("tree", "--html", "--select", "p").decode()
        document = opened(folder, page)
        assert title(document) == "(standard input) \u2013 tree", title(document)
        body = dict(re.findall(r'data-(\w+)="(\d+)"', re.search("<body[^>]*>", document)[0]))
        matches = int(qo("select", "-c", "p"))
        assert matches == int(body["matches"]) == len(re.findall('class="row [^"]*match', document)), body
        assert int(body["nodes"]) == qo("tree", "--blanks").count(b"\n"), body
        for badge in ("not in the browser", "only in the browser", "elsewhere in the browser",
                      "other attributes in the browser"):
            assert badge in document, badge
        shown = html.unescape(re.sub("<[^>]*>", "", document))
        assert f'<p class="</script><script>{RUN}</script>">' in shown
        assert '<img src="x" onerror="' + RUN in shown

        # Even markup that broke out of the data would not run.
        broken = page.replace("</body>", f"<script>{RUN}</script><img src=x onerror=\"{RUN}\"></body>")
        assert title(opened(folder, broken)) == "(standard input) \u2013 tree"
        # And the title would tell.
        unguarded = re.sub("<meta http-equiv[^>]*>", "", broken)
        assert title(opened(folder, unguarded)) == "run"
    print("the hostile page is shown, and nothing of it ran")
    return 0


sys.exit(main())
