#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes damaged PDF files of one page that reads "Hello", named by their defects.

usage: make-damaged.py FOLDER

Also writes "table.tsv": name, how a save is written ("incremental" or "rewrite"), user password ("-" for none).
"""

import os
import random
import re
import sys
import zlib

from make import Encryption, File

JUNK = random.Random(1).randbytes(2048)
TEXT = b"BT /F1 24 Tf 20 40 Td (Hello) Tj ET"
FONT = b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"
FIELD = b"<< /FT /Tx /T (name) /V (Value) /Subtype /Widget /Rect [ 0 0 9 9 ] /P 3 0 R >>"


def objects(catalog=b"", font=b"F1", page=b""):
    """Catalog 1, pages 2, page 3, font 5, a form field 6, a structure tree 7; the contents are object 4."""
    return {
        1: b"<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [ 6 0 R ] >> /StructTreeRoot 7 0 R %s>>" % catalog,
        2: b"<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>",
        3: b"<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 200 100 ] /Contents 4 0 R /Annots [ 6 0 R ] "
           b"/Resources << /Font << /%s 5 0 R >> >> %s>>" % (font, page),
        5: FONT,
        6: FIELD,
        7: b"<< /Type /StructTreeRoot /K [ ] >>",
    }


def contents(text=TEXT, length=None, end=b"\nendstream"):
    return {4: b"<< /Length %s >>\nstream\n" % (length or b"%d" % len(text)) + text + end}


def deflated(end):
    """The contents deflated, with a wrong length and more data after an "endobj"."""
    deflate = zlib.compressobj()
    data = deflate.compress(TEXT) + deflate.flush(zlib.Z_SYNC_FLUSH) + end
    return {4: b"<< /Filter /FlateDecode /Length 9 >>\nstream\n" + data + b"\nendstream"}


def plain(**keys):
    return File().put(objects(**keys)).put(contents())


def in_streams(**keys):
    """Everything that may be is in an object stream."""
    return File().put(contents()).put_in_stream(8, objects(**keys))


def without_object_stream(file):
    """The cross-references name an object stream of number 0 for another object."""
    file.entries[file.size] = (2, 0, 0)
    file.size += 1
    return file


def broken(file):
    """Nobody finds the cross-references from the end."""
    bytes_ = file if isinstance(file, bytes) else file.out
    at = bytes_.rindex(b"startxref\n") + 10
    return bytes_[:at] + b"9" + bytes_[at:]


def embedded(length):
    """A plain stream that holds another PDF, with objects of the same numbers, after the real ones."""
    other = File().put({1: b"<< /Type /Catalog /Pages 2 0 R >>", 2: b"<< /Type /Pages /Kids [ ] /Count 0 >>",
                        3: b"<< /Not /APage >>"}).put(contents(b"(Wrong)")).table().out
    file = plain()
    data = {9: b"<< /Type /EmbeddedFile /Length %s >>\nstream\n" % (b"%d" % len(other) if length else b"10 0 R")
            + other + b"\nendstream"}
    return broken(file.put(data).put({10: b"%d" % len(other)}).table())


def shifted_entry(number=3):
    """The tail is sound; one entry leads nowhere."""
    file = plain()
    kind, offset, generation = file.entries[number]
    file.entries[number] = (kind, offset + 4, generation)
    return file.table().out


def length_past_an_object():
    """The length of the contents leads to the end of the font, which is after them."""
    file = File().put(contents(length=b"9 0 R")).put({9: b"000", 5: FONT})
    length = file.out.rindex(b"\nendobj") - file.out.index(b"stream\n") - 7
    file.out = file.out.replace(b"000\nendobj", b"%03d\nendobj" % length)
    return file.put({number: text for number, text in objects().items() if number != 5})


def encrypted(entries, revision):
    """With the user password "secret"."""
    encryption = Encryption(entries, revision, b"secret")
    text = {6: FIELD.replace(b"(name)", b"<%s>" % encryption.data(6, b"name").hex().encode()).replace(
        b"(Value)", b"<%s>" % encryption.data(6, b"Value").hex().encode())}
    return File().put(contents(encryption.data(4, TEXT))).put({**objects(), **text}).table(extra=encryption.trailer)


def incremental():
    yield "junk-after-table", plain().table().out + JUNK
    yield "junk-after-object-streams", in_streams().xref_stream().out + JUNK
    yield "startxref-wrong", broken(plain().table())
    yield "startxref-wrong-object-streams", broken(in_streams().xref_stream())
    yield "xref-stream-garbled", in_streams().xref_stream(data=b"no deflate data").out
    yield "xref-stream-length-missing", in_streams().xref_stream().out.replace(b"/Length", b"/Lenght")
    yield "entry-shifted", shifted_entry()
    yield "entry-of-no-type-contents-open", re.sub(
        rb"(\n\d+ 00000 )n( \n.*\n.*\ntrailer)", rb"\g<1>3\2", File().put(objects()).put(contents(end=b"")).table().out)
    yield "truncated-in-table", plain().table().out[:-120]
    yield "truncated-before-table", plain().table().out[:plain().table().out.index(b"xref\n")]
    yield "truncated-in-last-object", plain().put({3: objects()[3]}).out[:-40]
    yield "length-too-long", broken(File().put(objects()).put(contents(length=b"99")).table())
    yield "length-too-short", broken(File().put(objects()).put(contents(length=b"9")).table())
    yield "length-too-short-white-space-before-the-table", File().put(objects()).put(contents(length=b"9")).table(
    ).out.replace(b"xref\n0", b"\nxref\n0", 1)
    yield "length-to-nothing", broken(File().put(objects()).put(contents(length=b"99 0 R")).table())
    yield "length-of-object-stream-too-short", re.sub(
        rb"(/ObjStm.*?/Length )\d+", rb"\g<1>9", broken(in_streams().xref_stream()), count=1)
    yield "length-to-the-end-of-the-file", plain().out[:plain().out.index(b"endstream")]
    yield "contents-deflated-past-endobj", broken(File().put(objects()).put(deflated(b"\nendobj\n" + JUNK[:100])).table())
    yield "length-past-an-object", broken(length_past_an_object().table())
    yield "length-past-the-keyword", broken(
        File().put(objects()).put(contents(length=b"%d" % len(TEXT + b"\nendstream"))).table())
    yield "endstream-missing", broken(File().put(contents(end=b"")).put(objects()).table())
    yield "endstream-missing-header-misspelt", File().put(objects()).put(contents(
        TEXT.replace(b"(", b"endobj ("), b"9", b"")).table().out.replace(b"%PDF-", b"%PFD-", 1)
    # The update has another font, in the stream whose length it mends.
    page = objects()
    page[3] = page[3].replace(b">> >> ", b">> ").replace(b" >>>>", b" >> ").rstrip(b">")
    font = {4: contents()[4].replace(b"/Length 35", b"/Length 9 /Font << /F1 6 0 R >>")}
    yield "page-open", broken(File().put(font).put({k: v for k, v in page.items() if k != 3}).put({3: page[3]}).table())
    # Readers that take all that follows for elements do not read the array, which would put other letters.
    font = {5: FONT.replace(b">>", b"/Encoding << /Differences 9 0 R >> >>")}
    yield "array-open", File().put({**objects(), **font}).put(contents()).put({9: b"[ 72 /A 101 /B", 10: b"null"}).table(
        trailer=b"/Size 11 /Root 1 0 R").out.replace(b"endobj\n10 0", b"10 0").replace(b"startxref\n", b"startxref\n9")
    # One reader reads the dictionary to the end of the file, and the update begins with a stream.
    fonts = {n: text.replace(b"/Font << /F1 5 0 R >>", b"/Font 9 0 R") for n, text in objects().items()}
    yield "fonts-open-in-a-string", broken(File().put(fonts).put(contents(length=b"99")).put(
        {9: b"<< /F1 5 0 R /Open (", 10: b"null"}).table())
    yield "embedded-file", embedded(length=True)
    yield "embedded-file-length-in-object", embedded(length=False)
    yield "string-with-objects", broken(plain(catalog=b"/Note (\n2 0 obj << /Type /Pages >> endobj\n3 0 obj null) ").table())
    old = b"<< /Type /Catalog /Pages 99 0 R >>"
    yield "catalog-without-pages-is-newer", broken(plain().table().put({20: old}).table(root=b"20 0 R"))
    yield "catalog-named-by-no-trailer", broken(plain().out + b"trailer << >>\nstartxref\n1\n")
    wrong = objects(page=b"/Contents 99 0 R ")[3]
    yield "plain-object-after-its-object-stream", broken(
        in_streams(page=b"/Contents 99 0 R ").xref_stream().put({3: objects()[3]}).xref_stream())
    yield "plain-object-inserted-after-its-object-stream", broken(in_streams().put({3: wrong}).xref_stream())
    yield "plain-object-appended-after-its-object-stream", broken(
        in_streams().xref_stream()) + b"\n3 0 obj\n" + wrong + b"\nendobj\n" + b"%" * 2000
    yield "damaged-object-after-its-object-stream", broken(
        in_streams().xref_stream().put({3: wrong.replace(b">>", b"] >>", 1)}).xref_stream())
    yield "negative-number", broken(plain().out + b"-3 0 obj\n" + wrong + b"\nendobj\n" + b"trailer << >>\nstartxref\n1\n")
    yield "number-after-junk", broken(plain().out + b"\x023 0 obj\n" + wrong + b"\nendobj\n" + b"trailer << >>\nstartxref\n1\n")
    # Only the table leads to the contents. Some readers use it, though the trailer is damaged.
    yield "number-after-comment", File().put(contents()).put(objects()).table().out.replace(
        b"\n4 0 obj", b"\x024 0 obj").replace(b"<2233> ]", b"<2233>")
    yield "number-after-a-sign", File().put(contents()).put(objects()).table().out.replace(
        b"\n4 0 obj", b"-4 0 obj").replace(b"<2233> ]", b"<2233>")
    older = File().put(objects()).put(contents(TEXT.replace(b"Hello", b"Wrong"), b"9")).table(trailer=b"/Size 8 /Root 1 0 R")
    yield "update-of-a-stream-with-a-wrong-length", older.out + b"\n4 0 obj\n" + contents()[4] + (
        b"\nendobj\nxref\n0 0\ntrailer\n<< /Size 8 /Root 1 0 R /Prev 9 >>\nstartxref\n1\n%%EOF\n")
    # No reader takes that for a stream.
    yield "stream-keyword-doubled", broken(File().put(objects(page=b"/Contents [ 4 0 R 9 0 R ] ")).put(contents()).put(
        {9: b"<< /Length 9 /Filter /FlateDecode >>\nstreamstream\ngarbage!\nendstream"}).table())
    yield "contents-open", broken(File().put(objects()).put(contents(TEXT[:20], b"9", b"")).put(
        {9: b"<< >>\nstream\n" + TEXT[20:] + b"\nendstream"}).table())
    yield "contents-open-before-a-copy", broken(File().put(objects()).put(contents(
        TEXT + b"\n5 0 obj\n" + FONT + b"\nendobj\n", b"9")).table())
    yield "object-stream-of-number-0", without_object_stream(in_streams(catalog=b"/URI << /Base (old) >> ")).xref_stream().out
    yield "object-stream-after-its-plain-object", broken(
        File().put({3: objects(page=b"/Contents 99 0 R ")[3]}).put(contents()).put_in_stream(8, objects()).xref_stream())
    yield "header-after-5-bytes", broken(File(lead=b"junk\n", base=5).put(objects()).put(contents()).table())
    yield "header-after-790-bytes-length-missing", File(lead=b"%" * 789 + b"\n", base=790).put(objects()).put(contents(
        length=b"null")).table().out
    yield "header-after-5-bytes-object-streams", broken(File(lead=b"junk\n", base=5).put(contents()).put_in_stream(
        8, objects(b"/URI << /Base (old) >> ")).xref_stream())
    late = File(lead=b"junk\n", base=5).put(contents()).put_in_stream(8, objects(b"/URI << /Base (old) >> ")).xref_stream()
    yield "header-after-5-bytes-table-after-an-xref-stream", late.put({5: FONT}).table().out
    late = File(lead=b"junk\n", base=5).put(objects(b"/URI << /Base (old) >> ")).put(contents())
    yield "header-after-5-bytes-stream-cut-off", late.xref_stream().out[:-60]
    late = File(lead=b"junk\n", base=5).put(objects(b"/URI << /Base (old) >> ")).put(contents())
    yield "header-after-5-bytes-object-cut-off", late.table().out + b"20 0 obj\n<< /ID [ <31"
    late = File(lead=b"junk\n", base=5).put(objects(b"/URI << /Base (old) >> ")).put(contents())
    late.out += b"trailer\n<< /ID [ [ <31> ( (\n"
    yield "header-after-5-bytes-trailer-open", late.table().out
    yield "header-after-5-bytes-table-open", File(lead=b"junk\n", base=5).put(objects(b"/URI << /Base (old) >> ")).put(
        contents()).table().out.replace(b"65535 f", b"65535 f [ 3 0 R << ", 1)
    late = File(lead=b"junk\n", base=5).put(contents()).put_in_stream(8, objects(b"/URI << /Base (old) >> "))
    yield "header-after-5-bytes-endstream-misspelt", b"endstXeam".join(late.xref_stream().out.rsplit(b"endstream", 1))
    junk = b"9 0 obj\n<< >>\nstream\n"
    yield "header-after-a-stream-that-is-open", broken(
        File(lead=junk, base=len(junk)).put(objects()).put(contents()).table())
    yield "header-doubled-object-streams", b"%PDF-" + File().put(contents()).put_in_stream(
        8, objects(b"/URI << /Base (old) >> ")).xref_stream().out
    yield "size-of-too-many-objects", in_streams().xref_stream().out.replace(b"/Size ", b"/Size 9999999", 1)
    yield "xref-stream-rows-missing", re.sub(rb"/Index \[[^]]*\] /Size \d+", rb"/Size 45", in_streams(
        catalog=b"/URI << /Base (old) >> ").xref_stream().out)
    # Readers that look for the page in an object stream without a row rebuild the file, with the old catalog.
    old = objects(catalog=b"/URI << /Base (old) >> ")
    yield "xref-stream-rows-left-over", re.sub(
        rb"/Index \[[^]]*\] /Size \d+", rb"/Size 9", File().put({7: old.pop(7)}).put(contents()).put_in_stream(
            8, {1: old.pop(1).replace(b"/AcroForm << /Fields [ 6 0 R ] >> ", b""), 2: old.pop(2)}).put_in_stream(9, old).xref_stream().out)
    yield "xref-stream-parameter-damaged", in_streams(catalog=b"/URI << /Base (old) >> ").xref_stream().out.replace(
        b"/Columns 7", b"/Columns 7 7")
    file = in_streams(catalog=b"/URI << /Base (old) >> ")
    start = b"\1" + file.here().to_bytes(4, "big")
    yield "xref-stream-with-a-wrong-entry-for-itself", file.xref_stream(coding=None).out.replace(
        start, b"\1\0\0\x41\x16", 1)
    yield "xref-stream-joined-with-the-page", re.sub(
        rb">>\nendobj\n\d+ 0 obj\n<< /Type /XRef", b"/Type /XRef", plain().put({3: objects()[3]}).xref_stream().out)
    yield "xref-stream-number-of-the-pages", re.sub(rb"\d+( 0 obj\n<< /Type /XRef)", rb"2\1", in_streams().xref_stream().out)
    yield "xref-stream-number-too-high", re.sub(rb"\d+( 0 obj\n<< /Type /XRef)", rb"99999999\1", in_streams(
        catalog=b"/URI << /Base (old) >> ").xref_stream().out)
    yield "index-beyond-size", plain().table().put({7: objects()[7]}).xref_stream().out.replace(
        b"/Index [ 7", b"/Index [ 99999999", 1)
    yield "header-after-1500-bytes", broken(File(lead=b"%" * 1499 + b"\n").put(objects()).put(contents()).table())
    late = plain(catalog=b"/URI << /Base (old) >> ").table()
    yield "header-after-1500-bytes-trailer-open", b"%" * 1499 + b"\n" + late.out + b"trailer << /ID 1\n%%EOF\n2 >>\n"
    yield "number-signs-in-names", broken(plain(font=b"C#2341").table())
    yield "size-too-small", plain().table(size=4).out
    yield "catalog-key-missing", broken(plain(catalog=b"(no key) /Lang (en) ").table())


def kept_although_odd():
    sound = plain().table().out
    yield "objects-after-the-end", sound + b"20 0 obj\n<< /Type /Catalog >>\nendobj\ntrailer << /Root 20 0 R /ID [ <31> <31> ] >>\n" + b"%" * 2000
    yield "entry-shifted-and-objects-after-the-end", shifted_entry(4) + b"20 0 obj\nnull\nendobj\n" + b"%" * 2000
    yield "object-damaged", broken(plain().table()).replace(b"/BaseFont", b"/BaseFont ] ")
    # The key is damaged, and the stream has the number of the page tree.
    yield "xref-stream-damaged", in_streams().xref_stream(number=2).out.replace(b"/Index", b"/Ind<x", 1)
    yield "xref-stream-dictionary-open", in_streams().xref_stream(number=2).out.replace(b"<< /Type /XRef", b"/Type /XRef", 1)
    yield "header-misspelt-object-streams", in_streams().xref_stream().out.replace(b"%PDF-", b"%PFD-", 1)
    yield "header-after-5-bytes-truncated-in-trailer", broken(
        File(lead=b"junk\n", base=5).put(objects()).put(contents()).table())[:-40].rsplit(b"/Root", 1)[0]


def main(folder):
    os.makedirs(folder, exist_ok=True)
    files = [(name, "incremental", "-", data) for name, data in [*incremental(), *kept_although_odd()]]
    root = objects()[1]
    files.append(("catalog-in-trailer", "rewrite", "-", plain(font=b"C#2341").table(
        trailer=b"/Size 8 /Root " + root).out))
    for name, entries, revision in (
            ("key-of-standard-length", b"/V 2", 3),
            ("crypt-filter-of-40-bits", b"/V 4 /Length 40 /StmF /A /StrF /A /CF << /A << /CFM /V2 /Length 5 >> >>", 4)):
        sound = encrypted(entries, revision)
        files.append((name, "incremental", "secret", sound.out))
        files.append((name + "-startxref-wrong", "incremental", "secret", broken(sound)))
    with open(os.path.join(folder, "table.tsv"), "w") as table:
        for name, mode, password, data in files:
            with open(os.path.join(folder, name + ".pdf"), "wb") as out:
                out.write(data)
            table.write(f"{name}\t{mode}\t{password}\n")


if __name__ == "__main__":
    main(sys.argv[1])
