#!/usr/bin/env python3
"""Writes the golden sign archives beside this file, with python's own property-list writer.

The archives are foreign to the library's writer on purpose: they are what another program sends.
Run it after a change of the format only; the files are kept in the repository.
"""
import plistlib
import struct
from pathlib import Path

HERE = Path(__file__).parent
UID = plistlib.UID


def tiff(width, height, rgba):
    """An uncompressed RGBA picture of one colour, little-endian, one strip, 72 dots an inch."""
    pixels = bytes(rgba) * (width * height)
    entries = [
        (256, 4, 1, width), (257, 4, 1, height), (258, 3, 4, None), (259, 3, 1, 1),
        (262, 3, 1, 2), (273, 4, 1, None), (277, 3, 1, 4), (278, 4, 1, height),
        (279, 4, 1, len(pixels)), (338, 3, 1, 1),
    ]
    after = 8 + 2 + 12 * len(entries) + 4
    bits, strip = after, after + 8
    out = struct.pack("<2sHI", b"II", 42, 8) + struct.pack("<H", len(entries))
    for tag, kind, count, value in entries:
        value = bits if tag == 258 else strip if tag == 273 else value
        out += struct.pack("<HHI", tag, kind, count)
        out += struct.pack("<HH", value, 0) if kind == 3 and count == 1 else struct.pack("<I", value)
    return out + struct.pack("<I", 0) + struct.pack("<4H", 8, 8, 8, 8) + pixels


class Archive:
    def __init__(self):
        self.objects = ["$null"]
        self.classes = {}

    def add(self, value):
        self.objects.append(value)
        return UID(len(self.objects) - 1)

    def klass(self, *names):
        if names not in self.classes:
            self.classes[names] = self.add(
                {"$classname": names[0], "$classes": list(names) + ["NSObject"]})
        return self.classes[names]

    def record(self, names, **values):
        uid = self.add(None)
        self.objects[uid.data] = {**values, "$class": self.klass(*names)}
        return uid

    def dictionary(self, items):
        keys = [self.add(key) for key in items]
        return self.record(["NSDictionary"], **{"NS.keys": keys, "NS.objects": list(items.values())})

    def write(self, name, root, fmt=plistlib.FMT_BINARY):
        top = {"$archiver": "NSKeyedArchiver", "$version": 100000, "$objects": self.objects,
               "$top": {"root": root}}
        if fmt == plistlib.FMT_XML:
            top = xml_uids(top)
        (HERE / name).write_bytes(plistlib.dumps(top, fmt=fmt, sort_keys=False))


def xml_uids(value):
    if isinstance(value, UID):
        return {"CF$UID": value.data}
    if isinstance(value, dict):
        return {key: xml_uids(item) for key, item in value.items()}
    if isinstance(value, list):
        return [xml_uids(item) for item in value]
    return value


IMAGE_SIGN = ["ZQImageTickerSign", "ZQTickerSign"]
TEXT_SIGN = ["ZQTextTickerSign", "ZQImageTickerSign", "ZQTickerSign"]
COMBO_SIGN = ["ZQComboTickerSign", "ZQTickerSign"]


def base(archive, **changed):
    values = {
        "ZQScrollDirection": 1, "ZQContinuousScrolling": True, "ZQLoopCount": -1,
        "ZQSize": archive.add("{135, 20}"), "ZQActionType": 1,
        "ZQActionString": archive.add("https://example.org/"), "ZQLoopDelay": 0.5,
        "ZQSignIdentifier": archive.add("golden"),
    }
    values.update(changed)
    return values


def styled(archive, text):
    font = archive.record(["NSFont"], NSName=archive.add("DejaVuSans"), NSSize=18.0, NSfFlags=16)
    color = archive.record(["NSColor"], NSColorSpace=2, NSRGB=b"0.25 0.5 0.75\0")
    attributes = archive.dictionary({"NSFont": font, "NSColor": color})
    return archive.record(["NSAttributedString"], NSString=archive.add(text), NSAttributes=attributes)


def main():
    a = Archive()
    a.write("base.archive", a.record(["ZQTickerSign"], **base(a)))

    a = Archive()
    a.write("image.archive", a.record(
        IMAGE_SIGN, **base(a), ZQImage=a.add(tiff(4, 3, (255, 0, 0, 255))),
        ZQTextRepresentation=a.add("red")))

    a = Archive()
    a.write("image-undecodable-picture.archive", a.record(
        IMAGE_SIGN, **base(a), ZQImage=a.add(b"no picture at all"), ZQTextRepresentation=UID(0)))

    for name, fmt in (("text.archive", plistlib.FMT_BINARY), ("text.xml.archive", plistlib.FMT_XML)):
        a = Archive()
        a.write(name, a.record(
            TEXT_SIGN, **base(a), ZQImage=a.add(tiff(2, 2, (0, 0, 0, 255))),
            ZQTextRepresentation=UID(0), ZQText=styled(a, "gr\u00fc\u00df \U0001d11e")), fmt)

    a = Archive()
    a.write("combo-plain.archive", a.record(
        COMBO_SIGN, **base(a, ZQScrollDirection=0), ZQImage=a.add(tiff(40, 40, (0, 0, 255, 255))),
        ZQText=a.add("plain text")))

    a = Archive()
    a.write("combo-attributed.archive", a.record(
        COMBO_SIGN, **base(a), ZQImage=UID(0), ZQText=styled(a, "styled text")))

    a = Archive()
    a.write("text-empty-record.archive", a.record(TEXT_SIGN))

    a = Archive()
    a.write("broken-combo-without-text.archive", a.record(COMBO_SIGN, **base(a), ZQImage=UID(0)))

    a = Archive()
    a.write("broken-combo-number-as-text.archive", a.record(
        COMBO_SIGN, **base(a), ZQImage=UID(0), ZQText=a.add(7)))

    a = Archive()
    a.write("broken-text-of-wrong-class.archive", a.record(
        TEXT_SIGN, **base(a), ZQImage=UID(0), ZQTextRepresentation=UID(0), ZQText=a.add(b"data")))

    a = Archive()
    a.write("broken-image-of-wrong-class.archive", a.record(
        IMAGE_SIGN, **base(a), ZQImage=a.add("a string"), ZQTextRepresentation=UID(0)))

    a = Archive()
    a.write("broken-identifier-of-wrong-class.archive", a.record(
        IMAGE_SIGN, **base(a, ZQSignIdentifier=a.add(5))))

    a = Archive()
    a.write("broken-loop-count-out-of-range.archive", a.record(
        IMAGE_SIGN, **base(a, ZQLoopCount=5_000_000_000)))

    a = Archive()
    root = a.record(TEXT_SIGN, **base(a))
    a.objects[root.data]["ZQText"] = root
    a.write("broken-text-that-is-the-sign-itself.archive", root)


if __name__ == "__main__":
    main()
