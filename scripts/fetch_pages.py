#!/usr/bin/env python3
"""Fetches real pages and templates from Debian's packages, to try the tool on.

FOLDER/templates and FOLDER/documentation get a folder for each package, with the package's own paths in it. Of each
package it takes an even sample, in the order of their names. What is there already is not fetched again.

usage: fetch_pages.py FOLDER
"""

import pathlib
import re
import subprocess
import sys
import tempfile

from unpack_bench_pages import read

TEMPLATES_PER_PACKAGE = 250
PAGES_PER_PACKAGE = 150
LARGEST_PAGE = 4_000_000

TEMPLATES = """
    cacti cups-server-common dokuwiki freedombox ganglia-webfrontend gosa hoteldruid icingaweb2
    icingaweb2-module-monitoring lava-server ledgersmb libapache-gallery-perl libervia-templates
    liblemonldap-ng-manager-perl liblemonldap-ng-portal-perl mediawiki mercurial-common mkdocs-material munin
    nagios4-cgi node-express openguides openqa php-horde-imp php-symfony-web-profiler-bundle phpldapadmin phpmyadmin
    postfixadmin prometheus prosody-modules python3-django python3-django-allauth
    python3-django-crispy-forms python3-django-horizon python3-django-hyperkitty python3-django-postorius
    python3-djangorestframework python3-flask-security python3-searx r-cran-pkgdown redmine roundcube-core
    roundcube-skin-classic roundcube-skin-larry ruby-devise ruby-doorkeeper ruby-railties ruby-sidekiq shaarli
    simplesamlphp sphinx-common sql-ledger sympa tomcat10-admin tomcat10-examples tt-rss vdradmin-am
    w3c-markup-validator wordpress wordpress-theme-twentytwentyone yard zabbix-frontend-php zoneminder zoph
""".split()

DOCUMENTATION = """
    abs-guide analog anarchism ant-doc aptitude-doc-ja autoconf-doc bash-doc collectl debian-history
    docbook-dsssl-doc eggdrop-data emscripten-doc erlang-doc exim4-doc-html focalinux-html geomview git-annex
    gri-html-doc jedit junit4-doc jython-doc libghc-pandoc-doc libgtk-3-doc libllvm-16-ocaml-dev libnewlib-doc
    libqwt-doc libsdl2-doc lilypond-doc-html maxima-doc mh-book mhonarc ncurses-doc netcdf-doc nim-doc nodejs-doc
    ntpsec-doc php-twig-doc picolisp png-definitive-guide postfix-doc python-django-doc python-jinja2-doc
    qtbase5-doc-html racket-doc ruby-pg rust-doc samhain saods9-doc stl-manual texinfo velocity-doc vim-doc
    weechat-doc xymon yard-doc
""".split()

PAGE_SUFFIXES = (".html", ".htm", ".html.gz", ".htm.gz", ".xhtml")
TEMPLATE_SUFFIXES = (
    *PAGE_SUFFIXES,
    *(".ejs .ep .erb .ftl .handlebars .hbs .inc .j2 .jinja .jinja2 .jsp .latte .mako .mustache .php .phtml".split()),
    *(".tag .tmpl .tpl .tt .tt2 .twig".split()),
)

TEMPLATE_CODE = re.compile(rb"<\?.*?(\?>|\Z)|<%.*?%>|\{\{.*?\}\}|\{%.*?%\}", re.DOTALL)
MARKUP = re.compile(rb"</?(a|b|body|div|form|h[1-6]|head|html|input|li|p|span|t[dr]|table|ul)[\s/>]", re.IGNORECASE)


def is_page(path, _):
    return path.name.endswith(PAGE_SUFFIXES)


def is_template(path, text):
    """Whether there is markup outside template code; a script of PHP or the like has none."""
    is_manual = "/usr/share/doc/" in str(path) and "/examples/" not in str(path)
    return not is_manual and MARKUP.search(TEMPLATE_CODE.sub(b"", text))


def even_sample(items, count):
    return [items[i * len(items) // count] for i in range(count)] if len(items) > count else items


def unpack(package, tree):
    # apt fetches as a user of its own, which may write here
    tree.parent.chmod(0o777)
    subprocess.run(["apt-get", "download", "-qq", package], cwd=tree.parent, check=True)
    (archive,) = tree.parent.glob("*.deb")
    subprocess.run(["dpkg-deb", "-x", archive, tree], check=True)


def regular_files(tree):
    return sorted(path for path in tree.rglob("*") if path.is_file() and not path.is_symlink())


def wanted_pages(tree, is_wanted):
    for path in regular_files(tree):
        if path.name.endswith(TEMPLATE_SUFFIXES) and path.stat().st_size <= LARGEST_PAGE:
            text = read(path)
            if is_wanted(path, text):
                yield path.relative_to(tree), text


def fetch(package, folder, is_wanted, count):
    if folder.exists():
        return
    with tempfile.TemporaryDirectory() as work:
        tree = pathlib.Path(work, "tree")
        unpack(package, tree)
        pages = even_sample(list(wanted_pages(tree, is_wanted)), count)
    for path, text in pages:
        target = folder / (path.with_suffix("") if path.suffix == ".gz" else path)
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(text)
    print(f"{len(pages):5} {folder}", flush=True)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    for package in TEMPLATES:
        fetch(package, folder / "templates" / package, is_template, TEMPLATES_PER_PACKAGE)
    for package in DOCUMENTATION:
        fetch(package, folder / "documentation" / package, is_page, PAGES_PER_PACKAGE)


if __name__ == "__main__":
    main()
