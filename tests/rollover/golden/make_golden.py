#!/usr/bin/env python3
"""Writes the golden appearance and cell files beside this file, with python's own property-list writer.

The archives are foreign to the library's writer on purpose: they are what another program sends.
Run it after a change of the format only; the files are kept in the repository.
"""
import plistlib
from pathlib import Path

HERE = Path(__file__).parent
UID = plistlib.UID


def key(state, part):
    return "zq_" + (state + part[0].upper() + part[1:] if state else part)


KEYS = [key(state, part) for state in ("", "mouseover", "highlighted")
        for part in ("controlColor", "frameColor", "textColor", "arrowColor", "shadingColor")]


class Archive:
    def __init__(self):
        self.objects = ["$null"]
        self.classes = {}

    def add(self, value):
        self.objects.append(value)
        return UID(len(self.objects) - 1)

    def record(self, names, **values):
        uid = self.add(None)
        if names not in self.classes:
            self.classes[names] = self.add(
                {"$classname": names[0], "$classes": list(names) + ["NSObject"]})
        self.objects[uid.data] = {**values, "$class": self.classes[names]}
        return uid

    def rgb(self, *components, space=2):
        text = " ".join(str(component) for component in components).encode() + b"\0"
        return self.record(("NSColor",), NSColorSpace=space, NSRGB=text)

    def shadow(self, horizontal, vertical, radius, **color):
        return self.record(("NSShadow",), NSShadowHoriz=horizontal, NSShadowVert=vertical,
                           NSShadowBlurRadius=radius, **color)

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
        return {name: xml_uids(item) for name, item in value.items()}
    if isinstance(value, list):
        return [xml_uids(item) for item in value]
    return value


APPEARANCE = ("ZQRollOverButtonAppearance",)
CELL = ("ZQRollOverButtonCell", "NSButtonCell", "NSActionCell", "NSCell")


def complete(archive, names=APPEARANCE, **changed):
    """Every attribute, the colours of all kinds of spaces."""
    srgb = archive.record(("NSColorSpace",), NSID=7)
    colors = [
        archive.rgb(0.25, 0.5, 0.75),
        archive.rgb(0.1, 0.2, 0.3, space=1),
        archive.record(("NSColor",), NSColorSpace=3, NSWhite=b"1\0"),
        archive.record(("NSColor",), NSColorSpace=4, NSWhite=b"0.5 0.25"),
        UID(0),
        archive.record(("NSColor",), NSColorSpace=5, NSCMYK=b"0.1 0.2 0.3 0.4\0"),
        archive.record(("NSColor",), NSColorSpace=1, NSRGB=b"0 0 0.9981889725\0",
                       NSComponents=b"0 0 1 1", NSCustomColorSpace=srgb),
        archive.record(("NSColor",), NSColorSpace=6, NSCatalogName=archive.add("System"),
                       NSColorName=archive.add("controlColor"),
                       NSColor=archive.record(("NSColor",), NSColorSpace=3,
                                              NSWhite=b"0.6666666667\0")),
    ] + [archive.rgb(number / 8, 0, 1, 0.5) for number in range(7)]
    black = archive.record(("NSColor",), NSColorSpace=3, NSWhite=b"0 0.5\0")
    values = dict(zip(KEYS, colors))
    values.update({
        "zq_controlShadow": archive.shadow(1.0, -2.0, 3.0, NSShadowColor=black),
        "zq_textShadow": archive.record(("NSShadow",)),
        "zq_mouseoverTextShadow": archive.shadow(0.0, -1.0, 1.0, NSShadowColor=UID(0)),
        "zq_highlightedTextShadow": UID(0),
        "zq_highlightedControlShadow": archive.shadow(0.0, 1.0, 0.5, NSShadowColor=black),
        "zq_bezelStyle": 6, "zq_shadingMode": 2, "zq_bordered": True,
        "zq_popUpMenuDelay": 0.35, "zq_alwaysShowMenuIndicator": True,
    })
    values.update(changed)
    return archive.record(names, **values)


def main():
    for name, fmt in (("complete.button", plistlib.FMT_BINARY),
                      ("complete.xml.button", plistlib.FMT_XML)):
        a = Archive()
        a.write(name, complete(a), fmt)

    a = Archive()
    a.write("without-keys.button", a.record(APPEARANCE))

    a = Archive()
    a.write("unknown-numbers.button",
            a.record(APPEARANCE, zq_bezelStyle=-1, zq_shadingMode=1 << 40))

    a = Archive()
    a.write("not-a-number.button", a.record(
        APPEARANCE, zq_popUpMenuDelay=float("nan"),
        zq_controlShadow=a.shadow(float("nan"), float("inf"), float("nan"))))

    a = Archive()
    a.write("broken-root-is-a-color.button", a.rgb(1, 0, 0))

    a = Archive()
    a.write("broken-color-of-unknown-space.button", complete(
        a, zq_frameColor=a.record(("NSColor",), NSColorSpace=42, NSRGB=b"0 0 0\0")))

    a = Archive()
    a.write("broken-shadow-as-color.button", complete(a, zq_arrowColor=a.shadow(0.0, 0.0, 0.0)))

    a = Archive()
    a.write("broken-text-as-shadow.button", complete(a, zq_textShadow=a.add("dark")))

    a = Archive()
    a.write("broken-flag-as-text.button", complete(a, zq_bordered="yes"))

    a = Archive()
    uid = UID(len(a.objects))
    a.write("broken-color-is-the-appearance.button", a.record(APPEARANCE, zq_controlColor=uid))

    # A text cell, bordered, on, aligned to the left, that shows its state by its contents.
    a = Archive()
    flags = {"NSCellFlags": -0x7c000000, "NSCellFlags2": 0,
             "NSButtonFlags": 0x40800000, "NSButtonFlags2": 6}
    a.write("cell.archive", complete(a, CELL, NSContents=a.add("Play"), NSTag=7, **flags))

    a = Archive()
    a.write("cell-of-the-class.archive", a.record(CELL, NSContents=a.add("Play"), **flags))

    a = Archive()
    uid = UID(len(a.objects))
    a.write("broken-color-is-the-cell.archive", a.record(CELL, zq_controlColor=uid, **flags))


if __name__ == "__main__":
    main()
