#!/usr/bin/env python3
"""Writes the archives of this folder that do not come from another program, with Python's plistlib.

Run in this folder. The README says what each file holds; the tests read all of them.
"""
import plistlib
from plistlib import UID as U


def class_record(name, *superclasses):
    return {"$classname": name, "$classes": [name, *superclasses, "NSObject"]}


def archive(*objects, **changes):
    top = {"$archiver": "NSKeyedArchiver", "$version": 100000, "$objects": ["$null", *objects],
           "$top": {"root": U(1)}}
    top.update(changes.get("change", {}))
    for key in changes.get("without", []):
        del top[key]
    return top


def write(name, content, fmt=plistlib.FMT_BINARY):
    with open(name + (".xml" if fmt == plistlib.FMT_XML else "") + ".archive", "wb") as file:
        file.write(content if isinstance(content, bytes) else
                   plistlib.dumps(content, fmt=fmt, sort_keys=False))


def color(**fields):
    return archive({**fields, "$class": U(2)}, class_record("NSColor"))


DICTIONARY = class_record("NSDictionary")
ARRAY = class_record("NSArray")
ATTRIBUTED = class_record("NSAttributedString")


def runs(text, info, count, marked):
    """An attributed string of `count` dictionaries; those in `marked` have the attribute mark."""
    objects = [{"NSString": U(2), "NSAttributes": U(3), "NSAttributeInfo": U(4), "$class": U(5)},
               text, {"NS.objects": [U(10 + i) for i in range(count)], "$class": U(7)}, info,
               ATTRIBUTED, DICTIONARY, ARRAY, "mark", 1]
    for i in range(count):
        objects.append({"NS.keys": [U(8)] if i in marked else [],
                        "NS.objects": [U(9)] if i in marked else [], "$class": U(6)})
    return archive(*objects)


# Attributed strings.
write("attr-one-run", archive(
    {"NSString": U(2), "NSAttributes": U(3), "$class": U(6)}, "abc",
    {"NS.keys": [U(4)], "NS.objects": [U(5)], "$class": U(7)}, "mark", 1, ATTRIBUTED, DICTIONARY))
write("attr-run-index-used-twice", runs("abcdef", bytes([1, 0, 2, 1, 3, 0]), 2, {1}))
write("attr-long-runs", runs("x" * 400, bytes([0xAC, 2, 0, 0x64, 1]), 2, {1}))
write("attr-wide-run-at-index-200", runs("x" * 16384, bytes([0x80, 0x80, 1, 0xC8, 1]), 201, {200}))
write("attr-surrogate-pair", runs("\U0001D11Ex", bytes([2, 0, 1, 1]), 2, {1}))
write("attr-empty", archive({"NSString": U(2), "$class": U(3)}, "", ATTRIBUTED))
write("attr-data-ends-early", runs("abcdef", bytes([1, 0, 2, 1]), 2, {1}))
write("attr-mutable-parts", archive(
    {"NSString": U(2), "NSAttributes": U(4), "NSAttributeInfo": U(8), "$class": U(10)},
    {"NS.string": "abcdef", "$class": U(3)}, class_record("NSMutableString", "NSString"),
    {"NS.objects": [U(5), U(6), U(5)], "$class": U(7)},
    {"NS.keys": [], "NS.objects": [], "$class": U(12)},
    {"NS.keys": [U(13)], "NS.objects": [U(14)], "$class": U(12)},
    class_record("NSMutableArray", "NSArray"),
    {"NS.data": bytes([1, 0, 2, 1, 3, 2]), "$class": U(9)}, class_record("NSMutableData", "NSData"),
    class_record("NSMutableAttributedString", "NSAttributedString"), "unused",
    class_record("NSMutableDictionary", "NSDictionary"), "mark", 1))

# Colours.
write("color-calibrated-rgb", color(NSColorSpace=1, NSRGB=b"0.1 0.2 0.3\0"))
write("color-device-rgb", color(NSColorSpace=2, NSRGB=b"0.25 0.5 0.75 0.5\0"))
write("color-white", color(NSColorSpace=3, NSWhite=b"1\0"))
write("color-clear-white", color(NSColorSpace=4, NSWhite=b"0 0\0"))
write("color-cmyk", color(NSColorSpace=5, NSCMYK=b"0.1 0.2 0.3 0.4\0"))
write("color-cmyk-misspelt-key", color(NSColorSpace=5, NSCYMK=b"0.1 0.2 0.3 0.4"))
write("color-srgb", archive(
    {"NSColorSpace": 1, "NSRGB": b"0 0 0.9981889725\0", "NSComponents": b"0 0 1 1",
     "NSCustomColorSpace": U(3), "$class": U(2)}, class_record("NSColor"),
    {"NSID": 7, "$class": U(4)}, class_record("NSColorSpace")))
write("color-named", archive(
    {"NSColorSpace": 6, "NSCatalogName": U(3), "NSColorName": U(4), "NSColor": U(5), "$class": U(2)},
    class_record("NSColor"), "System", "controlColor",
    {"NSColorSpace": 3, "NSWhite": b"0.6666666667\0", "$class": U(2)}))

# Fonts and shadows.
write("font-flags", archive({"NSName": U(2), "NSSize": 12.0, "NSfFlags": 16, "$class": U(3)},
                            "Helvetica", class_record("NSFont")))
