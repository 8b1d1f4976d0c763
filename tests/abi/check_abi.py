#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares what was built with what docs/abi.md and docs/abi-library-functions.txt promise to hosts.

Every difference is told in a sentence that says what moved. With --print-functions, the functions that the engine
exports are written in the form of docs/abi-library-functions.txt instead.
"""
import argparse
import json
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass, field
from difflib import SequenceMatcher

DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
WRAPPER = "HalvexPDFLibraryCPDylibCPP1311"
CLASSES = ["CActionInterface", "CSetBaseURL", "WorkProcInfoStruct", "DialogLoadStruct", WRAPPER]


@dataclass
class Entry:
    """A slot, field or base class: its name and the facts that are promised of it, by their kind."""

    name: str
    facts: dict = field(default_factory=dict)


@dataclass
class Layout:
    """What is promised of one class: entries in their order."""

    unit: str
    size: int
    entries: list


# ---- Sentences ----


def moved(count, where):
    return f"; the {count} behind it moved {where}" if count > 1 else "; the one behind it moved " + where if count else ""


def order_sentences(owner, unit, expected, found):
    """What differs between two orders of names, a sentence for each cause rather than for each entry that moved."""
    if sorted(expected) == sorted(found):
        wrong = [i for i, names in enumerate(zip(expected, found)) if names[0] != names[1]]
        told = [f"{unit} {i} of {owner} is {found[i]}, expected {expected[i]}" for i in wrong[:4]]
        return told + ([f"and {len(wrong) - 4} more of {owner} changed places"] if len(wrong) > 4 else [])
    told = []
    for change, first, last, start, end in SequenceMatcher(None, expected, found, autojunk=False).get_opcodes():
        if change == "equal":
            continue
        paired = min(last - first, end - start)
        told += [f"{unit} {start + i} of {owner} is {found[start + i]}, expected {expected[first + i]}" for i in range(paired)]
        for i in range(start + paired, end):
            told.append(f"{unit} {i} of {owner} is new, {found[i]}" + moved(len(expected) - last, "down"))
        for i in range(first + paired, last):
            told.append(f"{unit} {i} of {owner}, {expected[i]}, is gone" + moved(len(expected) - last, "up"))
    return told


def entry_sentences(owner, expected, found):
    """Differences in the facts of entries that both have."""
    by_name = {entry.name: entry for entry in found}
    told = []
    for entry in expected:
        other = by_name.get(entry.name)
        if other is None:
            continue
        for kind, value in entry.facts.items():
            if other.facts.get(kind) != value:
                told.append(f"{entry.name} of {owner} has the {kind} {other.facts.get(kind)}, expected {value}")
    return told


def layout_sentences(owner, expected, found):
    told = order_sentences(owner, expected.unit, [e.name for e in expected.entries], [e.name for e in found.entries])
    # Offsets follow from an order that is wrong already.
    if not told:
        told = entry_sentences(owner, expected.entries, found.entries)
    if not told and expected.size != found.size:
        told = [f"{owner} is {found.size} bytes large, expected {expected.size}"]
    return told


def set_sentences(owner, verb, expected, found):
    gone = [f"{owner} no longer {verb} {name}" for name in sorted(set(expected) - set(found))]
    new = [f"{owner} {verb} {name}, which is not in the promise" for name in sorted(set(found) - set(expected))]
    return gone + new


def signature_sentences(expected, found):
    return [f"{name} is {found[name]}, expected {signature}"
            for name, signature in expected.items() if name in found and found[name] != signature]


def contract_sentences(expected, found):
    told = []
    for name, layout in expected["layouts"].items():
        told += layout_sentences(name, layout, found["layouts"][name])
    functions = list(expected["functions"])
    told += order_sentences("the wrapper's table", "slot", functions, found["table"])
    told += set_sentences("the engine", "exports", functions, found["engine"])
    told += signature_sentences(expected["functions"], found["functions"])
    told += set_sentences("the plug-in", "exports", expected["plugin"], found["plugin"])
    for key, value in expected["texts"].items():
        if found["texts"].get(key) != value:
            told.append(f"{key} is {json.dumps(found['texts'].get(key))}, expected {json.dumps(value)}")
    return told


# ---- The promise ----


def rows(section):
    """The cells of a section's table, without its head."""
    lines = [line for line in section.splitlines() if line.startswith("|")][2:]
    return [[cell.strip().strip("`") for cell in line.strip("|").split("|")] for line in lines]


