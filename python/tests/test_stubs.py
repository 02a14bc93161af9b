# SPDX-License-Identifier: MIT
"""The stub says what the package has."""

import ast
import inspect
import pathlib

import pytest
import tavelor


@pytest.fixture(scope="module")
def stub():
    tree = ast.parse(pathlib.Path(tavelor.__file__).with_name("__init__.pyi").read_text(encoding="utf-8"))
    return {node.name: node for node in tree.body if isinstance(node, (ast.ClassDef, ast.FunctionDef))}


def functions(node):
    """By name; of a property the one that reads."""
    return {entry.name: entry for entry in reversed(node.body) if isinstance(entry, ast.FunctionDef)}


@pytest.mark.parametrize("name", [name for name in tavelor.classes() if name not in ("Recordset", "Connection")])
def test_every_member_is_there_with_its_parameters(stub, name):
    of = getattr(tavelor, name)
    found = functions(stub[name])
    members = {entry: value for entry, value in vars(of).items() if type(value).__name__ in ("Member", "Property")}
    assert set(found) - {"__call__"} == set(members)
    for member, value in members.items():
        assert ast.get_docstring(found[member]).startswith(value.signature[:20])
        if type(value).__name__ == "Property":
            continue
        arguments = found[member].args
        signature = inspect.signature(value)
        assert [argument.arg for argument in arguments.args] == list(signature.parameters)
        without = [p.name for p in signature.parameters.values() if p.default is inspect.Parameter.empty]
        assert len(arguments.args) - len(arguments.defaults) == len(without), member


def test_what_is_written_by_hand_is_there(stub):
    for name, node in stub.items():
        if "_" in name or name in tavelor.classes() or name == "Listener":
            continue
        real = getattr(tavelor, name)
        if isinstance(node, ast.FunctionDef):
            assert [argument.arg for argument in node.args.args] == [
                p.name for p in inspect.signature(real).parameters.values() if p.kind is p.POSITIONAL_OR_KEYWORD
            ]
        else:
            missing = [entry for entry in functions(node) if not hasattr(real, entry)]
            assert name == "Shop" and set(missing) <= set(dir_of_shop()) or not missing, (name, missing)


def dir_of_shop():
    return {name for name in tavelor.classes()} | {name[0].upper() + name[1:] for name in tavelor.classes()}


def test_outputs_are_named_as_they_come(stub):
    for name in ("clsArticulos_GetDatos", "clsArticulos_ObtenerDescripcion"):
        fields = [entry.target.id for entry in stub[name].body if isinstance(entry, ast.AnnAssign)]
        assert tuple(fields) == getattr(tavelor, name)._fields