write("shadow-empty", archive({"$class": U(2)}, class_record("NSShadow")))

# Values and structure.
write("cycle", archive({"me": U(1), "$class": U(2)}, class_record("Unknown")))
write("conditional", archive({"owner": U(2), "$class": U(3)}, "$null", class_record("Unknown")))
write("escaped-key", archive({"$$x": U(2), "$class": U(3)}, "v", class_record("Unknown")))
write("url-with-base", archive(
    {"NS.base": U(2), "NS.relative": U(4), "$class": U(5)},
    {"NS.base": U(0), "NS.relative": U(3), "$class": U(5)}, "http://example.org/a/", "b/c",
    class_record("NSURL")))
write("button", archive(
    {"NSNextResponder": U(0), "NSvFlags": 256, "NSFrame": U(2), "NSEnabled": True, "NSTag": 7,
     "NSCell": U(3), "$class": U(4)},
    "{{10, 20}, {100, 22}}",
    {"NSCellFlags": 67108864, "NSCellFlags2": 134217728, "NSContents": U(5), "NSSupport": U(6),
     "NSControlView": U(1), "NSButtonFlags": -2038415360, "NSButtonFlags2": 6,
     "NSAlternateContents": U(7), "NSKeyEquivalent": U(7), "NSPeriodicDelay": 400,
     "NSPeriodicInterval": 75, "$class": U(9)},
    class_record("NSButton", "NSControl", "NSView", "NSResponder"), "OK",
    {"NSName": U(8), "NSSize": 13.0, "NSfFlags": 1044, "$class": U(10)}, "", "LucidaGrande",
    class_record("NSButtonCell", "%NSButtonCell", "NSActionCell", "NSCell"),
    class_record("NSFont")))

# Broken ones, named after what is wrong.
write("broken-version", archive("x", change={"$version": 10000}))
write("broken-archiver", archive("x", change={"$archiver": "NSArchiver"}))
write("broken-no-objects", archive("x", without=["$objects"]))
write("broken-no-top", archive("x", without=["$top"]))
write("broken-root-outside-the-table", archive("x", "y", change={"$top": {"root": U(10)}}))
write("broken-class-is-a-string", archive({"$class": U(2)}, "NSNull"))
write("broken-class-without-name", archive({"$class": U(2)}, {"$classes": ["NSNull", "NSObject"]}))
write("broken-class-unknown", archive({"$class": U(2)}, class_record("Unknown")))
write("broken-record-without-class", archive({"a": 1}))
write("broken-element-outside-the-table", archive({"NS.objects": [U(99)], "$class": U(2)}, ARRAY))
write("broken-element-is-nothing", archive({"NS.objects": [U(0)], "$class": U(2)}, ARRAY))
write("broken-run-index", runs("abcdef", bytes([1, 5]), 1, set()))
write("broken-run-cut-off", runs("abcdef", bytes([0x80]), 1, set()))
write("broken-run-past-the-end", runs("abc", bytes([2, 0, 2, 0]), 1, set()))
write("broken-integer-out-of-range", color(NSColorSpace=4294967296))
write("broken-string-where-a-reference-belongs",
      archive({"NSName": "Helvetica", "NSSize": 12.0, "$class": U(2)}, class_record("NSFont")))
write("broken-list-contains-itself", archive({"NS.objects": [U(1)], "$class": U(2)}, ARRAY))
write("broken-color-is-its-own-fallback",
      color(NSColorSpace=6, NSCatalogName=U(0), NSColorName=U(0), NSColor=U(1)))
write("broken-text-is-its-own-attribute", archive(
    {"NSString": U(4), "NSAttributes": U(3), "$class": U(2)}, ATTRIBUTED,
    {"NS.keys": [U(4)], "NS.objects": [U(1)], "$class": U(5)}, "abc", DICTIONARY))
write("broken-chain-too-deep", archive(
    *({"NS.objects": [U(i + 1)] if i < 2000 else [], "$class": U(2001)} for i in range(1, 2001)),
    ARRAY))
write("broken-lists-double", archive(
    *({"NS.objects": [U(i + 1)] * 2 if i < 60 else [], "$class": U(61)} for i in range(1, 61)),
    ARRAY))
write("broken-counted-set-explodes", archive(
    {"NS.count": 1, "NS.object0": U(2), "NS.count0": 1 << 60, "$class": U(3)}, "x",
    class_record("NSCountedSet", "NSMutableSet", "NSSet")))
write("broken-empty", b"")
write("broken-no-property-list", b"hello\n")
write("broken-cut-off", plistlib.dumps(archive("hello"), fmt=plistlib.FMT_BINARY)[:100])
# The second object, an array, holds itself.
write("broken-container-contains-itself",
      b"bplist00" + bytes.fromhex("a1 01 a1 01 08 0a") + bytes(6) + bytes.fromhex("01 01") +
      (2).to_bytes(8, "big") + (0).to_bytes(8, "big") + (12).to_bytes(8, "big"))
write("broken-entity.xml", b'<?xml version="1.0"?><!DOCTYPE plist [<!ENTITY a "x">]>'
                           b"<plist><string>&a;</string></plist>\n")
