#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes small PDF files for the tests of the quick reader, named by their layout or defect.

usage: make.py FOLDER

Also writes "table.tsv": name, "answered" or "refused" (what the quick reader does), base URL in hex ("-" for none).
"""

import hashlib
import os
import sys
import zlib

CATALOG = b"<< /Type /Catalog /Pages 2 0 R /Lang (en) %s>>"
PAGES = b"<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>"
PAGE = b"<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 200 100 ] /Resources << >> >>"
URL = b"http://example.org/a/"
URI = b"/URI << /Base (http://example.org/a/) >> "


def body(extra=URI):
    return {1: CATALOG % extra, 2: PAGES, 3: PAGE}


def stream_object(dictionary, data):
    return b"<< %s /Length %d >>\nstream\n%s\nendstream" % (dictionary, len(data), data)


def png_rows(rows, filters):
    """Rows filtered as PNG does, the filters taken in turn (ISO/IEC 15948, clause 9)."""
    result = b""
    above = bytes(len(rows[0]))
    for number, row in enumerate(rows):
        kind = filters[number % len(filters)]
        line = bytearray([kind])
        for i, byte in enumerate(row):
            left = row[i - 1] if i else 0
            up = above[i]
            corner = above[i - 1] if i else 0
            estimate = left + up - corner
            paeth = min((left, up, corner), key=lambda v: abs(estimate - v))
            line.append((byte - (0, left, up, (left + up) // 2, paeth)[kind]) & 255)
        result += bytes(line)
        above = row
    return result


def runs(numbers):
    """Consecutive numbers as (first, count)."""
    result = []
    for number in sorted(numbers):
        if result and number == result[-1][0] + result[-1][1]:
            result[-1] = (result[-1][0], result[-1][1] + 1)
        else:
            result.append((number, 1))
    return result


class File:
    """A PDF file that grows by sections: objects, then their cross-references."""

    def __init__(self, eol=b"\n", header=b"%PDF-1.7", lead=b"", base=0):
        self.eol = eol
        self.base = base
        self.out = lead + header + eol + b"%\xe2\xe3\xcf\xd3" + eol
        self.size = 1
        self.startxref = None
        self.entries = {}

    def here(self):
        return len(self.out) - self.base

    def put(self, objects, generation=0):
        for number, text in objects.items():
            self.entries[number] = (1, self.here(), generation)
            self.out += b"%d %d obj" % (number, generation) + self.eol + text + self.eol + b"endobj" + self.eol
            self.size = max(self.size, number + 1)
        return self

    def put_in_stream(self, number, objects, dictionary=b"", directory=None, compress=True):
        """An object stream; `directory` replaces its pairs of numbers and offsets."""
        pairs, data = [], b""
        for index, (inner, text) in enumerate(objects.items()):
            pairs.append((inner, len(data)))
            data += text + b" "
            self.entries[inner] = (2, number, index)
            self.size = max(self.size, inner + 1)
        head = b" ".join(b"%d %d" % pair for pair in (directory or pairs)) + b" "
        data = head + data
        coding = b""
        if compress:
            data, coding = zlib.compress(data), b" /Filter /FlateDecode"
        text = b"<< /Type /ObjStm /N %d /First %d%s %s" % (len(pairs), len(head), coding, dictionary)
        if b"/Length" not in dictionary:
            text += b" /Length %d" % len(data)
        return self.put({number: text + b" >>\nstream\n" + data + b"\nendstream"})

    def trailer_keys(self, extra, size=None, prev=None, root=b"1 0 R"):
        prev = prev if prev is not None else self.startxref
        keys = b"/Size %d /Root %s /ID [ <0011> <2233> ]" % (size if size is not None else self.size, root)
        return keys + (b" /Prev %d" % prev if prev is not None else b"") + extra

    def end(self, startxref, end=b"%%EOF\n", keep=True):
        if keep:
            self.startxref, self.entries = startxref, {}
        self.out += b"startxref" + self.eol + b"%d" % startxref + self.eol + end.replace(b"\n", self.eol)
        return self

    def table(self, extra=b"", entry_end=None, end=b"%%EOF\n", shift=0, comment=b"", trailer=None, one_by_one=False,
              free=(), **keys):
        entries = dict(self.entries)
        for number in free:
            entries[number] = (0, 0, 65535)
        if self.startxref is None:
            entries[0] = (0, 0, 65535)
        start = self.here()
        entry_end = entry_end or (b" " + self.eol if len(self.eol) == 1 else self.eol)
        self.out += b"xref" + self.eol
        for first, count in [(n, 1) for n in sorted(entries)] if one_by_one else runs(entries):
            self.out += b"%d %d" % (first, count) + self.eol
            for number in range(first, first + count):
                kind, offset, generation = entries[number]
                self.out += b"%010d %05d %s" % (offset + (shift if kind else 0), generation, b"fn"[kind:kind + 1])
                self.out += entry_end
        text = trailer if trailer is not None else self.trailer_keys(extra, **keys)
        self.out += b"trailer" + self.eol + comment + b"<< " + text + b" >>" + self.eol
        return self.end(start, end)

    def xref_stream(self, extra=b"", number=None, widths=(1, 4, 2), filters=(2,), coding="png", w=None, index=None,
                    size=None, prev=None, root=b"1 0 R", data=None, end=b"%%EOF\n", at_end=True, length=None):
        number = number or self.size
        self.size = max(self.size, number + 1)
        start = self.here()
        entries = dict(self.entries)
        entries[number] = (1, start, 0)
        if self.startxref is None:
            entries[0] = (0, 0, 65535)
        rows = [b"".join(v.to_bytes(n, "big") for v, n in zip(entries[k], widths) if n) for k in sorted(entries)]
        plain = b"".join(rows)
        columns = sum(widths)
        if coding == "png":
            code = b" /Filter /FlateDecode /DecodeParms << /Predictor 12 /Columns %d >>" % columns
            packed = zlib.compress(png_rows(rows, filters))
        elif coding == "flate":
            code, packed = b" /Filter [ /FlateDecode ]", zlib.compress(plain)
        else:
            code, packed = b"", plain
        packed = packed if data is None else data
        pairs = b" ".join(b"%d %d" % run for run in runs(entries))
        text = b"<< /Type /XRef /W %s /Index %s %s%s" % (
            w or b"[ %d %d %d ]" % widths, index or b"[ %s ]" % pairs,
            self.trailer_keys(extra, size=size, prev=prev, root=root), code)
        text += b" /Length %d >>\nstream\n" % (len(packed) if length is None else length)
        self.out += b"%d 0 obj" % number + self.eol + text + packed + b"\nendstream" + self.eol + b"endobj" + self.eol
        if not at_end:  # beside a table
            self.entries = {}
            return start
        return self.end(start, end)


def hybrid(hidden_catalog=False):
    file = File().put({2: PAGES, 3: PAGE})
    if not hidden_catalog:
        file.put({1: body()[1]})
    shown = file.entries
    file.entries = {}
    inner = {5: b"<< /Hidden true >>"}
    if hidden_catalog:
        inner[1] = body()[1]
    file.put_in_stream(4, inner)
    xref = file.xref_stream(number=6, at_end=False)
    file.entries = shown
    return file.table(extra=b" /XRefStm %d" % xref, free=[1, 4, 5, 6] if hidden_catalog else [4, 5, 6])


def linearized(eol=b"\n"):
    """As linearized files are laid out: the section at the front names the one at the end by /Prev."""
    known = {"main": 0, "objects": {}}
    entry_end = b" " + eol if len(eol) == 1 else eol
    for _ in range(3):  # until the offsets have settled
        file = File(eol)
        file.put({4: b"<< /Linearized 1 /L 1000 /H [ 0 0 ] /O 3 /E 0 /N 1 /T %d >>" % known["main"]})
        first = file.here()
        objects = dict(known["objects"])
        file.out += b"xref" + eol + b"3 3" + eol
        for number in (3, 4, 5):
            file.out += b"%010d 00000 n" % objects.get(number, 0) + entry_end
        file.out += b"trailer" + eol + b"<< /Size 6 /Root 5 0 R /Prev %d >>" % known["main"] + eol
        file.out += b"startxref" + eol + b"0" + eol + b"%%EOF" + eol
        file.put({5: body()[1], 3: PAGE, 2: PAGES, 1: b"<< >>"})
        main = file.here()
        known["main"] = main
        known["objects"] = {n: e[1] for n, e in file.entries.items()}
        file.out += b"xref" + eol + b"0 3" + eol + b"0000000000 65535 f" + entry_end
        for number in (1, 2):
            file.out += b"%010d 00000 n" % file.entries[number][1] + entry_end
        file.out += b"trailer" + eol + b"<< /Size 3 >>" + eol
        file.end(first)
    return file


def updated(times, stream=False, catalog_at=None):
    """A file with `times` updates; the catalog changes in update number `catalog_at`."""
    file = File().put(body(b"" if catalog_at is not None else URI))
    write = file.xref_stream if stream else file.table
    write()
    for time in range(times):
        file.put({3: PAGE})
        if time == catalog_at:
            file.put({1: body()[1]})
        write()
    return file


def sound():
    for name, eol in (("lf", b"\n"), ("cr", b"\r"), ("crlf", b"\r\n")):
        yield "table-" + name, File(eol).put(body()).table()
        yield "xref-stream-" + name, File(eol).put(body()).xref_stream()
        yield "linearized-layout-" + name, linearized(eol)
        yield "trailing-garbage-" + name, File(eol).put(body()).table(end=b"%%EOF\n\n\0\0<html>garbage</html>\n")
    yield "no-base-url", File().put(body(b"")).table(), b""
    yield "table-comments", File().put(body(b"% a comment (with <<\n" + URI)).table(comment=b"% another >>\n")
    yield "table-entries-end-in-cr", File().put(body()).table(entry_end=b" \r")
    unused = File().put(body())
    unused.entries[4] = unused.entries[1]
    yield "table-entry-of-an-unused-number-leads-to-another-object", unused.table(size=5)
    yield "table-subsection-an-object", File().put(body()).table(one_by_one=True)
    yield "no-line-end-after-eof-mark", File().put(body()).table(end=b"%%EOF")
    for kind, name in enumerate(("none", "sub", "up", "average", "paeth")):
        yield "xref-stream-predictor-" + name, File().put(body()).xref_stream(filters=(kind,))
    yield "xref-stream-predictor-mixed", File().put(body()).xref_stream(filters=(4, 2, 3, 1))
    yield "xref-stream-no-predictor", File().put(body()).xref_stream(coding="flate")
    yield "xref-stream-uncompressed", File().put(body()).xref_stream(coding="none")
    yield "xref-stream-wide-fields", File().put(body()).xref_stream(widths=(2, 8, 4))
    yield "xref-stream-filter-array-parms-null", File().put(body()).xref_stream(
        coding="none", extra=b" /Filter [ ] /DecodeParms [ null ]")
    yield "catalog-in-object-stream", File().put_in_stream(4, body()).xref_stream()
    yield "catalog-in-object-stream-uncompressed", File().put_in_stream(4, body(), compress=False).xref_stream()
    length = File().put_in_stream(4, body(), b"/Length 5 0 R", compress=False)
    data = length.out[length.out.index(b"stream\n") + 7:length.out.rindex(b"\nendstream")]
    yield "object-stream-length-is-reference", length.put({5: b"%d" % len(data)}).xref_stream()
    yield "hybrid", hybrid()
    yield "updated-twice", updated(2)
    yield "updated-catalog-in-between", updated(5, catalog_at=2)
    yield "updated-100-times", updated(100)
    yield "updated-100-times-xref-stream", updated(100, stream=True)
    yield "table-then-xref-stream", File().put(body(b"")).table().put({1: body()[1]}).xref_stream()
    yield "xref-stream-then-table", File().put(body(b"")).xref_stream().put({1: body()[1]}).table()
    yield "catalog-generation-7", File().put({2: PAGES, 3: PAGE}).put({1: body()[1]}, 7).table(root=b"1 7 R")
    yield "base-url-hex", File().put(body(b"/URI<</Base<68 74 7470 3A2F2F6>>>")).table(), b"http://`"
    yield "base-url-escapes", File().put(body(b"/URI<</Base(a\\(\\101\\7\\\r\nb(c)\\\\\r\nd\\q)>>")).table(), \
        b"a(A\x07b(c)\\\ndq"
    yield "uri-other-keys", File().put(body(b"/URI << /Before [ (]) ] /Base (b) /After /Name >>")).table(), b"b"
    yield "uri-of-wrong-type", File().put(body(b"/URI (text)")).table(), b""
    yield "base-of-wrong-type", File().put(body(b"/URI << /Base /Name /More 1 >>")).table(), b""
    yield "uri-is-reference", File().put(body(b"/URI 4 0 R")).put({4: b"<< /Base (b) >>"}).table(), b"b"
    yield "base-is-reference", File().put(body(b"/URI << /Base 4 0 R >>")).put({4: b"(b)"}).table(), b"b"
    yield "uri-null", File().put(body(b"/URI null")).table(), b""
    yield "catalog-long", File().put(body(b"/Long [ %s] " % (b"(0123456789) " * 20000) + URI)).table()
    yield "trailer-of-others", File().put(body()).table(extra=b" /Info << /Title (t) >> /DocChecksum /ABC")
    yield "without-id", File().put(body()).table(trailer=b"/Size 4 /Root 1 0 R")
    yield "no-pages", File().put({1: body()[1], 2: b"<< /Type /Pages /Kids [ ] /Count 0 >>"}).table()


def defects():
    plain = File().put(body()).table().out
    yield "empty", b""
    yield "header-only", b"%PDF-1.7\n"
    yield "not-a-pdf", b"<html><body>startxref</body></html>\n"
    yield "bytes-before-header", File(lead=b"junk\n", base=5).put(body()).table()
    yield "encrypted", File().put(body()).table(extra=b" /Encrypt << /Filter /Standard /V 1 /R 2 /O (%s) /U (%s) /P -1 >>"
                                                % (b"o" * 32, b"u" * 32))
    yield "key-with-escape", File().put(body(b"/U#52I << /Base (b) >>")).table()
    yield "key-twice", File().put(body(URI + b"/URI << /Base (c) >>")).table()
    yield "cut-off-in-table", plain[:plain.index(b"trailer") - 30]
    yield "cut-off-in-trailer", plain[:plain.index(b"/Root")]
    yield "cut-off-before-eof-mark", plain[:plain.index(b"%%EOF")]
    yield "startxref-missing", plain.replace(b"startxref", b"startxxxx")
    yield "startxref-huge", plain[:plain.rindex(b"startxref")] + b"startxref\n99999999999999999999999\n%%EOF\n"
    yield "startxref-negative", plain[:plain.rindex(b"startxref")] + b"startxref\n-5\n%%EOF\n"
    yield "startxref-zero", plain[:plain.rindex(b"startxref")] + b"startxref\n0\n%%EOF\n"
    yield "xref-offset-past-end", plain[:plain.rindex(b"startxref")] + b"startxref\n9999999\n%%EOF\n"
    yield "xref-offset-before-space", plain.replace(b"startxref\n%d" % plain.rindex(b"xref\n0"),
                                                    b"startxref\n%d" % (plain.rindex(b"xref\n0") - 1))
    stream = File().put(body()).xref_stream()
    yield "xref-stream-offset-before-space", stream.out.replace(b"startxref\n%d" % stream.startxref,
                                                                b"startxref\n%d" % (stream.startxref - 1))
    yield "xref-shifted", File().put(body()).table(shift=3)
    yield "xref-prev-to-itself", File().put(body()).table(prev=len(File().put(body()).out))
    start = len(File().put(body()).out)
    yield "xref-stream-prev-to-itself", File().put(body()).xref_stream(prev=start)
    loop = File().put(body()).table(prev=99999)
    second = loop.put({3: PAGE}).here()
    loop.table()
    yield "xref-prev-in-a-circle", loop.out.replace(b"99999", b"%5d" % second)
    yield "xref-prev-past-end", File().put(body()).table(prev=5000000)
    yield "xref-prev-to-nothing", File().put(body()).table(prev=20)
    yield "xref-prev-negative", File().put(body()).table(extra=b" /Prev -1")
    yield "xref-prev-huge", File().put(body()).table(extra=b" /Prev 18446744073709551617")
    yield "xref-entries-19-bytes", File().put(body()).table(entry_end=b"\n")
    yield "xref-entries-21-bytes", File().put(body()).table(entry_end=b" \r\n")
    yield "xref-count-huge", plain.replace(b"0 4\n", b"0 4000000000\n")
    yield "xref-count-wrong", plain.replace(b"0 4\n", b"0 3\n")
    yield "xref-first-wrong", plain.replace(b"0 4\n", b"1 4\n")
    rows = File().put(body()).put({4: b"null"})
    row = b"%010d 00000 n" % rows.entries[3][1]
    yield "xref-entry-of-no-type", rows.table().out.replace(row, row[:-1] + b"3")
    yield "xref-entry-shifted", rows.out.replace(row, b"%010d 00000 n" % (int(row[:10]) + 4))
    missing = File().put(body()).put_in_stream(5, {4: b"null"})
    missing.entries[4] = (2, 9, 0)
    yield "xref-entry-of-a-missing-object-stream", missing.xref_stream()
    yield "size-huge", File().put(body()).table(size=4611686018427387904)
    yield "size-too-small", File().put(body()).table(size=2)
    yield "size-missing", File().put(body()).table(trailer=b"/Root 1 0 R")
    for name, identifier in (("numbers", b"[ 1 2 ]"), ("one-string", b"[ <00> ]"), ("name", b"/Name")):
        yield "shifted-id-is-" + name, File().put(body()).table(
            trailer=b"/Size 4 /Root 1 0 R /ID " + identifier, shift=3)
    yield "root-missing", File().put(body()).table(trailer=b"/Size 4")
    yield "root-is-dictionary", File().put(body()).table(trailer=b"/Size 4 /Root << /Type /Catalog /Pages 2 0 R >>")
    yield "root-number-huge", File().put(body()).table(root=b"4294967297 0 R")
    yield "root-to-pages", File().put(body()).table(root=b"2 0 R")
    yield "root-of-other-generation", File().put(body()).table(root=b"1 1 R")
    yield "catalog-freed", File().put(body()).table().table(free=[1])
    yield "catalog-is-stream", File().put(body()).put({1: stream_object(b"/Type /Catalog /Pages 2 0 R", b"x")}).table()
    yield "catalog-unterminated", plain.replace(b"/Lang (en) ", b"/Lang (en  ")
    yield "catalog-of-many-keys", File().put(body(b" ".join(b"/K%d 0" % i for i in range(50000)))).table()
    yield "pages-missing", File().put({1: body()[1], 3: PAGE}).table(size=4)
    yield "pages-shifted", File().put(body()).table().out.replace(b"2 0 obj", b"7 0 obj")
    yield "nesting-deep", File().put(body(b"/Deep " + b"[" * 100000 + b"]" * 100000)).table()
    yield "nesting-deep-dictionaries", File().put(body(b"/Deep " + b"<</A" * 50000 + b" 1" + b">>" * 50000)).table()
    yield "hybrid-catalog-hidden", hybrid(hidden_catalog=True)
    yield "xref-stm-past-end", File().put(body()).table(extra=b" /XRefStm 5000000")
    for name, widths in (("absurd-widths", b"[ 1 4000000000 2 ]"), ("negative-width", b"[ 1 -4 2 ]"),
                         ("widths-zero", b"[ 0 0 0 ]"), ("widths-two", b"[ 1 4 ]"), ("widths-9-bytes", b"[ 1 9 2 ]")):
        yield "w-" + name, File().put(body()).xref_stream(w=widths)
    yield "index-odd", File().put(body()).xref_stream(index=b"[ 0 5 9 ]")
    yield "index-huge", File().put(body()).xref_stream(index=b"[ 0 4611686018427387904 ]")
    yield "index-overlaps", File().put(body()).xref_stream(index=b"[ 0 3 1 2 ]")
    metadata = {4: stream_object(b"/Type /Metadata /Subtype /XML /Filter /FlateDecode", deflated_run(b"x" * (1 << 20), 99))}
    yield "metadata-deflate-bomb-in-damaged-file", File().put(body(URI + b"/Metadata 4 0 R ")).put(metadata).table(
        shift=3)
    yield "xref-stream-too-short", File().put(body()).xref_stream(data=zlib.compress(b"\2\1"), coding="flate")
    yield "xref-stream-not-deflated", File().put(body()).xref_stream(data=b"no deflate data")
    yield "xref-stream-length-wrong", File().put(body()).xref_stream(length=3)
    yield "xref-stream-length-huge", File().put(body()).xref_stream(length=9000000000000000000)
    yield "xref-stream-of-odd-filter", File().put(body()).xref_stream(coding="none", extra=b" /Filter /ASCIIHexDecode")
    yield "xref-stream-tiff-predictor", File().put(body()).xref_stream(
        coding="flate", extra=b" /DecodeParms << /Predictor 2 /Columns 7 >>")
    yield "xref-stream-parms-with-reference", File().put(body()).xref_stream(
        coding="flate", extra=b" /DecodeParms << /Predictor 1 /Odd 2 0 R >>")
    yield "object-stream-of-wrong-number", File().put_in_stream(
        4, body(), directory=[(7, 0), (8, 80), (9, 160)]).xref_stream()
    yield "object-stream-number-twice", File().put_in_stream(
        4, body(), directory=[(1, 0), (1, 80), (3, 160)]).xref_stream()
    yield "object-stream-offset-huge", File().put_in_stream(
        4, body(), directory=[(1, 9000000000), (2, 80), (3, 160)]).xref_stream()
    yield "xref-stream-number-of-pages", File().put_in_stream(4, body()).xref_stream(number=2)
    inside = File().put_in_stream(4, body())
    inside.entries[4] = (2, 4, 0)
    yield "object-stream-in-itself", inside.xref_stream()


def deflated_run(chunk, times, head=b"", tail=b""):
    """Deflate data of head + times * chunk + tail, made without inflating it all."""
    def raw(text, mode=zlib.Z_FULL_FLUSH):
        packer = zlib.compressobj(9, zlib.DEFLATED, -15)
        return packer.compress(text) + packer.flush(mode)
    check = zlib.adler32(head)
    for _ in range(times):
        check = zlib.adler32(chunk, check)
    check = zlib.adler32(tail, check)
    return b"\x78\xda" + raw(head) + raw(chunk) * times + raw(tail, zlib.Z_FINISH) + check.to_bytes(4, "big")


def rc4(key, data):
    state, j, result = list(range(256)), 0, bytearray()
    for i in range(256):
        j = (j + state[i] + key[i % len(key)]) % 256
        state[i], state[j] = state[j], state[i]
    i = j = 0
    for byte in data:
        i = (i + 1) % 256
        j = (j + state[i]) % 256
        state[i], state[j] = state[j], state[i]
        result.append(byte ^ state[(state[i] + state[j]) % 256])
    return bytes(result)


class Encryption:
    """RC4 with a key of 40 bits and an empty owner password (ISO 32000-1, 7.6.3, algorithms 1, 2, 4 and 5)."""

    PADDING = bytes.fromhex("28BF4E5E4E758A4164004E56FFFA01082E2E00B6D0683E802F0CA9FE6453697A")

    def __init__(self, entries=b"/V 1", revision=2, password=b""):
        owner = b"O" * 32
        key = hashlib.md5((password + self.PADDING)[:32] + owner + b"\xfc\xff\xff\xff" + b"\0\x11").digest()
        for _ in range(50 if revision > 2 else 0):
            key = hashlib.md5(key[:5]).digest()
        self.key = key[:5]
        user = self.PADDING if revision == 2 else hashlib.md5(self.PADDING + b"\0\x11").digest()
        for round_ in range(20 if revision > 2 else 1):
            user = rc4(bytes(byte ^ round_ for byte in self.key), user)
        self.trailer = b" /Encrypt << /Filter /Standard /R %d /P -4 /O <%s> /U <%s> %s >>" % (
            revision, owner.hex().encode(), user.ljust(32, b"\0").hex().encode(), entries)

    def data(self, number, data):
        return rc4(hashlib.md5(self.key + number.to_bytes(3, "little") + b"\0\0").digest()[:10], data)


def catalog_bomb(chunk, times, encryption=None, parameters=b""):
    """The catalog in an object stream, with an entry that inflates to so many chunks."""
    data = deflated_run(chunk, times, b"1 0 << /Type /Catalog /Pages 2 0 R /Long [ ", b"] >>")
    file = File().put({2: PAGES, 3: PAGE})
    keys = b"/Type /ObjStm /N 1 /First 4 /Filter /FlateDecode" + parameters
    file.put({4: stream_object(keys, encryption.data(4, data) if encryption else data)})
    file.entries[1] = (2, 4, 0)
    return file.xref_stream(extra=encryption.trailer if encryption else b"")


def bombs():
    keys = dict(data=deflated_run(bytes(1 << 20), 256), size=2000000000, index=b"[ 2 1999999998 ]",
                root=b"1999999990 0 R")
    yield "xref", File().put(body()).xref_stream(**keys)
    yield "xref-name-escaped", File().put(body()).xref_stream(**keys).out.replace(b"/XRef", b"/XR#65f")
    for name, hidden in (("endobj", b"(endobj)"), ("stream", b"(stream)"), ("long", b"(" + b" " * 100000 + b")")):
        yield "xref-after-" + name, File().put(body()).xref_stream(extra=b" /Z " + hidden, **keys)
    rows = b" /DecodeParms << /Predictor %d /Columns 1000000000 >>"
    for predictor in (2, 12):
        yield "xref-rows-%d" % predictor, File().put(body()).xref_stream(coding="flate", extra=rows % predictor)
    text = b"(" + b"x" * ((1 << 20) - 2) + b")"
    yield "object-stream", catalog_bomb(text, 256)
    yield "object-stream-rows", catalog_bomb(text, 1, parameters=rows % 12)
    yield "encrypted-object-stream", catalog_bomb(text, 256, Encryption())
    yield "encrypted-object-stream-of-numbers", catalog_bomb(b"1 " * (1 << 19), 8, Encryption())
    yield "encrypted-object-stream-rows", catalog_bomb(text, 1, Encryption(), rows % 12)


def main(folder):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "table.tsv"), "w") as table:
        for kind, cases in (("answered", sound()), ("refused", defects()),
                            ("refused", (("bomb-" + name, file) for name, file in bombs()))):
            for name, file, *url in cases:
                with open(os.path.join(folder, name + ".pdf"), "wb") as out:
                    out.write(file if isinstance(file, bytes) else file.out)
                table.write(f"{name}\t{kind}\t{(url[0] if url else URL).hex() or '-'}\n")


if __name__ == "__main__":
    main(sys.argv[1])
