"""Opens pages in a headless Chromium."""

import os
import shutil
import subprocess

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