def function_name(declaration):
    return re.search(r"~?\w+(?=\()", declaration).group()


def read_promise(page, function_list):
    """The tables of docs/abi.md, found by the name that their heading carries in backticks."""
    sections = {}
    for section in re.split(r"^## ", page, flags=re.MULTILINE)[1:]:
        name = re.search(r"`([^`]+)`", section.splitlines()[0])
        if name:
            sections[name.group(1)] = section
    layouts = {}
    for name in CLASSES:
        section = sections[name]
        size = int(re.search(r"(\d[\d,]*) bytes", section.splitlines()[0]).group(1).replace(",", ""))
        head = next(line for line in section.splitlines() if line.startswith("|")).strip("|").split("|")[0].strip()
        if head == "slot":
            entries = [Entry(row[1] if row[1].startswith("~") else function_name(row[1]), {"declaration": row[1]})
                       for row in rows(section)]
        elif head == "base":
            entries = [Entry(row[0], {"offset": int(row[1])}) for row in rows(section)]
        else:
            entries = [Entry(row[0], {"type": row[1], "offset": int(row[2]), "size": int(row[3])}) for row in rows(section)]
        layouts[name] = Layout(head, size, entries)
    functions = {}
    for line in function_list.splitlines():
        if line and not line.startswith("#"):
            name = function_name(line)
            functions[name] = line
    return {"layouts": layouts, "functions": functions,
            "plugin": [row[0] for row in rows(sections["SetBaseURL.so"])],
            "texts": {row[0]: row[1] for row in rows(sections["metadata"])}}


# ---- What was built ----


