# SPDX-License-Identifier: MIT
"""Writes the package's stub: what is written by hand (tavelor/__init__.pyi.in), and every class of the component
table with its members, their types and what their comments tell. python make_stubs.py OUT"""

import keyword
import pathlib
import sys
import textwrap

import tavelor
from tavelor import _native

# What a parameter takes, and what a result is.
TAKES = {
    "String": "str",
    "Collection": "str",
    "Variant": "Value",
    "Boolean": "bool | int",
    "Integer": "int",
    "Long": "int",
    "Single": "Number",
    "Double": "Number",
    "Currency": "Number",
    "Date": "Day",
    "Connection": "Connection | None",
    "Recordset": "Recordset | None",
}
GIVES = {
    "String": "str",
    "Collection": "list[str]",
    "Variant": "Any",
    "Boolean": "bool",
    "Integer": "int",
    "Long": "int",
    "Single": "float",
    "Double": "float",
    "Currency": "decimal.Decimal",
    "Date": "datetime.datetime",
    "Connection": "Connection",
    "Recordset": "Recordset",
}


def takes(of):
    return TAKES.get(of, "Object | None")


def gives(of, classes):
    return GIVES.get(of) or (of if of in classes else "Object | None") if of else "None"


def plain(name):
    return name + "_" if keyword.iskeyword(name) else name


def documented(signature, text, indent):
    """A docstring, indented."""
    body = signature + ("\n\n" + textwrap.fill(text, 110 - len(indent)) if text else "")
    body = body.replace("\\", "\\\\").replace('"""', "'''")
    if body.endswith('"'):
        body += " "
    return textwrap.indent(f'"""{body}"""', indent)


def outputs_class(owner, member, classes):
    name, _, result, _, _, parameters = member
    fields = [("result", result)] if result else []
    fields += [(plain(parameter[0]), parameter[1]) for parameter in parameters if parameter[3]]
    lines = [f"class {owner}_{name}(NamedTuple):"]
    lines += [f"    {field}: {gives(of, classes)}" for field, of in fields]
    return "\n".join(lines) + "\n"


def member_stub(owner, member, classes):
    name, is_property, result, signature, text, parameters = member
    outputs = [parameter for parameter in parameters if parameter[3]]
    inputs = [parameter for parameter in parameters if parameter[2]]
    given = f"{owner}_{name}" if outputs else gives(result, classes)
    if is_property and not any(parameter[4] for parameter in inputs):
        lines = ["    @property", f"    def {name}(self) -> {given}:", documented(signature, text, " " * 8)]
        if inputs:
            lines += [f"    @{name}.setter", f"    def {name}(self, value: {takes(inputs[0][1])}) -> None: ..."]
        return "\n".join(lines)
    arguments = ["self"]
    left_out = False
    for parameter, of, _, _, required, by_default in inputs:
        left_out = left_out or not required
        default = f" = {by_default}" if left_out else ""
        # None is what stands for nothing, whatever the type.
        kind = f"{takes(of)} | None" if by_default == "None" and left_out and "None" not in takes(of) else takes(of)
        arguments.append(f"{plain(parameter)}: {kind}{default}")
    return f"    def {name}({', '.join(arguments)}) -> {given}:\n{documented(signature, text, ' ' * 8)}"


def class_stub(name, classes):
    _, _, _, text, members = _native.describe(name)
    above = [outputs_class(name, member, classes) for member in members if any(p[3] for p in member[5])]
    lines = [f"class {name}(Object):", documented(text or name, "", "    ")]
    lines.append(f"    def __call__(self) -> {name}: ...")
    lines += [member_stub(name, member, classes) for member in members]
    return "\n".join(above) + ("\n" if above else "") + "\n".join(lines) + "\n"


def main(out):
    template = pathlib.Path(__file__).with_name("__init__.pyi.in").read_text(encoding="utf-8")
    # Record sets and connections are written by hand, and so are the parts of record sets.
    classes = [name for name in _native.class_names() if name not in ("Recordset", "Connection")]
    shop = []
    for name in classes:
        other = name[0].upper() + name[1:]
        for spelled in dict.fromkeys((name, other)):
            shop.append(f"    @property\n    def {spelled}(self) -> {name}: ...")
    stubs = "\n\n".join(class_stub(name, classes) for name in classes)
    members = {}
    for name in ("Recordset", "Connection"):
        if name in _native.class_names():
            entries = _native.describe(name)[4]
            above = "\n".join(outputs_class(name, entry, classes) for entry in entries if any(p[3] for p in entry[5]))
            stubs += "\n\n" + above
            members[name] = "\n".join(member_stub(name, entry, classes) for entry in entries)
    text = template.replace("    # <the shop's classes>", "\n".join(shop))
    for name in ("Recordset", "Connection"):
        text = text.replace(f"    # <members of {name}>", members.get(name, ""))
    text = text.replace("# <the classes>\n", stubs)
    pathlib.Path(out).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1])
