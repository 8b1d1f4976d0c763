#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The sentences that check_abi.py tells, for every kind of move."""
import copy
import unittest

import check_abi


def slots(*declarations):
    return [check_abi.Entry(check_abi.function_name(d), {"declaration": d}) for d in declarations]


def fields(*described):
    return [check_abi.Entry(n, {"type": t, "offset": o, "size": s}) for n, t, o, s in described]


PROMISE = {
    "layouts": {
        "Interface": check_abi.Layout("slot", 8, slots("int Run(Record*)", "QString Name()", "QString Title()", "int Flags()")),
        "Record": check_abi.Layout("field", 16, fields(("document", "void*", 0, 8), ("hidden", "bool", 8, 1))),
        "Action": check_abi.Layout("base", 24, [check_abi.Entry("QObject", {"offset": 0}),
                                                check_abi.Entry("Interface", {"offset": 16})]),
    },
    "functions": {"HPLOpen": "int HPLOpen(int, void*)", "HPLPages": "int HPLPages(int)", "HPLSave": "int HPLSave(int)"},
    "plugin": ["qt_plugin_instance"],
    "texts": {"IID": "org.example"},
}


class Sentences(unittest.TestCase):
    def setUp(self):
        self.found = copy.deepcopy(PROMISE)
        self.found["table"] = list(PROMISE["functions"])
        self.found["engine"] = list(PROMISE["functions"])
        self.interface = self.found["layouts"]["Interface"].entries
        self.record = self.found["layouts"]["Record"]

    def expect(self, *sentences):
        self.assertEqual(check_abi.contract_sentences(PROMISE, self.found), list(sentences))

    def test_nothing_moved(self):
        self.expect()

    def test_swapped_slots(self):
        self.interface[1], self.interface[2] = self.interface[2], self.interface[1]
        self.expect("slot 1 of Interface is Title, expected Name", "slot 2 of Interface is Name, expected Title")

    def test_inserted_slot(self):
        self.interface.insert(1, *slots("int Undo()"))
        self.expect("slot 1 of Interface is new, Undo; the 3 behind it moved down")

    def test_appended_slot(self):
        self.interface += slots("int Undo()")
        self.expect("slot 4 of Interface is new, Undo")

    def test_removed_slot(self):
        del self.interface[2]
        self.expect("slot 2 of Interface, Title, is gone; the one behind it moved up")

    def test_renamed_slot(self):
        self.interface[3:] = slots("int Bits()")
        self.expect("slot 3 of Interface is Bits, expected Flags")

    def test_changed_signature(self):
        self.interface[0].facts["declaration"] = "int Run(Record*, int)"
        self.expect("Run of Interface has the declaration int Run(Record*, int), expected int Run(Record*)")

    def test_inserted_field(self):
        self.record.entries.insert(1, *fields(("extra", "int", 8, 4)))
        self.record.entries[2].facts["offset"] = 12
        self.expect("field 1 of Record is new, extra; the one behind it moved down")

    def test_wider_field(self):
        self.record.entries[1].facts.update(type="int", size=4)
        self.expect("hidden of Record has the type int, expected bool", "hidden of Record has the size 4, expected 1")

    def test_grown_record(self):
        self.record.size = 24
        self.expect("Record is 24 bytes large, expected 16")

    def test_swapped_bases(self):
        self.found["layouts"]["Action"].entries.reverse()
        self.expect("base 0 of Action is Interface, expected QObject", "base 1 of Action is QObject, expected Interface")

    def test_library_function_with_another_signature(self):
        self.found["functions"]["HPLSave"] = "int HPLSave(int, void*)"
        self.expect("HPLSave is int HPLSave(int, void*), expected int HPLSave(int)")

    def test_library_function_added(self):
        self.found["table"].insert(1, "HPLPack")
        self.found["engine"].append("HPLPack")
        self.expect("slot 1 of the wrapper's table is new, HPLPack; the 2 behind it moved down",
                    "the engine exports HPLPack, which is not in the promise")

    def test_many_slots_in_another_order(self):
        self.assertEqual(len(check_abi.order_sentences("the table", "slot", list("abcdefgh"), list("hgfedcba"))), 5)

    def test_plug_in_that_shows_more_or_less(self):
        self.found["plugin"] = ["CSetBaseURL"]
        self.found["texts"]["IID"] = None
        self.expect("the plug-in no longer exports qt_plugin_instance",
                    "the plug-in exports CSetBaseURL, which is not in the promise",
                    'IID is null, expected "org.example"')


if __name__ == "__main__":
    unittest.main()
