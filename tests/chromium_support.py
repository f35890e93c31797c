"""Opens pages in a headless Chromium."""

import base64
import json
import os
import re
import shutil
import subprocess
import tempfile

SKIPPED = 77
CHROMIUM = shutil.which("chromium") or shutil.which("google-chrome")


def opened(folder, page, fragment=""):
    """The document after its scripts have run. No page gets at anything outside."""
    path = os.path.join(folder, "page.html")
    with open(path, "w", encoding="utf-8") as file:
        file.write(page)
    run = subprocess.run(
        [CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--disable-quic",
         "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--host-resolver-rules=MAP * ~NOTFOUND", "--user-data-dir=" + os.path.join(folder, "profile"),
         "--virtual-time-budget=5000", "--dump-dom", "file://" + path + "#" + fragment],
        capture_output=True, timeout=120)
    return run.stdout.decode()


# What a page of a test ends with, to give `result` back.
GIVE_BACK = """
const bytes = new TextEncoder().encode(JSON.stringify(result));
document.body.textContent = "@" + btoa(Array.from(bytes, byte => String.fromCharCode(byte)).join("")) + "@";
</script>"""


def evaluated(collector, data):
    """The result of a page with such an end, with the data in the place of the word DATA."""
    page = collector.replace("DATA", json.dumps(data).replace("<", "\\u003c"), 1)
    with tempfile.TemporaryDirectory() as folder:
        document = opened(folder, page)
    return json.loads(base64.b64decode(re.search("@([^@]*)@", document)[1]))
