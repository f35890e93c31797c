#!/usr/bin/env python3
"""Fetches templates from packages of npm and Debian, for compare_edits.mjs.

FOLDER gets a folder for each language, and in it one for each package, with the package's own paths in it. What is
there already is not fetched again.

usage: fetch_templates.py FOLDER
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

from fetch_pages import even_sample, is_template, unpack

TEMPLATES_PER_PACKAGE = 150
LARGEST_TEMPLATE = 200_000

# For each language: the ending of its files, and packages that hold such files. Angular's are in compiled modules.
NPM = {
    "angular": (
        ".mjs",
        "@angular/material@22.2.6 @clr/angular@18.2.2 @ng-bootstrap/ng-bootstrap@21.0.0 ngx-bootstrap@22.0.0 "
        "ng-zorro-antd@22.1.1 primeng@22.1.1",
    ),
    "astro": (
        ".astro",
        "@astrojs/starlight@0.42.4 accessible-astro-components@5.8.0 astro-breadcrumbs@3.4.2 astro-pagefind@2.0.1 "
        "astro-seo@1.2.0 starlight-blog@0.30.0 starlight-openapi@0.26.1",
    ),
    "ejs": (
        ".ejs",
        "express-generator@4.16.1 hexo-theme-fluid@1.9.9 hexo-theme-keep@4.3.0 hexo-theme-landscape@1.1.0 "
        "hexo-theme-stellar@1.44.0 hexo-theme-volantis@6.8.3",
    ),
    "handlebars": (
        ".hbs",
        "@compodoc/compodoc@2.0.0 bootprint-openapi@4.0.4 express-generator@4.16.1 kss@3.1.0 spectacle-docs@1.1.0 "
        "typedoc-default-themes@0.12.10",
    ),
    "nunjucks": (
        ".njk",
        "@ministryofjustice/frontend@11.1.0 govuk-frontend@6.6.0 hexo-theme-next@8.29.0 hmrc-frontend@7.27.0 "
        "nhsuk-frontend@10.6.1",
    ),
    "svelte": (
        ".svelte",
        "@smui/data-table@8.0.3 @sveltestrap/sveltestrap@7.1.0 bits-ui@2.21.0 carbon-components-svelte@0.112.1 "
        "flowbite-svelte@1.33.1 svelte-select@6.0.0",
    ),
    "twig": (".twig", "@bolt/components-card@2.8.1 @openeuropa/bcl-theme-default@0.5010.202609231930 kss@3.1.0"),
    "vue": (
        ".vue",
        "buefy@3.1.0 element-ui@2.15.14 primevue@5.0.2 view-design@4.7.0 vitepress@1.6.4 vue-select@3.20.4",
    ),
}
DEBIAN = {
    "php": (".php", "dokuwiki phpldapadmin wordpress-theme-twentytwentyone zabbix-frontend-php zoph"),
    "twig": (".twig", "php-symfony-web-profiler-bundle phpmyadmin"),
}

# A template in the module that a component was compiled to: a string that is one of JSON, too, or has no escapes.
COMPILED_TEMPLATE = re.compile(r'\btemplate: (?:("(?:[^"\\]|\\.)*")|`([^`\\$]*)`)')


def unpack_npm(package, tree):
    command = ["npm", "pack", "--silent", "--pack-destination", tree.parent, package]
    archive = subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()
    tree.mkdir()
    subprocess.run(["tar", "-xzf", tree.parent / archive, "-C", tree], check=True)


def compiled_templates(path, text):
    found = {json.loads(literal) if literal else plain: None for literal, plain in COMPILED_TEMPLATE.findall(text)}
    for number, template in enumerate(found):
        yield path.with_suffix(f".{number}.html"), template


def is_wanted(path, template, suffix):
    return is_template(path, template.encode()) if suffix == ".php" else "<" in template


def templates(tree, suffix):
    for path in sorted(tree.rglob("*" + suffix)):
        if not path.is_file() or path.is_symlink():
            continue
        text = path.read_text("utf-8", errors="replace")
        name = path.relative_to(tree)
        found = compiled_templates(name, text) if suffix == ".mjs" else [(name, text)]
        for place, template in found:
            if "\ufffd" not in template and len(template) <= LARGEST_TEMPLATE and is_wanted(path, template, suffix):
                yield place, template


def fetch(package, folder, suffix, unpacker):
    if folder.exists():
        return
    with tempfile.TemporaryDirectory() as work:
        tree = pathlib.Path(work, "tree")
        unpacker(package, tree)
        found = even_sample(list(templates(tree, suffix)), TEMPLATES_PER_PACKAGE)
    for path, text in found:
        target = folder / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(text.encode())
    print(f"{len(found):5} {folder}", flush=True)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    for table, unpacker in ((NPM, unpack_npm), (DEBIAN, unpack)):
        for language, (suffix, packages) in table.items():
            for package in packages.split():
                name = re.sub(r"(?<=.)@.*", "", package).replace("/", "-").lstrip("@")
                fetch(package, folder / language / name, suffix, unpacker)


if __name__ == "__main__":
    main()
