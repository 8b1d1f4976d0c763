#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""sign.py IN.pdf OUT.pdf CERTIFICATE.pem KEY.pem [DOCMDP-LEVEL]

Signs a PDF that has a plain cross-reference table: appends an incremental update with an invisible signature field and
puts a detached CMS signature made by openssl into it (ISO 32000-1, 12.8). With a level (1 to 3) the signature certifies
the document: it also says which later changes are permitted, 1 being none.
"""
import re
import subprocess
import sys

CONTENTS_SIZE = 6000


def object_body(data, number):
    return re.search(rb"(?<!\d)%d 0 obj\s*(<<.*?>>)\s*endobj" % number, data, re.S).group(1)


def with_entry(dictionary, entry):
    return dictionary[: dictionary.rindex(b">>")] + entry + b" >>"


def main(source, target, certificate, key, level=None):
    data = open(source, "rb").read()
    if not data.endswith(b"\n"):
        data += b"\n"
    startxref = int(re.findall(rb"startxref\s+(\d+)", data)[-1])
    trailer = re.findall(rb"trailer\s*(<<.*?>>)\s*startxref", data, re.S)[-1]
    size = int(re.search(rb"/Size (\d+)", trailer).group(1))
    root = int(re.search(rb"/Root (\d+) 0 R", trailer).group(1))
    pages = int(re.search(rb"/Pages (\d+) 0 R", object_body(data, root)).group(1))
    page = int(re.search(rb"/Kids\s*\[\s*(\d+) 0 R", object_body(data, pages)).group(1))
    field, signature = size, size + 1

    page_body = object_body(data, page)
    reference = b"%d 0 R" % field
    if b"/Annots" in page_body:
        page_body = re.sub(rb"/Annots\s*\[", b"/Annots [ " + reference + b" ", page_body)
    else:
        page_body = with_entry(page_body, b" /Annots [ " + reference + b" ]")
    permission = b" /Perms << /DocMDP %d 0 R >>" % signature if level else b""
    catalog = with_entry(
        object_body(data, root), b" /AcroForm << /Fields [ " + reference + b" ] /SigFlags 3 >>" + permission)
    rules = (b" /Reference [ << /Type /SigRef /TransformMethod /DocMDP /TransformParams"
             b" << /Type /TransformParams /V /1.2 /P %d >> >> ]" % int(level) if level else b"")
    placeholder = b"/ByteRange [0 0000000000 0000000000 0000000000]"
    objects = {
        page: page_body,
        root: catalog,
        field: b"<< /Type /Annot /Subtype /Widget /FT /Sig /T (Signature) /Rect [0 0 0 0] /F 132 /P %d 0 R /V %d 0 R >>"
        % (page, signature),
        signature: b"<< /Type /Sig /Filter /Adobe.PPKLite /SubFilter /adbe.pkcs7.detached /M (D:20260101120000Z)"
        + rules + b" " + placeholder + b" /Contents <" + b"0" * CONTENTS_SIZE + b"> >>",
    }

    output = bytearray(data)
    table = b"xref\n"
    for number in sorted(objects):
        table += b"%d 1\n%010d 00000 n \n" % (number, len(output))
        output += b"%d 0 obj\n" % number + objects[number] + b"\nendobj\n"
    new_startxref = len(output)
    trailer = re.sub(rb"/Size \d+", b"/Size %d" % (signature + 1), trailer)
    trailer = re.sub(rb"/Prev \d+", b"", trailer)
    output += table + b"trailer\n" + with_entry(trailer, b" /Prev %d" % startxref)
    output += b"\nstartxref\n%d\n%%%%EOF\n" % new_startxref

    begin = output.rindex(b"/Contents <") + len(b"/Contents ")
    end = begin + CONTENTS_SIZE + 2
    byte_range = b"/ByteRange [0 %010d %010d %010d]" % (begin, end, len(output) - end)
    at = output.rindex(placeholder)
    output[at:at + len(placeholder)] = byte_range
    cms = subprocess.run(
        ["openssl", "cms", "-sign", "-binary", "-outform", "DER", "-md", "sha256", "-signer", certificate, "-inkey", key],
        input=bytes(output[:begin] + output[end:]), stdout=subprocess.PIPE, check=True).stdout
    digits = cms.hex().encode()
    output[begin + 1:begin + 1 + len(digits)] = digits
    open(target, "wb").write(output)


if __name__ == "__main__":
    main(*sys.argv[1:])