class Description:
    """The debug information of a file as abidw tells it."""

    def __init__(self, abidw, file):
        command = [abidw, "--no-show-locs", "--no-corpus-path", "--no-comp-dir-path", file]
        self.root = ElementTree.fromstring(subprocess.run(command, check=True, capture_output=True).stdout)
        self.types = {}
        for element in self.root.iter():
            # A class may be met as a declaration before it is met whole.
            if element.get("id") and (element.get("id") not in self.types or not element.get("is-declaration-only")):
                self.types[element.get("id")] = element

    def type_name(self, identifier):
        element = self.types[identifier]
        inner = element.get("type-id")
        if element.tag == "pointer-type-def":
            return self.type_name(inner) + "*"
        if element.tag == "reference-type-def":
            return self.type_name(inner) + "&"
        if element.tag == "qualified-type-def":
            qualifiers = [word for word in ("const", "volatile") if element.get(word) == "yes"]
            pointer = self.types[inner].tag == "pointer-type-def"
            return " ".join([self.type_name(inner), *qualifiers] if pointer else [*qualifiers, self.type_name(inner)])
        if element.tag == "array-type-def":
            return self.type_name(inner) + "".join(f"[{part.get('length')}]" for part in element.findall("subrange"))
        return element.get("name")

    def size(self, identifier):
        element = self.types[identifier]
        if element.tag in ("qualified-type-def", "typedef-decl"):
            return self.size(element.get("type-id"))
        return int(element.get("size-in-bits")) // 8

    def declaration(self, function):
        parameters = [self.type_name(p.get("type-id")) for p in function.findall("parameter") if not p.get("is-artificial")]
        return f"{self.type_name(function.find('return').get('type-id'))} {function.get('name')}({', '.join(parameters)})"

    def virtual_functions(self, element):
        """The declarations by slot. A virtual destructor fills the two slots that no other function has."""
        slots, destructor = {}, None
        for member in element.findall("member-function"):
            function = member.find("function-decl")
            if member.get("vtable-offset") is None:
                continue
            if member.get("destructor"):
                destructor = f"{function.get('name')}()"
            else:
                slots[int(member.get("vtable-offset"))] = self.declaration(function)
        if destructor:
            for kind in ("complete object", "deleting"):
                free = next(slot for slot in range(len(slots) + 1) if slot not in slots)
                slots[free] = f"{destructor}, {kind}"
        return [slots[slot] for slot in sorted(slots)]

    def layout(self, name, unit):
        element = next(e for e in self.root.iter("class-decl") if e.get("name") == name and e.get("size-in-bits"))
        if unit == "slot":
            entries = [Entry(d if d.startswith("~") else function_name(d), {"declaration": d})
                       for d in self.virtual_functions(element)]
        elif unit == "base":
            entries = [Entry(self.type_name(base.get("type-id")), {"offset": int(base.get("layout-offset-in-bits")) // 8})
                       for base in element.findall("base-class")]
        else:
            entries = []
            for member in element.findall("data-member"):
                variable = member.find("var-decl")
                if member.get("static") != "yes":
                    entries.append(Entry(variable.get("name"), {
                        "type": self.type_name(variable.get("type-id")),
                        "offset": int(member.get("layout-offset-in-bits")) // 8,
                        "size": self.size(variable.get("type-id"))}))
        return Layout(unit, int(element.get("size-in-bits")) // 8, entries)

    def enumerators(self, name):
        element = next(e for e in self.root.iter("enum-decl") if e.get("name") == name)
        return [e.get("name") for e in sorted(element.findall("enumerator"), key=lambda e: int(e.get("value")))]

    def exported_functions(self):
        return {f.get("name"): self.declaration(f) for f in self.root.iter("function-decl") if f.get("elf-symbol-id")}


def exports(nm, file):
    output = subprocess.run([nm, "-D", "--defined-only", "--format=posix", file], check=True, capture_output=True, text=True)
    return [line.split()[0] for line in output.stdout.splitlines()]


def read_build(arguments, promise):
    facts = Description(arguments.abidw, arguments.facts)
    engine = Description(arguments.abidw, arguments.engine)
    qt = json.loads(subprocess.run([arguments.facts, arguments.plugin], check=True, capture_output=True).stdout)
    metadata = qt["plugin"]
    return {
        "layouts": {name: facts.layout(name, layout.unit) for name, layout in promise["layouts"].items()},
        "table": ["HPL" + name for name in facts.enumerators("LibraryFunctionSlot")],
        "engine": exports(arguments.nm, arguments.engine),
        "functions": engine.exported_functions(),
        "plugin": exports(arguments.nm, arguments.plugin),
        "texts": {"interface identifier": qt["interface"], "IID": metadata.get("IID"),
                  "className": metadata.get("className"),
                  "MetaData": json.dumps(metadata.get("MetaData", {}))},
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for option in ("--abidw", "--nm", "--facts", "--plugin", "--engine"):
        parser.add_argument(option, required=True)
    parser.add_argument("--print-functions", action="store_true")
    arguments = parser.parse_args()
    if arguments.print_functions:
        functions = Description(arguments.abidw, arguments.engine).exported_functions()
        print("\n".join(functions[name] for name in sorted(functions)))
        return
    promise = read_promise((DOCS / "abi.md").read_text(encoding="utf-8"),
                           (DOCS / "abi-library-functions.txt").read_text(encoding="utf-8"))
    told = contract_sentences(promise, read_build(arguments, promise))
    if told:
        sys.exit("\n".join(["What hosts rely on has moved (docs/abi.md tells how such a change is made on purpose):",
                            *(f"  {sentence}." for sentence in told)]))


if __name__ == "__main__":
    main()
