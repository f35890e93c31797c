"""The stub tells of what there is, and of nothing else."""

import ast
import os

import qo

with open(os.path.join(os.path.dirname(qo.__file__), "__init__.pyi"), encoding="utf-8") as stub_file:
    STUB = ast.parse(stub_file.read())

CLASSES = {node.name: node for node in STUB.body if isinstance(node, ast.ClassDef)}
OF_ALL = {"__init__", "__hash__", "__buffer__"}  # every class has the one, and the other is a protocol


def names_in(node):
    for item in node.body:
        if isinstance(item, ast.FunctionDef):
            yield item.name
        if isinstance(item, ast.AnnAssign):
            yield item.target.id


def test_every_public_name_is_in_the_stub():
    functions = {node.name for node in STUB.body if isinstance(node, ast.FunctionDef)}
    assert functions | set(CLASSES) == set(qo.__all__)


def test_every_class_has_what_the_stub_says():
    for name, node in CLASSES.items():
        own = getattr(qo, name)
        told = set(names_in(node))
        made = {"result", "page", "source", "paths", "node", "rows", "offset", "line", "column"}  # by __init__
        assert {one for one in told if not hasattr(own, one)} <= made | OF_ALL, name
        public = {one for one in vars(own) if not one.startswith("_")}
        assert public <= told, name
